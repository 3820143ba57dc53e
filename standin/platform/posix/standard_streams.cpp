#include "standin_platform/standard_streams.h"

#include <csignal>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace lvx::standin_platform {

void guardStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) != -1) continue;
    // The lowest free number is the closed one. Opened the wrong way round, so that using it is an error.
    const int wrongWay = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    [[maybe_unused]] const int opened = ::open("/dev/null", wrongWay);
  }
}

void turnSignalsOfWritingIntoErrors() {
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

bool isTerminal(StandardStream stream) {
  switch (stream) {
    case StandardStream::Input:
      return ::isatty(STDIN_FILENO) == 1;
    case StandardStream::Output:
      return ::isatty(STDOUT_FILENO) == 1;
    case StandardStream::Errors:
      return ::isatty(STDERR_FILENO) == 1;
  }
  return false;
}

}  // namespace lvx::standin_platform

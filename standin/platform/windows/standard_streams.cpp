#include "standin_platform/standard_streams.h"

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace lvx::standin_platform {

namespace {

UINT formerCodePage = 0;

DWORD numberOf(StandardStream stream) {
  switch (stream) {
    case StandardStream::Input:
      return STD_INPUT_HANDLE;
    case StandardStream::Output:
      return STD_OUTPUT_HANDLE;
    case StandardStream::Errors:
      break;
  }
  return STD_ERROR_HANDLE;
}

}  // namespace

void guardStandardStreams() {
  int number = 0;
  for (std::FILE* const stream : {stdin, stdout, stderr}) {
    if (_get_osfhandle(number) == -1) {
      // Opened the wrong way round, so that using it is an error.
      const int opened = _open("NUL", number == 0 ? _O_WRONLY : _O_RDONLY);
      if (opened >= 0 && opened != number) {
        _dup2(opened, number);
        _close(opened);
      }
    }
    // The bytes as they are: a line ends as on every system.
    if (_fileno(stream) >= 0) _setmode(_fileno(stream), _O_BINARY);
    ++number;
  }
  // What this program says is UTF-8. The console keeps its code page beyond the program's end, so it gets its own back.
  formerCodePage = GetConsoleOutputCP();
  if (formerCodePage != 0 && formerCodePage != CP_UTF8 && SetConsoleOutputCP(CP_UTF8) != 0)
    std::atexit([] { SetConsoleOutputCP(formerCodePage); });
}

// Here they are errors of writing already.
void turnSignalsOfWritingIntoErrors() {}

bool isTerminal(StandardStream stream) {
  const HANDLE console = GetStdHandle(numberOf(stream));
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == 0) return false;
  if (stream == StandardStream::Input) return true;
  // A console that doesn't understand such marks shows them: none for it.
  return (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0 ||
         SetConsoleMode(console, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace lvx::standin_platform

#include "desktop_user/virtual_display.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lvx::test {

namespace {

/// Starts a program that ends with this process, its output thrown away.
pid_t start(const std::vector<std::string>& command, int keepOpen = -1) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child > 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int nowhere = open("/dev/null", O_RDWR);
  for (int stream = 0; stream < 3; ++stream) dup2(nowhere, stream);
  if (keepOpen >= 0) fcntl(keepOpen, F_SETFD, 0);
  unsetenv("LSAN_OPTIONS");
  execvp(arguments[0], arguments.data());
  _exit(127);
}

void stop(pid_t child) {
  if (child <= 0) return;
  kill(child, SIGTERM);
  for (int tries = 0; tries < 200; ++tries) {
    if (waitpid(child, nullptr, WNOHANG) != 0) return;
    usleep(10'000);
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

/// The number that the server writes once it takes connections.
std::string readNumber(int from) {
  std::string text;
  pollfd wait{from, POLLIN, 0};
  char next = 0;
  while (text.find('\n') == std::string::npos) {
    if (poll(&wait, 1, 20'000) <= 0 || read(from, &next, 1) != 1) return {};
    text += next;
  }
  return text.substr(0, text.size() - 1);
}

/// A window manager tells by a property of the root window that it is there.
bool isManaged(const std::string& display) {
  Display* const connection = XOpenDisplay(display.c_str());
  if (connection == nullptr) return false;
  const Atom check = XInternAtom(connection, "_NET_SUPPORTING_WM_CHECK", False);
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* value = nullptr;
  XGetWindowProperty(connection, DefaultRootWindow(connection), check, 0, 1, False, XA_WINDOW, &type, &format, &count,
                     &rest, &value);
  if (value != nullptr) XFree(value);
  XCloseDisplay(connection);
  return count == 1;
}

/// Whether a window that opens now gets the keyboard. A manager says that it is there before it looks after new windows:
/// one that opens meanwhile is taken for an old one, which never gets it. `patience`: in hundredths of a second.
bool givesFocus(const std::string& display, int patience) {
  Display* const connection = XOpenDisplay(display.c_str());
  if (connection == nullptr) return false;
  const Window window = XCreateSimpleWindow(connection, DefaultRootWindow(connection), 0, 0, 50, 50, 0, 0, 0);
  XMapWindow(connection, window);
  bool hasFocus = false;
  for (int tries = 0; tries < patience && !hasFocus; ++tries) {
    XSync(connection, False);
    Window focused = None;
    int revert = 0;
    XGetInputFocus(connection, &focused, &revert);
    hasFocus = focused == window;
    if (!hasFocus) usleep(10'000);
  }
  XDestroyWindow(connection, window);
  XCloseDisplay(connection);
  return hasFocus;
}

}  // namespace

VirtualDisplay::VirtualDisplay(const std::string& size) {
  const char* const wanted = std::getenv("LVX_TEST_SCREEN");
  const std::string screen = (wanted != nullptr ? std::string(wanted) : size) + "x24";
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
  server_ = start({"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", screen, "-dpi", "96", "-nolisten",
                   "tcp", "-noreset"},
                  ends[1]);
  close(ends[1]);
  const std::string number = readNumber(ends[0]);
  close(ends[0]);
  if (number.empty()) {
    stop(server_);
    throw std::runtime_error("Xvfb didn't start; is the package xvfb there?");
  }
  name_ = ":" + number;
  setenv("DISPLAY", name_.c_str(), 1);
  manager_ = start({"openbox", "--sm-disable", "--config-file", LVX_SOURCE_DIR "/tests/desktop/openbox.xml"});
  for (int tries = 0; tries < 1000 && !isManaged(name_); ++tries) usleep(10'000);
  bool isReady = false;
  constexpr int kMostPatience = 400;
  for (int patience = 5; patience < kMostPatience && !isReady && isManaged(name_); patience *= 2)
    isReady = givesFocus(name_, patience);
  if (!isReady) {
    stop(manager_);
    stop(server_);
    throw std::runtime_error("openbox didn't start; is the package openbox there?");
  }
}

VirtualDisplay::~VirtualDisplay() {
  stop(manager_);
  stop(server_);
}

}  // namespace lvx::test

#include "support/run_program.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lvx::test {

namespace {

void redirect(const std::string& path, int descriptor, int flags) {
  const int opened = ::open(path.c_str(), flags, 0600);
  if (opened < 0 || ::dup2(opened, descriptor) < 0) ::_exit(127);
  ::close(opened);
}

/// What the program itself said: now and then the emulator of Windows says on its own how one of its connections ended, at
/// the end of a program whose threads end with it.
std::string withoutWordsOfTheEmulator(std::string errors) {
  constexpr std::string_view kBegin = "wine client error:";
  for (std::size_t at = 0; (at = errors.find(kBegin, at)) != std::string::npos;) {
    const std::size_t end = errors.find('\n', at);
    const bool beginsLine = at == 0 || errors[at - 1] == '\n';
    if (beginsLine && end != std::string::npos)
      errors.erase(at, end + 1 - at);
    else
      at += kBegin.size();
  }
  return errors;
}

/// Turns this process into the program. The environment is changed here, between fork and exec: tests have one thread.
[[noreturn]] void become(const RunRequest& request) {
  for (const auto& [name, value] : request.environment) {
    if (value.empty())
      ::unsetenv(name.c_str());
    else
      ::setenv(name.c_str(), value.c_str(), 1);
  }
  if (!request.folder.empty() && ::chdir(request.folder.c_str()) != 0) ::_exit(127);
  std::string program = request.program.string();
  std::vector<std::string> arguments = request.arguments;
  std::vector<char*> pointers{program.data()};
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  ::execv(program.c_str(), pointers.data());
  ::_exit(127);
}

int exitCodeOf(pid_t child) {
  constexpr int kBySignal = 128;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("lost a process");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : kBySignal + WTERMSIG(status);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "lvx-test-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder: " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  // A test may have taken the write permission away.
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all, error);
  std::filesystem::remove_all(path_, error);
}

std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("can't read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

RunResult runProgram(const RunRequest& request) {
  const TemporaryFolder capture;
  const std::string outputPath = request.outputTo.empty() ? (capture / "output").string() : request.outputTo;
  const std::string errorsPath = (capture / "errors").string();

  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("can't start a process");
  if (child == 0) {
    redirect("/dev/null", STDIN_FILENO, O_RDONLY);
    redirect(errorsPath, STDERR_FILENO, O_WRONLY | O_CREAT | O_TRUNC);
    if (request.closeOutput)
      ::close(STDOUT_FILENO);
    else
      redirect(outputPath, STDOUT_FILENO, O_WRONLY | O_CREAT | (request.outputTo.empty() ? O_TRUNC : 0));
    become(request);
  }
  RunResult result;
  result.exitCode = exitCodeOf(child);
  if (request.outputTo.empty() && !request.closeOutput) result.output = fileBytes(outputPath);
  result.errors = withoutWordsOfTheEmulator(fileBytes(errorsPath));
  return result;
}

RunResult runOnTerminal(const RunRequest& request, const std::string& question, std::vector<std::string> answers) {
  int terminal = -1;
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child < 0) throw std::runtime_error("can't start a process on a terminal");
  if (child == 0) become(request);
  RunResult result;
  std::size_t answered = 0;
  std::size_t searchFrom = 0;
  for (std::array<char, 4096> buffer{};;) {
    const ssize_t count = ::read(terminal, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;  // the program is gone and with it the terminal's other end
    result.output.append(buffer.data(), static_cast<std::size_t>(count));
    const std::size_t found = result.output.find(question, searchFrom);
    if (found == std::string::npos || answered == answers.size()) continue;
    searchFrom = found + question.size();
    const std::string line = answers[answered++] + "\n";
    if (::write(terminal, line.data(), line.size()) < 0) break;
  }
  ::close(terminal);
  result.exitCode = exitCodeOf(child);
  return result;
}

}  // namespace lvx::test

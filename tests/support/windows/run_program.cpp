#include "support/run_program.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <windows.h>

#include "standin_platform/child_process.h"

namespace lvx::test {

namespace {

std::wstring wide(const std::string& text) { return std::filesystem::path(text).native(); }

/// Puts a value behind a variable of this process for a scope; what is started in it inherits that. Tests have one thread.
class Variable {
 public:
  Variable(const std::string& name, const std::string& value) : name_(wide(name)) {
    if (const DWORD size = GetEnvironmentVariableW(name_.c_str(), nullptr, 0); size > 0) {
      std::wstring former(size, L'\0');
      former.resize(GetEnvironmentVariableW(name_.c_str(), former.data(), size));
      former_ = std::move(former);
    }
    SetEnvironmentVariableW(name_.c_str(), value.empty() ? nullptr : wide(value).c_str());
  }
  Variable(Variable&& other) noexcept
      : name_(std::exchange(other.name_, {})), former_(std::exchange(other.former_, {})) {}
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() {
    if (!name_.empty()) SetEnvironmentVariableW(name_.c_str(), former_ ? former_->c_str() : nullptr);
  }

 private:
  std::wstring name_;
  std::optional<std::wstring> former_;
};

class CurrentFolder {
 public:
  explicit CurrentFolder(const std::filesystem::path& folder) : former_(std::filesystem::current_path()) {
    if (!folder.empty()) std::filesystem::current_path(folder);
  }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() {
    std::error_code error;
    std::filesystem::current_path(former_, error);
  }

 private:
  std::filesystem::path former_;
};

}  // namespace

TemporaryFolder::TemporaryFolder() {
  static int number = 0;
  const auto moment = std::chrono::steady_clock::now().time_since_epoch().count();
  path_ = std::filesystem::temp_directory_path() / ("lvx-test-" + std::to_string(GetCurrentProcessId()) + "-" +
                                                    std::to_string(moment) + "-" + std::to_string(++number));
  if (!std::filesystem::create_directory(path_)) throw std::runtime_error("no temporary folder: " + path_.string());
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("can't read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

RunResult runProgram(const RunRequest& request) {
  if (!request.outputTo.empty() || request.closeOutput) throw std::runtime_error("not on this system");
  std::vector<Variable> variables;
  for (const auto& [name, value] : request.environment) variables.emplace_back(name, value);
  const std::filesystem::path program = std::filesystem::absolute(request.program);
  const CurrentFolder folder(request.folder);
  standin_platform::ChildProcess child;
  const standin_platform::ChildResult result = child.run(program, request.arguments);
  return {result.exitCode, result.output, result.errors};
}

RunResult runOnTerminal(const RunRequest& /*request*/, const std::string& /*question*/,
                        std::vector<std::string> /*answers*/) {
  throw std::runtime_error("not on this system");
}

}  // namespace lvx::test

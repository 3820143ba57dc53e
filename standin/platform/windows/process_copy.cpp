#include "standin_platform/process_copy.h"

#include <array>
#include <cerrno>
#include <system_error>

namespace lvx::standin_platform {

// This system has no copies of processes.
struct MessageLine::State {};

MessageLine::MessageLine(std::unique_ptr<State> state) : state_(std::move(state)) {}
MessageLine::MessageLine(MessageLine&& other) noexcept = default;
MessageLine::~MessageLine() = default;
bool MessageLine::send(std::string_view /*message*/) { return false; }
bool MessageLine::take(std::vector<std::string>& /*messages*/) { return false; }
void MessageLine::close() {}

void waitForMessages(std::span<MessageLine* const> /*lines*/, std::chrono::milliseconds /*longest*/) {}

struct ProcessCopy::State {};

ProcessCopy::ProcessCopy(const Work& /*work*/, Streams /*streams*/) : line_(std::unique_ptr<MessageLine::State>()) {
  throw std::system_error(std::make_error_code(std::errc::function_not_supported));
}
ProcessCopy::~ProcessCopy() = default;
void ProcessCopy::interrupt() {}
ChildResult ProcessCopy::wait() { return {}; }

}  // namespace lvx::standin_platform

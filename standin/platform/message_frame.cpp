#include "standin_platform/detail/message_frame.h"

#include <cstring>
#include <string_view>

namespace lvx::standin_platform::detail {

using Length = std::uint64_t;

std::array<char, sizeof(Length)> headOf(std::size_t size) {
  const Length length = size;
  std::array<char, sizeof length> head{};
  std::memcpy(head.data(), &length, sizeof length);
  return head;
}

void takeWhole(std::string& bytes, std::vector<std::string>& messages) {
  std::string_view rest = bytes;
  Length length = 0;
  while (rest.size() >= sizeof length) {
    std::memcpy(&length, rest.data(), sizeof length);
    if (rest.size() - sizeof length < length) break;
    messages.emplace_back(rest.substr(sizeof length, length));
    rest.remove_prefix(sizeof length + length);
  }
  bytes.erase(0, bytes.size() - rest.size());
}

}  // namespace lvx::standin_platform::detail

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Messages on a line of bytes between two processes of one program: each behind its length.
namespace lvx::standin_platform::detail {

/// What goes before a message of so many bytes.
[[nodiscard]] std::array<char, sizeof(std::uint64_t)> headOf(std::size_t size);

/// Takes the messages that are whole from the begin of `bytes` and appends them.
void takeWhole(std::string& bytes, std::vector<std::string>& messages);

}  // namespace lvx::standin_platform::detail

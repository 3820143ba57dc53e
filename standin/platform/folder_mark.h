#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace lvx::standin_platform {

/// Index of the last mark between folders in `path`, or npos: `/`, and `\` where that is the system's own.
template <class Letter>
[[nodiscard]] constexpr std::size_t lastFolderMark(std::basic_string_view<Letter> path) {
  constexpr Letter kMarks[] = {Letter{'/'}, static_cast<Letter>(std::filesystem::path::preferred_separator)};
  return path.find_last_of(kMarks, std::basic_string_view<Letter>::npos, 2);
}

}  // namespace lvx::standin_platform

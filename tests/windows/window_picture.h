#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lvx::test {

/// What a window shows, frame and title included: pixels 0x00RRGGBB in rows from the top.
struct WindowPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  [[nodiscard]] std::uint32_t at(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x));
  }
  bool operator==(const WindowPicture&) const = default;
};

/// `window` is one of the system, drawn on demand: it needn't be on any screen.
[[nodiscard]] WindowPicture pictureOf(void* window);
/// Of a control: its own rectangle in the picture of its dialog.
[[nodiscard]] WindowPicture pictureOfControl(void* dialog, int id);
/// As a bitmap file.
void saveBitmap(const WindowPicture& picture, const std::string& path);

}  // namespace lvx::test

#include "window_picture.h"

#include <fstream>
#include <stdexcept>

// clang-format off
#include <windows.h>
// clang-format on

namespace lvx::test {

WindowPicture pictureOf(void* window) {
  const HWND handle = static_cast<HWND>(window);
  RECT frame{};
  if (GetWindowRect(handle, &frame) == FALSE) throw std::runtime_error("no window to take a picture of");
  WindowPicture picture;
  picture.width = static_cast<int>(frame.right - frame.left);
  picture.height = static_cast<int>(frame.bottom - frame.top);

  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = picture.width;
  info.bmiHeader.biHeight = -picture.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  const HDC shown = GetWindowDC(handle);
  const HDC copy = CreateCompatibleDC(shown);
  const HBITMAP bitmap = CreateCompatibleBitmap(shown, picture.width, picture.height);
  const HGDIOBJ former = SelectObject(copy, bitmap);
  BitBlt(copy, 0, 0, picture.width, picture.height, shown, 0, 0, SRCCOPY);
  SelectObject(copy, former);
  picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
  GetDIBits(copy, bitmap, 0, static_cast<UINT>(picture.height), picture.pixels.data(), &info, DIB_RGB_COLORS);
  DeleteObject(bitmap);
  DeleteDC(copy);
  ReleaseDC(handle, shown);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0x00FFFFFFU;
  return picture;
}

WindowPicture pictureOfControl(void* dialog, int id) {
  const HWND handle = static_cast<HWND>(dialog);
  RECT frame{};
  RECT inside{};
  GetWindowRect(handle, &frame);
  if (GetWindowRect(GetDlgItem(handle, id), &inside) == FALSE) throw std::runtime_error("no such control");
  const WindowPicture whole = pictureOf(dialog);
  WindowPicture picture;
  picture.width = static_cast<int>(inside.right - inside.left);
  picture.height = static_cast<int>(inside.bottom - inside.top);
  for (LONG y = inside.top; y < inside.bottom; ++y)
    for (LONG x = inside.left; x < inside.right; ++x)
      picture.pixels.push_back(whole.at(static_cast<int>(x - frame.left), static_cast<int>(y - frame.top)));
  return picture;
}

void saveBitmap(const WindowPicture& picture, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  const auto put = [&](std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) file.put(static_cast<char>(static_cast<unsigned char>(value >> (8 * i))));
  };
  const auto size = static_cast<std::uint32_t>(picture.pixels.size() * 4);
  constexpr std::uint32_t kHeaders = 54;
  file << "BM";
  put(kHeaders + size, 4);
  put(0, 4);
  put(kHeaders, 4);
  put(40, 4);
  put(static_cast<std::uint32_t>(picture.width), 4);
  put(static_cast<std::uint32_t>(-picture.height), 4);
  put(1, 2);
  put(32, 2);
  for (int i = 0; i < 6; ++i) put(i == 1 ? size : 0, 4);
  for (const std::uint32_t pixel : picture.pixels) put(pixel, 4);
  if (!file) throw std::runtime_error("the picture can't be written: " + path);
}

}  // namespace lvx::test

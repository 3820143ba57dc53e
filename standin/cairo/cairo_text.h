#pragma once

#include <cerrno>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <cairo.h>

#include "canvas/canvas.h"

namespace lvx::cairo {

/// Text that can be shown: what is no UTF-8, and control characters, become U+FFFD.
[[nodiscard]] std::string shownText(std::string_view text);

/// Notices in its scope that an allocation failed, by the word that the C library leaves for that: cairo and those below it
/// go on with other letters, or without some, and say nothing.
class MemoryWatch {
 public:
  explicit MemoryWatch(cairo_status_t& status) : status_(status) { errno = 0; }
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;
  ~MemoryWatch() {
    if (errno == ENOMEM && status_ == CAIRO_STATUS_SUCCESS) status_ = CAIRO_STATUS_NO_MEMORY;
  }

 private:
  cairo_status_t& status_;
};

/// Letters without hints, whose widths grow with their height alone, so that sheets are the same on every screen.
class CairoText final : public canvas::TextMeasure {
 public:
  CairoText() = default;
  ~CairoText() override;

  [[nodiscard]] double widthOf(std::string_view text, const canvas::TextStyle& style) noexcept override;

  /// The first failure, such as memory that ran out: no text can be relied on since.
  [[nodiscard]] cairo_status_t status() const { return status_; }

  /// Draws a text where its base line begins, in the context's units, which are millimetres.
  void show(cairo_t* context, std::string_view text, const canvas::TextStyle& style) noexcept;

 private:
  struct Font {
    cairo_font_face_t* face = nullptr;
    cairo_scaled_font_t* scaled = nullptr;
    double size = 0.0;
  };
  /// By height and weight; null entries where there is no memory.
  const Font& fontFor(const canvas::TextStyle& style);
  void note(cairo_status_t status) {
    if (status_ == CAIRO_STATUS_SUCCESS) status_ = status;
  }
  /// How high capital letters stand in a size of 1.
  double capitalHeight(bool isBold);

  std::map<std::pair<double, bool>, Font> fonts_;
  double capitalHeights_[2] = {0.0, 0.0};
  cairo_status_t status_ = CAIRO_STATUS_SUCCESS;
};

}  // namespace lvx::cairo

#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "canvas/canvas.h"

namespace lvx::sheets {

/// Every letter is as wide as the next one.
class EvenMeasure final : public canvas::TextMeasure {
 public:
  double widthOf(std::string_view text, const canvas::TextStyle& style) noexcept override {
    const auto letters = std::count_if(text.begin(), text.end(),
                                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; });
    return 0.85 * style.height * static_cast<double>(letters);
  }
};

struct RecordedText {
  std::string text;
  double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
};
struct RecordedLine {
  std::vector<canvas::Place> places;
  canvas::Pen pen;
};

/// Keeps what one sheet shows; texts as the rectangles of their letters.
class RecordingCanvas final : public canvas::Canvas {
 public:
  void beginSheet(canvas::Size) noexcept override {}
  void endSheet() noexcept override {}
  void line(std::span<const canvas::Place> places, const canvas::Pen& pen) noexcept override {
    lines.push_back({{places.begin(), places.end()}, pen});
  }
  void area(std::span<const canvas::Place> corners, canvas::Colour) noexcept override {
    areas.emplace_back(corners.begin(), corners.end());
  }
  void text(canvas::Place place, std::string_view text, const canvas::TextStyle& style) noexcept override {
    const double width = measure_.widthOf(text, style);
    double before = 0.0;
    if (style.anchor == canvas::Anchor::Middle) before = width / 2.0;
    if (style.anchor == canvas::Anchor::Right) before = width;
    RecordedText recorded{std::string(text)};
    if (style.isUpright) {
      recorded.left = place.x - style.height;
      recorded.right = place.x;
      recorded.bottom = place.y + before;
      recorded.top = recorded.bottom - width;
    } else {
      recorded.left = place.x - before;
      recorded.right = recorded.left + width;
      recorded.top = place.y - style.height;
      recorded.bottom = place.y;
    }
    texts.push_back(std::move(recorded));
  }

  std::vector<RecordedText> texts;
  std::vector<RecordedLine> lines;
  std::vector<std::vector<canvas::Place>> areas;

 private:
  EvenMeasure measure_;
};

}  // namespace lvx::sheets

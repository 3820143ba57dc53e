#include "sheets/sheet_frame.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace lvx::sheets {

using canvas::Place;

namespace {

// The left margin is for binding.
constexpr double kLeftMargin = 20.0;
constexpr double kMargin = 10.0;
constexpr double kInner = 4.0;
constexpr double kRowHeight = 11.0;
/// Narrower frames have their title block in two rows.
constexpr double kOneRow = 230.0;
constexpr canvas::Colour kCaption{0.35, 0.35, 0.35};

bool hasTwoRows(canvas::Size paper) { return paper.width - kLeftMargin - kMargin < kOneRow; }

Area frameOf(canvas::Size paper) { return {kLeftMargin, kMargin, paper.width - kMargin, paper.height - kMargin}; }

double titleTop(canvas::Size paper) { return paper.height - kMargin - kRowHeight * (hasTwoRows(paper) ? 2.0 : 1.0); }

void rectangle(canvas::Canvas& canvas, const Area& area, double width) {
  const std::array<Place, 5> corners{{{area.left, area.top},
                                      {area.right, area.top},
                                      {area.right, area.bottom},
                                      {area.left, area.bottom},
                                      {area.left, area.top}}};
  canvas.line(corners, {.width = width});
}

struct Field {
  std::string_view caption;
  std::string text;
  double share = 1.0;  ///< of the row's width
};

void drawRow(canvas::Canvas& canvas, canvas::TextMeasure& measure, const Area& row, const std::vector<Field>& fields) {
  double all = 0.0;
  for (const Field& field : fields) all += field.share;
  double left = row.left;
  for (const Field& field : fields) {
    const double width = row.width() * field.share / all;
    if (left > row.left) {
      const std::array<Place, 2> border{{{left, row.top}, {left, row.bottom}}};
      canvas.line(border, {.width = 0.25});
    }
    constexpr double kSpace = 2.0;
    const canvas::TextStyle caption{.height = 1.6, .colour = kCaption};
    const double room = width - 2.0 * kSpace;
    canvas.text({left + kSpace, row.top + 3.4}, fitted(measure, std::string(field.caption), caption, room), caption);
    canvas::TextStyle style{.height = 2.6};
    if (measure.widthOf(field.text, style) > room) style.height = 2.1;
    canvas.text({left + kSpace, row.top + 8.6}, fitted(measure, field.text, style, room), style);
    left += width;
  }
}

}  // namespace

Area drawingArea(canvas::Size paper) {
  const Area frame = frameOf(paper);
  return {frame.left + kInner, frame.top + kInner, frame.right - kInner, titleTop(paper) - kInner};
}

std::string fitted(canvas::TextMeasure& measure, const std::string& text, const canvas::TextStyle& style,
                   double width) {
  if (measure.widthOf(text, style) <= width) return text;
  constexpr std::string_view kEllipsis = "…";
  // The longest begin that fits, by halving; a begin never ends within a character.
  std::size_t fits = 0;
  std::size_t tooLong = text.size();
  bool fitsAny = measure.widthOf(kEllipsis, style) <= width;
  while (tooLong - fits > 1) {
    const std::size_t middle = (fits + tooLong) / 2;
    std::size_t end = middle;
    while (end > fits && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
    if (end == fits) {
      // All between is one character.
      end = middle;
      while (end < tooLong && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) ++end;
      if (end == tooLong) break;
    }
    if (measure.widthOf(text.substr(0, end) + std::string(kEllipsis), style) <= width)
      fits = end;
    else
      tooLong = end;
  }
  return fitsAny ? text.substr(0, fits) + std::string(kEllipsis) : std::string();
}

void drawFrame(canvas::Canvas& canvas, canvas::TextMeasure& measure, canvas::Size paper, const TitleTexts& texts,
               const Words& words) {
  const Area frame = frameOf(paper);
  rectangle(canvas, {0.0, 0.0, paper.width, paper.height}, 0.1);
  const double top = titleTop(paper);
  const Field drawing{words.drawing, texts.drawing, 2.2};
  const Field alignment{words.alignment, texts.alignment, 2.0};
  const Field subject{texts.kind, texts.stations, 2.6};
  const Field scale{texts.hasTwoScales ? words.scaleBoth : words.scale, texts.scale, 1.3};
  const Field date{words.date, texts.date, 0.9};
  const Field sheet{
      words.sheet, std::to_string(texts.sheet) + " " + std::string(words.of) + " " + std::to_string(texts.sheets), 0.9};
  if (hasTwoRows(paper)) {
    const double middle = top + kRowHeight;
    drawRow(canvas, measure, {frame.left, top, frame.right, middle}, {drawing, alignment, subject});
    drawRow(canvas, measure, {frame.left, middle, frame.right, frame.bottom}, {scale, date, sheet});
    const std::array<Place, 2> between{{{frame.left, middle}, {frame.right, middle}}};
    canvas.line(between, {.width = 0.25});
  } else {
    drawRow(canvas, measure, {frame.left, top, frame.right, frame.bottom},
            {drawing, alignment, subject, scale, date, sheet});
  }
  const std::array<Place, 2> border{{{frame.left, top}, {frame.right, top}}};
  canvas.line(border, {.width = 0.5});
  rectangle(canvas, frame, 0.7);
}

}  // namespace lvx::sheets

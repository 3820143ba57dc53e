#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

/// Sheets that are drawn on: lines, areas and texts by millimetres of paper. Who draws knows no file format, and what makes
/// the files (canvas_library.h) knows nothing of roads.
///
///     canvas.beginSheet({420.0, 297.0});
///     canvas.line(places, {.width = 0.35});
///     canvas.text({20.0, 30.0}, "0+120.000", {.height = 3.5, .isBold = true});
///     canvas.endSheet();
///
/// Crosses into a library that is loaded late: nothing here throws or owns memory of the other side.
namespace lvx::canvas {

/// Millimetres from the upper left corner of the sheet; x to the right, y down.
struct Place {
  double x = 0.0;
  double y = 0.0;
};
struct Size {
  double width = 0.0;
  double height = 0.0;
};

/// Parts from 0 to 1.
struct Colour {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

struct Pen {
  double width = 0.25;  ///< millimetres
  Colour colour{};
  /// Lengths of dash and gap in turn, millimetres; empty: drawn through.
  std::span<const double> dashes{};
};

enum class Anchor : std::uint8_t { Left, Middle, Right };

struct TextStyle {
  /// Of a capital letter, millimetres.
  double height = 2.5;
  bool isBold = false;
  Colour colour{};
  /// Which point of the base line stands at the text's place.
  Anchor anchor = Anchor::Left;
  /// Written upwards, turned by a right angle to the left about its place.
  bool isUpright = false;
};

/// How wide texts come out.
class TextMeasure {
 public:
  TextMeasure() = default;
  TextMeasure(const TextMeasure&) = delete;
  TextMeasure& operator=(const TextMeasure&) = delete;
  virtual ~TextMeasure() = default;

  /// Of UTF-8 along its base line, millimetres.
  [[nodiscard]] virtual double widthOf(std::string_view text, const TextStyle& style) noexcept = 0;
};

class Canvas {
 public:
  Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  virtual ~Canvas() = default;

  virtual void beginSheet(Size size) noexcept = 0;
  virtual void endSheet() noexcept = 0;
  virtual void line(std::span<const Place> places, const Pen& pen) noexcept = 0;
  virtual void area(std::span<const Place> corners, Colour colour) noexcept = 0;
  virtual void text(Place place, std::string_view text, const TextStyle& style) noexcept = 0;
};

/// Where the bytes of a file go.
class ByteTarget {
 public:
  ByteTarget() = default;
  ByteTarget(const ByteTarget&) = delete;
  ByteTarget& operator=(const ByteTarget&) = delete;
  virtual ~ByteTarget() = default;

  /// False where it can't take them; nothing more comes then.
  [[nodiscard]] virtual bool write(std::string_view bytes) noexcept = 0;
};

/// A canvas whose sheets become a file. Sheets that ended are written and take no memory.
class FileCanvas : public Canvas {
 public:
  /// Writes what is left. Null where the file is whole, else what went wrong in words of the library, for as long as this
  /// object lives. A target that took no more is such a failure too.
  [[nodiscard]] virtual const char* finish() noexcept = 0;
  /// True once a failure happened, so that further sheets are drawn for nothing.
  [[nodiscard]] virtual bool hasFailed() const noexcept = 0;
};

enum class FileFormat : std::uint8_t {
  Pdf,  ///< any number of sheets
  Svg,  ///< one sheet
};

struct FileFacts {
  FileFormat format = FileFormat::Pdf;
  /// Of one that has just one sheet.
  Size size;
  std::string_view title;
  /// "2026-11-22T18:00:00Z"; the same moment gives the same bytes.
  std::string_view moment;
};

/// What makes files.
class FileMaker {
 public:
  FileMaker() = default;
  FileMaker(const FileMaker&) = delete;
  FileMaker& operator=(const FileMaker&) = delete;
  virtual ~FileMaker() = default;

  /// Measures texts as files show them. Lives as long as this object.
  [[nodiscard]] virtual TextMeasure& measure() noexcept = 0;
  /// Null where there is no memory. `target` outlives the canvas.
  [[nodiscard]] virtual std::unique_ptr<FileCanvas> open(const FileFacts& facts, ByteTarget& target) noexcept = 0;
};

}  // namespace lvx::canvas

#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "canvas/canvas.h"
#include "sheets/settings.h"

namespace lvx::sheets {

/// Sheets that are known by number before any of them is drawn.
class Book {
 public:
  Book() = default;
  Book(const Book&) = delete;
  Book& operator=(const Book&) = delete;
  virtual ~Book() = default;

  [[nodiscard]] virtual std::size_t sheetCount() const = 0;
  [[nodiscard]] virtual canvas::Size paper() const = 0;
  /// What a viewer shows above the file.
  [[nodiscard]] virtual std::string title() const = 0;
  /// The 200 of 1:200.
  [[nodiscard]] virtual double scale() const = 0;
  /// What a user should know, each an English sentence without a full stop.
  [[nodiscard]] virtual const std::vector<std::string>& notes() const = 0;
  /// Draws sheet `index`, from 0, between beginSheet() and endSheet(), which are the caller's.
  virtual void draw(std::size_t index, canvas::Canvas& canvas) = 0;
};

/// A PDF with all sheets, or an SVG for each, told by the ending of `target`: ".pdf", ".svg", small or capital letters.
[[nodiscard]] bool isBookName(const std::filesystem::path& target);

[[nodiscard]] canvas::FileFormat formatOf(const std::filesystem::path& target);

/// The files that a book becomes: the target itself, or where an SVG has several sheets "road-01.svg" and so on.
[[nodiscard]] std::vector<std::filesystem::path> bookFiles(const std::filesystem::path& target, std::size_t sheets);

/// Of pictures that a book becomes. Each unfinished one stays open until all are whole, and a process has 1,024 open files
/// at most where nobody gave it more.
inline constexpr std::size_t kMostPictures = 900;

/// The book of which `file` would be a sheet by its name: "road.svg" for "road-01.svg". None for any other name.
[[nodiscard]] std::optional<std::filesystem::path> bookOfSheet(const std::filesystem::path& file);

/// A moment in seconds since 1970 as files keep it, "2026-11-22T18:00:00Z".
[[nodiscard]] std::string momentText(std::int64_t seconds);
/// The day of it, "2026-11-22".
[[nodiscard]] std::string dayText(std::int64_t seconds);

}  // namespace lvx::sheets

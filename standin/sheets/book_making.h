#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "canvas/canvas.h"
#include "sheets/book.h"
#include "sheets/settings.h"

/// Plans and draws books in a copy of this process, where the system has these: what finds letters and writes PDF ends its
/// process where memory is short. Such an end is a SheetError like others, and never one of this process.
namespace lvx::sheets {

/// How a book comes about. All of it is called in the copy, so that nothing that it changes in memory comes back.
struct BookPlan {
  /// What makes the files; throws std::exception where there is none.
  std::function<canvas::FileMaker&()> maker;
  /// Throws SheetError. `progress` wants to hear of each section.
  std::function<std::unique_ptr<Book>(canvas::TextMeasure& measure, const Progress& progress)> book;
};

/// What is known of a book before it is drawn.
struct BookFacts {
  std::size_t sheets = 0;
  canvas::Size paper;
  /// The 200 of 1:200.
  double scale = 0.0;
  /// What a user should know, each an English sentence without a full stop.
  std::vector<std::string> notes{};
};

/// Plans a book and forgets it. Throws SheetError, also where `progress` says false, which is asked ten times a second at
/// least.
[[nodiscard]] BookFacts planBook(const BookPlan& plan, const Progress& progress);

/// What is asked while a book is made, in the process of the caller.
struct BookSteps {
  Progress planning{};
  /// The book is planned; false: no file is to be written.
  std::function<bool(const BookFacts& facts)> mayWrite{};
  Progress drawing{};
};

/// Plans and writes a book; false where `mayWrite` said so. No file takes its name before all are whole; where something
/// fails or the user stops it, what stood under the names stands there as before; only where one of several whole files
/// can't take its name, those in front of it have taken theirs. `moment` is as canvas::FileFacts has it.
/// Throws SheetError, and what `steps` throw. A sheet that is written takes no memory.
[[nodiscard]] bool makeBook(const BookPlan& plan, const std::filesystem::path& target, const std::string& moment,
                            const BookSteps& steps);

}  // namespace lvx::sheets

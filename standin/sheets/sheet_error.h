#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace lvx::sheets {

/// A book can't be made. The text is an English sentence without a full stop; the fields let others say it in other words.
class SheetError : public std::runtime_error {
 public:
  enum class Problem : std::uint8_t {
    NothingToDraw,  ///< no surface, corridor or profile where the book would be
    TooLarge,       ///< something is larger than the paper at the wanted scale; `fittingScale` and `fittingPaper` fit
    NoScaleFits,    ///< nor does it fit at any scale that is used
    TooManySheets,  ///< more than `subject` at the wanted scale; `fittingScale` has fewer, where one is known
    TooManyFiles,   ///< `subject` sheets, each of them a file
    Stopped,        ///< the user wants no book any more
    CantWrite,      ///< the disk or the library that makes the file; `subject` says why
    NoMemory,       ///< for the drawing of it
    BrokeOff,       ///< its process ended in the middle; memory may be short
  };
  SheetError(Problem problem, const std::string& words, std::string subject = {}, double fittingScale = 0.0,
             std::string fittingPaper = {});

  [[nodiscard]] Problem problem() const { return problem_; }
  /// What is too large: the text of a station, or a number of sheets; for CantWrite the reason.
  [[nodiscard]] const std::string& subject() const { return subject_; }
  /// The 500 of 1:500; 0: none.
  [[nodiscard]] double fittingScale() const { return fittingScale_; }
  /// "A2"; empty: none.
  [[nodiscard]] const std::string& fittingPaper() const { return fittingPaper_; }

 private:
  Problem problem_;
  std::string subject_;
  double fittingScale_;
  std::string fittingPaper_;
};

}  // namespace lvx::sheets

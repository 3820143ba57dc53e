#include "sheets/sheet_error.h"

#include <utility>

namespace lvx::sheets {

SheetError::SheetError(Problem problem, const std::string& words, std::string subject, double fittingScale,
                       std::string fittingPaper)
    : std::runtime_error(words),
      problem_(problem),
      subject_(std::move(subject)),
      fittingScale_(fittingScale),
      fittingPaper_(std::move(fittingPaper)) {}

}  // namespace lvx::sheets

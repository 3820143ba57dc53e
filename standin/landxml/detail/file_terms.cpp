#include "landxml/detail/file_terms.h"

#include <cmath>
#include <limits>

#include "landxml/detail/markup.h"
#include "text/handle_text.h"

namespace lvx::landxml::detail {

FileTerms FileTerms::of(const civil::Drawing& drawing, civil::FileNumber file) {
  FileTerms terms;
  terms.file = file;
  if (file == 0) {
    terms.areAxesSwapped = drawing.axesSwapped;
    return terms;
  }
  const civil::AddedFile& added = drawing.addedFiles.at(file - 1);
  terms.handleBase = added.handleBase;
  terms.lengthFactor = added.lengthFactor;
  terms.areAxesSwapped = added.axesSwapped;
  return terms;
}

double FileTerms::fileLength(double length) const {
  if (lengthFactor == 1.0) return length;
  // The division is a rounding or two off; of the numbers around it those count that give the length again.
  constexpr int kAround = 3;
  double candidate = length / lengthFactor;
  for (int i = 0; i < kAround; ++i) candidate = std::nextafter(candidate, -std::numeric_limits<double>::infinity());
  double best = candidate;
  double leastError = std::numeric_limits<double>::infinity();
  std::size_t leastDigits = 0;
  for (int i = 0; i <= 2 * kAround; ++i) {
    const double error = std::abs(candidate * lengthFactor - length);
    if (error <= leastError) {
      const std::size_t digits = numberText(candidate).size();
      if (error < leastError || digits < leastDigits) {
        best = candidate;
        leastDigits = digits;
      }
      leastError = error;
    }
    candidate = std::nextafter(candidate, std::numeric_limits<double>::infinity());
  }
  return best;
}

std::string FileTerms::lengthText(double length) const { return numberText(fileLength(length)); }

std::string FileTerms::placeText(civil::Vec2 place) const {
  const double first = areAxesSwapped ? place.x : place.y;
  const double second = areAxesSwapped ? place.y : place.x;
  return lengthText(first) + ' ' + lengthText(second);
}

std::string FileTerms::handleText(civil::Handle handle) const { return text::handleText(handle - handleBase); }

}  // namespace lvx::landxml::detail

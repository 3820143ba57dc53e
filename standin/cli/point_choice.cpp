#include "cli/point_choice.h"

#include "cli/failure.h"
#include "cli/terminal.h"
#include "text/number_text.h"

namespace lvx::cli {

namespace {

civil::FilteredPoints numberedPoints(const civil::DrawingIndex& index, const std::vector<NumberRange>& numbers) {
  civil::FilteredPoints found;
  for (const civil::Handle handle : handlesOfPoints(index, numbers)) {
    const civil::Point& point = *index.byHandle(handle)->as<civil::Point>();
    found.numbers.push_back(point.number);
    if (!point.hasElevation) ++found.withoutElevation;
  }
  return found;
}

}  // namespace

WantedPoints parsePoints(const options::PointChoice& choice) {
  WantedPoints wanted;
  if (choice.numbers) {
    if (*choice.numbers == "all")
      wanted.words = "all points";
    else
      wanted.numbers = parsePointNumbers(*choice.numbers);
    return wanted;
  }
  try {
    for (const std::string& text : choice.where) {
      wanted.filter.add(civil::PointFilter::parse(text));
      wanted.words += (wanted.words.empty() ? "" : ", ") + text;
    }
  } catch (const civil::PointFilterError& error) {
    throw Failure(kUsage, std::string("--points-where: ") + error.what());
  }
  return wanted;
}

civil::FilteredPoints findPoints(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                                 const WantedPoints& wanted, bool quiet) {
  if (!wanted.numbers.empty()) return numberedPoints(index, wanted.numbers);
  if (drawing.points.empty()) {
    const std::string others = drawing.surfaces.empty()
                                   ? ""
                                   : "; 'lvxhost points' reports those of a surface by --surface-points '" +
                                         drawing.surfaces.front().name + "'";
    throw Failure(kNotWritten, "nothing was written: the drawing holds no points" + others);
  }
  civil::FilteredPoints found = civil::pointsWhere(drawing, index, wanted.filter);
  if (found.hidden > 0 && !quiet)
    say(text::countText(found.hidden, "point") + " left out: another point of the same number stands before " +
            (found.hidden == 1 ? "it" : "each"),
        Severity::Warning);
  if (found.numbers.empty())
    throw Failure(kNotWritten, "nothing was written: none of the drawing's " +
                                   text::countText(drawing.points.size(), "point") + " meets " + wanted.words);
  return found;
}

}  // namespace lvx::cli

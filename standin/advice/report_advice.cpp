#include "advice/report_advice.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "civil/boxes_apart.h"
#include "civil/drawing_files.h"
#include "host/site_tree.h"
#include "platform/utf8.h"
#include "text/number_text.h"
#include "view/alignment_shape.h"

namespace lvx::advice {

using civil::Box;
using platform::fromUtf8;
using platform::toUtf8;

namespace {

// ---------------------------------------------------------------- ground

/// Whether the surface lies anywhere below or above the line.
bool hasGround(const civil::TinSurface& ground, const civil::SampleLine& line) {
  const auto& vertices = line.vertices;
  // Most lines begin or end on the ground, which is told without walking along them.
  if (std::any_of(vertices.begin(), vertices.end(),
                  [&](const civil::Vec2& vertex) { return ground.elevationAt(vertex).has_value(); }))
    return true;
  std::vector<civil::Vec3> samples;
  for (std::size_t i = 1; i < vertices.size() && samples.empty(); ++i)
    ground.sample(vertices[i - 1], vertices[i], samples);
  return !samples.empty();
}

/// Lines beside the surface, in whatever they lie of its box.
void warnOfLinesWithoutGround(std::vector<std::string>& list, const ReportObjects& objects) {
  if (objects.surface == nullptr || objects.group == nullptr) return;
  std::size_t count = 0;
  const civil::SampleLine* first = nullptr;
  for (const civil::SampleLine& line : objects.group->lines) {
    if (hasGround(objects.surface->surface, line)) continue;
    ++count;
    if (first == nullptr) first = &line;
  }
  if (first == nullptr) return;
  const std::size_t all = objects.group->lines.size();
  list.push_back((count == all ? "none of the " + text::countText(all, "sample line") + " of group '" +
                                     objects.group->name + "' has ground on surface '" + objects.surface->name + "'"
                               : std::to_string(count) + " of the " + text::countText(all, "sample line") +
                                     " of group '" + objects.group->name + "' " + (count == 1 ? "has" : "have") +
                                     " no ground on surface '" + objects.surface->name +
                                     "': " + (count == 1 ? "" : "the first is ") + "'" + first->name + "'"));
}

// ---------------------------------------------------------------- where things lie

void extend(Box& box, double x, double y) {
  box.minX = std::min(box.minX, x);
  box.minY = std::min(box.minY, y);
  box.maxX = std::max(box.maxX, x);
  box.maxY = std::max(box.maxY, y);
}

/// Something of the report with its box.
struct Placed {
  std::string words;
  Box box;
  civil::FileNumber file = 0;
};

Placed placedAlignment(const civil::AlignmentObject& alignment) {
  return {"alignment '" + alignment.name + "'", view::boxAround(alignment.geometry), alignment.file};
}

/// The sample lines, which is where the report asks for ground; without any, their alignment.
Placed placedLines(const civil::AlignmentObject& alignment, const civil::SampleLineGroup* group) {
  Placed placed{"", {}, alignment.file};
  if (group != nullptr) {
    placed.words = "sample line group '" + group->name + "'";
    for (const civil::SampleLine& line : group->lines)
      for (const civil::Vec2& vertex : line.vertices) extend(placed.box, vertex.x, vertex.y);
  }
  return placed.box.isEmpty() ? placedAlignment(alignment) : placed;
}

/// Of points of several files the file of the first.
Placed placedPoints(const std::vector<const civil::Point*>& points) {
  Placed placed{points.size() == 1 ? "the point" : "the points", {}, points.front()->file};
  for (const civil::Point* point : points) extend(placed.box, point->position.x, point->position.y);
  return placed;
}

std::string boxText(const Box& box) {
  return "x " + text::fixedText(box.minX) + " to " + text::fixedText(box.maxX) + ", y " + text::fixedText(box.minY) +
         " to " + text::fixedText(box.maxY);
}

bool axesSwapped(const civil::Drawing& drawing, civil::FileNumber file) {
  if (file == 0) return drawing.axesSwapped;
  return file <= drawing.addedFiles.size() && drawing.addedFiles[file - 1].axesSwapped;
}

/// How the two would meet, where swapping the axes of one file does it.
std::string swapHint(const civil::Drawing& drawing, civil::FileNumber a, civil::FileNumber b, HintsFor hints) {
  if (a == b) return {};
  const auto hint = [hints](const char* with, const std::string& path) {
    return std::string("; ") + with +
           (hints == HintsFor::CommandLine
                ? " --swap-axes '" + path + "' they would"
                : " northing and easting of '" + path + "' swapped they would: see the menu of the file in the tree");
  };
  for (const civil::FileNumber file : {a, b})
    if (axesSwapped(drawing, file)) return hint("without", civil::pathOf(drawing, file));
  // Either would do; what was added is more likely the odd one.
  const std::string& path = civil::pathOf(drawing, std::max(a, b));
  return path.empty() ? std::string() : hint("with", path);
}

/// Whether it had to warn.
bool warnApart(std::vector<std::string>& list, const civil::Drawing& drawing, const Placed& what, const Placed& from,
               double reach, HintsFor hints) {
  const auto apart = civil::boxesApart(what.box, from.box, reach);
  if (!apart) return false;
  list.push_back(what.words + " (" + boxText(apart->first) + ") and " + from.words + " (" + boxText(apart->second) +
                 ") don't meet" +
                 (apart->meetSwapped ? swapHint(drawing, what.file, from.file, hints) : std::string()));
  return true;
}

void warnOfPlaces(std::vector<std::string>& list, const civil::Drawing& drawing, const ReportObjects& objects,
                  HintsFor hints) {
  if (objects.alignment == nullptr) return;
  if (objects.surface != nullptr &&
      !warnApart(list, drawing,
                 {"surface '" + objects.surface->name + "'", objects.surface->surface.box(), objects.surface->file},
                 placedLines(*objects.alignment, objects.group), 0.0, hints))
    warnOfLinesWithoutGround(list, objects);
  if (objects.points.empty()) return;
  // Points lie beside the alignment or beyond its ends by nature; what is farther off than it is long isn't its own.
  const Placed alignment = placedAlignment(*objects.alignment);
  const double reach = std::hypot(alignment.box.maxX - alignment.box.minX, alignment.box.maxY - alignment.box.minY);
  warnApart(list, drawing, placedPoints(objects.points), alignment, reach, hints);
}

// ---------------------------------------------------------------- letters

/// Collects the texts that a report prints and finds those that its code page cuts.
class Letters {
 public:
  explicit Letters(platform::Platform& platform) : platform_(platform) {}

  /// `words` tells what the text is of, and is asked only for the first that is cut.
  template <class Words>
  void look(std::string_view text, Words words) {
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) return;
    const host::CString wide = fromUtf8(text);
    const std::size_t kept = platform_.narrow(wide).size();
    if (kept >= wide.size()) return;
    if (++count_ > 1) return;
    first_ = words() + ": the reports' code page has no letter '" + toUtf8(host::CString(1, wide[kept])) + "' (" +
             codePoint(wide[kept]) + ")";
  }

  [[nodiscard]] bool isEmpty() const { return count_ == 0; }
  [[nodiscard]] std::string sentence(const Forms& forms) const {
    std::string text = first_;
    if (count_ > 1)
      text += ", and " + std::to_string(count_ - 1) + " more " + (count_ == 2 ? "text has" : "texts have") +
              " such letters";
    text += "; ";
    if (forms.text) text += "the text form loses the rest of the line";
    if (forms.text && forms.page) text += " and ";
    if (forms.page) text += "the page form ends there";
    return text + (forms.workbook ? "; the workbook is whole" : "; a workbook would be whole") +
           ", and --report-code-page names another code page";
  }

 private:
  static std::string codePoint(wchar_t letter) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "U+%04X", static_cast<unsigned>(letter));
    return buffer;
  }

  platform::Platform& platform_;
  std::size_t count_ = 0;
  std::string first_;
};

/// UTF-16 units that a cell of a workbook holds.
constexpr std::size_t kLongestText = 32767;
/// Of a name in a sentence.
constexpr std::size_t kShownName = 200;

/// Of a text in UTF-8.
std::size_t unitsOf(std::string_view text) {
  std::size_t units = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80U) units += byte >= 0xF0U ? 2 : 1;
  }
  return units;
}

/// Texts that are longer than a cell of the workbook.
class LongTexts {
 public:
  template <class Words>
  void look(std::string_view text, Words words) {
    // No letter takes more units there than bytes here.
    if (text.size() <= kLongestText) return;
    const std::size_t length = unitsOf(text);
    if (length <= kLongestText || ++count_ > 1) return;
    first_ = words() + " has " + std::to_string(length) + " characters, and a cell of the workbook holds " +
             std::to_string(kLongestText);
  }

  [[nodiscard]] bool isEmpty() const { return count_ == 0; }
  [[nodiscard]] std::string sentence() const {
    return first_ + (count_ > 1 ? "; " + text::countText(count_ - 1, "more text") + " too long" : std::string()) +
           ": the workbook cuts the rest";
  }

 private:
  std::size_t count_ = 0;
  std::string first_;
};

/// Calls `look(text, words)` for every text of the drawing that the report prints; `words()` tells what it is of.
template <class Look>
void eachText(const ReportObjects& objects, const std::string& stem, Look look) {
  look(stem, [&] { return "the path '" + stem + "'"; });
  if (objects.group != nullptr)
    for (const civil::SampleLine& line : objects.group->lines)
      look(line.name, [&] { return "sample line '" + line.name.substr(0, kShownName) + "'"; });
  if (objects.report != Report::Points) return;
  if (objects.alignment != nullptr && !objects.points.empty())
    look(objects.alignment->name, [&] { return "alignment '" + objects.alignment->name.substr(0, kShownName) + "'"; });
  for (const civil::Point* point : objects.points) {
    const auto words = [point](const char* what) {
      return [point, what] { return "point " + std::to_string(point->number) + ", " + what; };
    };
    look(point->texts.name(), words("name"));
    look(point->texts.description(), words("raw description"));
    look(point->texts.fullDescription(), words("full description"));
  }
}

void warnOfTexts(std::vector<std::string>& list, const ReportObjects& objects, const std::string& stem,
                 const Forms& forms, platform::Platform& platform) {
  Letters letters(platform);
  LongTexts longTexts;
  eachText(objects, stem, [&](std::string_view text, auto words) {
    if (forms.text || forms.page) letters.look(text, words);
    if (forms.workbook) longTexts.look(text, words);
  });
  if (!letters.isEmpty()) list.push_back(letters.sentence(forms));
  if (!longTexts.isEmpty()) list.push_back(longTexts.sentence());
}

}  // namespace

std::string whyOutOfReach(const ReportObjects& objects) {
  if (objects.site == nullptr || objects.site->name.empty() || !host::meansNoSite(fromUtf8(objects.site->name)))
    return {};
  return "the reports take a site whose name begins with '*' for the alignments outside any site, so alignment '" +
         (objects.alignment == nullptr ? std::string() : objects.alignment->name) + "' of site '" + objects.site->name +
         "' can't be reported; give the site another name";
}

std::vector<std::string> warnings(const civil::Drawing& drawing, const ReportObjects& objects, const std::string& stem,
                                  const Forms& forms, platform::Platform& platform, HintsFor hints) {
  std::vector<std::string> list;
  if (civil::metresPerUnit(drawing.linearUnit).value_or(1.0) != 1.0)
    list.push_back("the drawing's unit of length is " + drawing.linearUnit +
                   ": the report gives its lengths in it, also where its texts say m");
  warnOfPlaces(list, drawing, objects, hints);
  warnOfTexts(list, objects, stem, forms, platform);
  return list;
}

SortedDiagnostics diagnosticsOf(const civil::Drawing& drawing, const ReportObjects& objects) {
  if (drawing.diagnostics.empty()) return {};
  std::vector<civil::Handle> used;
  const auto use = [&used](const auto* object) {
    if (object != nullptr) used.push_back(object->handle);
  };
  use(objects.alignment);
  use(objects.profile);
  use(objects.group);
  use(objects.surface);
  use(objects.pointGroup);
  if (objects.group != nullptr)
    for (const civil::SampleLine& line : objects.group->lines) use(&line);
  for (const civil::Point* point : objects.points) use(point);
  if (objects.report == Report::Gls)
    for (const civil::Corridor& corridor : drawing.corridors) use(&corridor);
  std::sort(used.begin(), used.end());

  SortedDiagnostics sorted;
  std::vector<const civil::Diagnostic*> ofFiles;
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics) {
    if (diagnostic.severity == civil::Severity::Note) continue;
    if (diagnostic.object == 0)
      ofFiles.push_back(&diagnostic);
    else if (std::binary_search(used.begin(), used.end(), diagnostic.object))
      sorted.ofReport.push_back(&diagnostic);
    else
      ++sorted.others;
  }
  sorted.ofReport.insert(sorted.ofReport.end(), ofFiles.begin(), ofFiles.end());
  return sorted;
}

}  // namespace lvx::advice

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "civil/reversible_change.h"
#include "civil/sample_line_rules.h"
#include "options/options.h"
#include "runtime/open_drawing.h"

/// Objects that the drawing lacks and the options ask for: sample lines by rules, points by conditions, the ground under
/// an alignment as a profile. They are made for one report alone, or to be saved.
namespace lvx::cli {

/// The rules of a command's options, those of --rules and of an option for each key together. Throws Failure (kUsage)
/// for what can't be read, a key that is given twice, and where nothing says where lines stand.
[[nodiscard]] civil::SampleLineRules rulesOf(const options::LinesOptions& options);

/// The rules of --lines. Throws as rulesOf() does.
[[nodiscard]] civil::SampleLineRules parseRules(const std::string& text);

/// The lines that the rules give on an alignment, named by stations as the reports print them. Rules that ask for a
/// profile without naming it get `profile`, or where that is empty the first design profile, which is told where there
/// are several. What the lines can't reach is told unless `quiet`.
///
/// Throws Failure: kUnknownName for a profile or a surface that isn't there, with what there is; kNotWritten where the
/// rules give no line or more than a million.
[[nodiscard]] std::vector<civil::MadeSampleLine> makeLines(const civil::Drawing& drawing,
                                                           const civil::AlignmentObject& alignment,
                                                           const civil::SampleLineRules& rules,
                                                           const std::string& profile, bool quiet);

/// What was made for one report; it goes before the drawing is saved.
class MadeForReport {
 public:
  /// `drawing` lives longer.
  explicit MadeForReport(runtime::OpenDrawing& drawing) : drawing_(drawing) {}
  MadeForReport(const MadeForReport&) = delete;
  MadeForReport& operator=(const MadeForReport&) = delete;

  [[nodiscard]] runtime::OpenDrawing& drawing() const { return drawing_; }

  /// A group by the rules of --lines, named by them. Throws as parseRules() and makeLines() do.
  const civil::SampleLineGroup& addLines(const civil::AlignmentObject& alignment, const std::string& rules,
                                         const std::string& profile, bool quiet);
  /// The ground of a surface under an alignment, thinned within `tolerance`. What it lacks is told unless `quiet`.
  /// Throws Failure (kNotWritten) where the alignment never meets the surface.
  const civil::ProfileObject& addGroundProfile(const civil::AlignmentObject& alignment,
                                               const civil::SurfaceObject& surface, double tolerance, bool quiet);
  /// The points of a surface as points of the drawing, numbered by ascending easting, then northing, behind the largest
  /// number that there is. Gives their handles by number. Throws Failure
  /// (kNotWritten) where there are none, or no numbers left.
  std::vector<civil::Handle> addPointsOf(const civil::SurfaceObject& surface, bool quiet);

  /// Takes everything back out of the drawing, which no command may hold any more.
  void remove();

 private:
  civil::Handle make(civil::ReversibleChangePtr change);

  runtime::OpenDrawing& drawing_;
  std::vector<civil::ReversibleChangePtr> changes_;
};

}  // namespace lvx::cli

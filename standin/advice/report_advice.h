#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "platform/platform.h"

/// What a user should know around a report that the module doesn't say: front ends look here before a report runs, and
/// after it ended by an exception. Sentences are English, without a full stop.
///
///     if (const std::string reason = advice::whyOutOfReach(objects); !reason.empty()) return show(reason);
///     for (const std::string& warning : advice::warnings(drawing, objects, forms, host.platform())) show(warning);
namespace lvx::advice {

enum class Report : std::uint8_t { Projection, Points, Gls };

/// What a report is asked of, as chosen in its dialog. What it has no use for, or isn't chosen, is null. All of it belongs
/// to one drawing.
struct ReportObjects {
  Report report = Report::Projection;
  const civil::Site* site = nullptr;
  const civil::AlignmentObject* alignment = nullptr;
  const civil::ProfileObject* profile = nullptr;
  const civil::SampleLineGroup* group = nullptr;
  const civil::SurfaceObject* surface = nullptr;
  const civil::PointGroup* pointGroup = nullptr;
  /// Of the points report: those of the group, or picked ones.
  std::vector<const civil::Point*> points;
};

/// Which forms of the report are written.
struct Forms {
  bool text = true;
  bool workbook = true;
  bool page = true;
};

/// Whose words the hints use: options of the command line, or menus of the desktop.
enum class HintsFor : std::uint8_t { CommandLine, Desktop };

/// Why the report would be of another alignment than the chosen one, or of none; empty where it is of that one.
[[nodiscard]] std::string whyOutOfReach(const ReportObjects& objects);

/// What in the drawing makes the report other than its reader expects: a unit that its texts don't know, ground that isn't
/// where the alignment is, sample lines without ground, letters that cut its text and page, texts that a cell of its workbook
/// can't hold. `stem` is the path of the report files without extension,
/// which its head shows. O(texts and coordinates of the report's objects).
[[nodiscard]] std::vector<std::string> warnings(const civil::Drawing& drawing, const ReportObjects& objects,
                                                const std::string& stem, const Forms& forms,
                                                platform::Platform& platform, HintsFor hints = HintsFor::CommandLine);

/// Warnings and errors of the drawing's reader, those of a report's objects and those of others. Notes are in neither.
struct SortedDiagnostics {
  /// First those of the objects, then those of files as a whole. Points into the drawing.
  std::vector<const civil::Diagnostic*> ofReport;
  std::size_t others = 0;
};

/// The objects are those that are chosen and what belongs to them: the group's sample lines, the points, and for the GLS
/// report all corridors. O(n log n).
[[nodiscard]] SortedDiagnostics diagnosticsOf(const civil::Drawing& drawing, const ReportObjects& objects);

}  // namespace lvx::advice

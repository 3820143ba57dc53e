#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "options/options.h"

namespace lvx::cli {

/// One report of a job file.
struct Job {
  /// Line of the job file, from 1.
  std::size_t line = 0;
  /// "points small.xml, out/road", for words about it.
  std::string label;
  /// What the program is started with.
  std::vector<std::string> arguments;
};

/// Reads JSON Lines: on each line an object whose members are a report command's options under their own names, with
/// "command" and "drawing" beside them; blank lines are skipped.
///
///     {"command": "points", "drawing": "road.xml", "alignment": "A1", "point-group": "Edge", "out": "out/edge"}
///     {"command": "projection", "drawing": "road.xml", "alignment": "A1", "group": "SL", "surface": "EG",
///      "out": "out/ground", "forms": "txt", "overwrite": true}                                (on one line)
///
/// Members are texts, whole numbers and true or false (an option without a value, or its absence); an option that may be
/// given many times takes a list of texts, or one text. `common` holds for
/// every job that doesn't have the option itself. `name` stands for the file in messages. Throws Failure (kUsage) for a
/// line that is no such object, and where two jobs would write the same files.
[[nodiscard]] std::vector<Job> parseJobs(std::string_view text, const std::string& name,
                                         const options::CommonOptions& common);

}  // namespace lvx::cli

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "journal/summary.h"

/// How a batch tells its end, one that ran and one that is put together from journals.
namespace lvx::cli {

/// "2 failed (lines 3, 17)"; of many lines the first `most`, and how many more there are.
[[nodiscard]] std::string listedLines(const std::string& words, const std::vector<std::size_t>& lines,
                                      std::size_t most = 1000);

/// Sorts the jobs of the summary by their lines and writes it. False, with words, where it can't be written.
[[nodiscard]] bool writeSummaryFile(const std::string& path, journal::Summary& summary);

/// The members of a summary into the answer of the command, but for those that every answer has.
void answerSummary(const journal::Summary& summary);

}  // namespace lvx::cli

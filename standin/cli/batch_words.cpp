#include "cli/batch_words.h"

#include <algorithm>
#include <string>

#include <nlohmann/json.hpp>

#include "cli/answer.h"
#include "cli/terminal.h"
#include "standin_platform/atomic_file.h"

namespace lvx::cli {

std::string listedLines(const std::string& words, const std::vector<std::size_t>& lines, std::size_t most) {
  std::string text = std::to_string(lines.size()) + words;
  for (std::size_t i = 0; i < std::min(lines.size(), most); ++i)
    text += (i > 0 ? ", " : lines.size() == 1 ? " (line " : " (lines ") + std::to_string(lines[i]);
  if (lines.size() > most) text += " and " + std::to_string(lines.size() - most) + " more";
  return lines.empty() ? text : text + ")";
}

bool writeSummaryFile(const std::string& path, journal::Summary& summary) {
  const auto byLine = [](const journal::JobRecord& a, const journal::JobRecord& b) { return a.line < b.line; };
  std::stable_sort(summary.failed.begin(), summary.failed.end(), byLine);
  std::stable_sort(summary.broken.begin(), summary.broken.end(), byLine);
  try {
    journal::writeSummary(path, summary);
    answer().addWritten(path);
    return true;
  } catch (const standin_platform::AtomicFileError& error) {
    say("can't write the summary '" + path + "': " + error.what(), Severity::Error, path);
    return false;
  }
}

void answerSummary(const journal::Summary& summary) {
  if (!answer().isGathered()) return;
  const auto members = nlohmann::ordered_json::parse(journal::textOf(summary));
  for (const auto& [name, value] : members.items())
    if (name != "exit" && name != "seconds") answer().set(name, value);
}

}  // namespace lvx::cli

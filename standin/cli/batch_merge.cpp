#include "cli/batch_merge.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/batch_words.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/terminal.h"
#include "journal/journal.h"
#include "journal/summary.h"
#include "options/commands.h"
#include "version/version.h"

namespace lvx::cli {

using journal::JobRecord;

namespace {

/// What the journals have of a job.
struct Known {
  std::uint32_t journal = 0;  ///< by its number from 1; 0: none has it
  bool isDone = false;
  bool isRepeated = false;  ///< several have it
  float seconds = 0.0F;
  std::uint32_t files = 0;
  std::uint64_t bytes = 0;
};

class Merger {
 public:
  explicit Merger(const JobFile& jobs) : jobs_(jobs), known_(jobs.entries().size()) {}

  void read(const std::string& path) {
    ++journal_;
    try {
      const journal::JournalReading reading =
          journal::readJournal(path, [&](const JobRecord& record) { take(record, path); });
      std::vector<std::size_t> lines;
      for (const journal::UnreadableLine& line : reading.unreadable) lines.push_back(line.number);
      if (!lines.empty())
        say("journal '" + path + "': " +
                listedLines(lines.size() == 1 ? " line can't be read and counts for nothing"
                                              : " lines can't be read and count for nothing",
                            lines, 20),
            Severity::Warning, path);
    } catch (const journal::NotAJournal& error) {
      throw Failure(kUsage, std::string("batch: ") + error.what());
    } catch (const std::system_error& error) {
      throw Failure(kNotWritten, "batch: can't read the journal '" + path + "': " + error.code().message());
    }
  }

  [[nodiscard]] journal::Summary summary() {
    journal::Summary summary;
    summary.count = known_.size();
    for (std::size_t i = 0; i < known_.size(); ++i) {
      const Known& job = known_[i];
      summary.seconds += job.seconds;
      if (job.isDone) {
        ++summary.done;
        summary.files += job.files;
        summary.bytes += job.bytes;
      } else if (job.journal == 0) {
        ++summary.notBegun;
      } else {
        JobRecord& record = unfinished_.at(i);
        (record.exitCode == kInterrupted ? summary.broken : summary.failed).push_back(std::move(record));
      }
    }
    return summary;
  }

  [[nodiscard]] std::vector<std::size_t> repeated() const {
    std::vector<std::size_t> lines;
    for (std::size_t i = 0; i < known_.size(); ++i)
      if (known_[i].isRepeated) lines.push_back(jobs_.entries()[i].line);
    return lines;
  }

 private:
  void take(const JobRecord& record, const std::string& path) {
    if (record.isSaving) return;  // its end is told by a further line, or it was broken off
    const std::size_t place = placeOf(record, path);
    Known& job = known_[place];
    const bool isOther = job.journal != 0 && job.journal != journal_;
    job.isRepeated |= isOther;
    // Within a journal the last line counts.
    if (isOther && job.isDone && record.exitCode != kDone) return;
    job.journal = journal_;
    job.isDone = record.exitCode == kDone;
    job.seconds = static_cast<float>(record.seconds);
    job.files = static_cast<std::uint32_t>(record.files.size());
    job.bytes = 0;
    for (const journal::OutputFile& file : record.files) job.bytes += file.bytes;
    if (job.isDone)
      unfinished_.erase(place);
    else
      unfinished_[place] = record;
  }

  [[nodiscard]] std::size_t placeOf(const JobRecord& record, const std::string& path) const {
    const auto entries = jobs_.entries();
    const auto entry = std::lower_bound(entries.begin(), entries.end(), record.line,
                                        [](const JobFile::Entry& a, std::size_t line) { return a.line < line; });
    const auto isSame = [&] {
      const Job job = jobs_.read(*entry);
      const options::CommandDescription* const command = options::findCommand(record.command);
      return command != nullptr && command->command == job.command && record.drawing == job.options.drawing &&
             record.out == job.options.report.stem;
    };
    if (entry == entries.end() || entry->line != record.line || !isSame())
      throw Failure(kUsage, "batch: the journal '" + path + "' is of other jobs: it tells of line " +
                                std::to_string(record.line) + " as " + record.command + " " + record.drawing + ", " +
                                record.out);
    return static_cast<std::size_t>(entry - entries.begin());
  }

  const JobFile& jobs_;
  std::vector<Known> known_;
  std::map<std::size_t, JobRecord> unfinished_;
  std::uint32_t journal_ = 0;
};

std::vector<std::size_t> linesOf(const std::vector<JobRecord>& records) {
  std::vector<std::size_t> lines;
  for (const JobRecord& record : records) lines.push_back(record.line);
  return lines;
}

}  // namespace

ExitCode mergeJournals(const options::Options& options, const JobFile& jobs) {
  const options::BatchOptions& batch = options.batch;
  if (batch.journal) throw Failure(kUsage, "batch: --merge runs no job, so there is nothing for --journal");
  Merger merger(jobs);
  for (const std::string& path : batch.merge) merger.read(path);
  journal::Summary summary = merger.summary();
  summary.jobs = steeringName(batch.jobs);
  summary.part = batch.part;
  summary.program = version::text();
  summary.interrupted = !summary.broken.empty();
  ExitCode code = summary.done == summary.count ? kDone : kNotWritten;
  summary.exitCode = code;
  if (batch.summary && !writeSummaryFile(*batch.summary, summary)) code = kNotWritten;
  answerSummary(summary);
  if (const std::vector<std::size_t> lines = merger.repeated(); !lines.empty() && !options.common.quiet)
    say(listedLines(lines.size() == 1 ? " job stands in several journals" : " jobs stand in several journals", lines),
        Severity::Warning);
  std::string words = std::to_string(summary.count) + (summary.count == 1 ? " job: " : " jobs: ") +
                      std::to_string(summary.done) + " done, " + listedLines(" failed", linesOf(summary.failed));
  if (!summary.broken.empty()) words += ", " + listedLines(" broken off", linesOf(summary.broken));
  if (summary.notBegun > 0) words += ", " + std::to_string(summary.notBegun) + " not begun";
  if (code != kDone || !options.common.quiet) say(words, code == kDone ? Severity::Note : Severity::Error);
  return code;
}

}  // namespace lvx::cli

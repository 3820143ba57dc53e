#include "cli/batch_journal.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>

#include "cli/terminal.h"
#include "options/commands.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

namespace fs = std::filesystem;
using journal::JobRecord;
using journal::JournalWriter;
using standin_platform::LockedFile;

namespace {

std::string commandName(options::Command command) {
  for (const options::CommandDescription& description : options::commands())
    if (description.command == command) return std::string(description.name);
  return {};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// What is left of a killed batch ends by itself, a report at its next look at the parent.
std::unique_ptr<LockedFile> lockedFile(const std::string& path, const std::string& journal) {
  constexpr std::chrono::seconds kLongest{15};
  const auto last = std::chrono::steady_clock::now() + kLongest;
  const auto waits = [&] { return std::chrono::steady_clock::now() < last && !standin_platform::isInterrupted(); };
  try {
    return std::make_unique<LockedFile>(path, waits);
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::resource_unavailable_try_again)
      throw Failure(kNotWritten, "batch: another batch writes the journal '" + journal + "'");
    throw Failure(kNotWritten, "batch: can't write '" + path + "': " + error.code().message());
  }
}

}  // namespace

JobRecord recordOf(const JobFile& jobs, JobKeys& keys, const JobResult& result) {
  return recordOf(jobs.read(jobs.entries()[result.job]), keys, result);
}

JobRecord recordOf(const Job& job, JobKeys& keys, const JobResult& result) {
  JobRecord record;
  record.line = job.line;
  record.command = commandName(job.command);
  record.drawing = job.options.drawing;
  record.out = job.options.report.stem;
  record.exitCode = result.exitCode;
  record.seconds = result.seconds;
  record.files = result.written;
  record.kept = result.kept;
  record.diagnostics = linesOf(result.errors);
  record.key = {JobKeys::options(job), keys.program(job), keys.messages(job), result.drawing};
  record.savedDrawing = result.savedDrawing;
  return record;
}

BatchJournal::BatchJournal(const JobFile& jobs, JobKeys& keys, const options::Options& options)
    : jobs_(jobs), keys_(keys), path_(options.batch.journal.value()) {
  runningFile_ = lockedFile(runningFile(path_), path_);
  try {
    std::error_code error;
    const std::uintmax_t bytes = fs::file_size(path_, error);
    const bool hasLines = !error && bytes > 0;
    if (hasLines) journal::requireJournal(path_);
    if (hasLines && !options.batch.resume && !options.common.overwrite) {
      runningFile_->remove();
      throw Failure(kUsage, "batch: the journal '" + path_ +
                                "' has lines already; --resume goes on with it, --overwrite begins it anew");
    }
    if (options.batch.resume) {
      std::istringstream begun(runningFile_->content());
      std::set<std::string> keysOfBegun;
      for (std::string key; begun >> key;) keysOfBegun.insert(key);
      plan_ = planResume(jobs, keys, path_, keysOfBegun);
      keepBegun(keysOfBegun);
    }
    writer_ = std::make_unique<JournalWriter>(
        path_, options.batch.resume ? JournalWriter::Begin::GoOn : JournalWriter::Begin::Anew);
  } catch (const journal::NotAJournal& error) {
    runningFile_->remove();
    throw Failure(kUsage, std::string("batch: ") + error.what());
  } catch (const std::system_error& error) {
    throw Failure(kNotWritten, "batch: can't read or write the journal '" + path_ + "': " + error.code().message());
  }
}

Failure BatchJournal::notWritten(const std::string& journal, const std::exception& error) {
  return {kNotWritten, "batch: can't write the journal '" + journal + "': " + error.what()};
}

/// What a killed batch began stays written down until it is done: this one may be killed before it comes to that.
void BatchJournal::keepBegun(const std::set<std::string>& begun) {
  if (begun.empty()) return;
  for (std::size_t i = 0; i < jobs_.entries().size() && i < plan_->reasons.size(); ++i) {
    if (plan_->reasons[i] == RunReason::Done) continue;
    std::string key = JobKeys::options(jobs_.read(jobs_.entries()[i]));
    if (begun.contains(key)) running_.insert(std::move(key));
  }
}

std::string BatchJournal::runningText() const {
  std::string text;
  for (const std::string& key : running_) text.append(key).append("\n");
  return text;
}

void BatchJournal::begins(std::size_t job) {
  running_.insert(JobKeys::options(jobs_.read(jobs_.entries()[job])));
  try {
    runningFile_->put(runningText());
  } catch (const std::system_error& error) {
    throw notWritten(path_, error);
  }
}

void BatchJournal::ended(const JobRecord& record) {
  try {
    writer_->add(record);
  } catch (const std::system_error& error) {
    throw notWritten(path_, error);
  }
  running_.erase(record.key.options);
}

namespace {

JobRecord savingRecord(const Job& job, JobKeys& keys, const JobResult& result) {
  JobRecord record = recordOf(job, keys, result);
  record.isSaving = true;
  return record;
}

}  // namespace

void BatchJournal::saves(const Job& job, const JobResult& result) {
  try {
    writer_->add(savingRecord(job, keys_, result));
  } catch (const std::system_error& error) {
    throw notWritten(path_, error);
  }
}

void BatchJournal::savesBeside(const std::string& journal, const Job& job, const JobResult& result) {
  try {
    JobKeys keys;
    JournalWriter(journal, JournalWriter::Begin::GoOn).add(savingRecord(job, keys, result));
  } catch (const std::system_error& error) {
    throw notWritten(journal, error);
  }
}

void BatchJournal::close() {
  if (running_.empty()) {
    runningFile_->remove();
    return;
  }
  try {
    runningFile_->put(runningText());
  } catch (const std::system_error& error) {
    throw notWritten(path_, error);
  }
}

}  // namespace lvx::cli

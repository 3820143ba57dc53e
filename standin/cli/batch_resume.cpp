#include "cli/batch_resume.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "cli/file_hash.h"
#include "journal/journal.h"
#include "options/exit_codes.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using journal::JobRecord;
using journal::OutputFile;
using standin_platform::isInterrupted;

namespace {

/// Hashes of a drawing's files, in their order.
using State = std::vector<std::string>;

bool isSame(const State& a, const State& b) {
  const auto isKnown = [](const std::string& hash) { return !hash.empty(); };
  return a == b && std::all_of(a.begin(), a.end(), isKnown);
}

/// What the journal has of a job.
struct Former {
  bool isThere = false;
  bool isKept = false;
  bool isSaving = false;
  bool isSameProgram = false;
  bool isSameMessages = false;
  RunReason ofFiles = RunReason::Done;
  int exitCode = 0;
  std::uint32_t files = 0;
  std::uint64_t bytes = 0;
  /// By their places among the states.
  std::uint32_t drawing = 0;
  std::uint32_t saved = 0;
};

/// A line of a job that has other options by now.
struct Stray {
  std::string out;
  bool isKept = false;
};

class Planner {
 public:
  Planner(const JobFile& jobs, JobKeys& keys) : jobs_(jobs), keys_(keys), formers_(jobs.entries().size()) {
    for (std::size_t i = 0; i < jobs.entries().size() && !isInterrupted(); ++i)
      places_.emplace(JobKeys::options(jobs.read(jobs.entries()[i])), static_cast<std::uint32_t>(i));
  }

  void take(const JobRecord& record) {
    if (isInterrupted()) return;
    const auto place = places_.find(record.key.options);
    if (place == places_.end()) {
      strays_[record.line] = {record.out, !record.kept.empty()};
      return;
    }
    const JobFile::Entry& entry = jobs_.entries()[place->second];
    const Job job = jobs_.read(entry);
    Former& former = formers_[place->second];
    former = {};
    former.isThere = true;
    former.isKept = !record.kept.empty();
    former.isSaving = record.isSaving;
    former.isSameProgram = isSameHash(record.key.program, keys_.program(job));
    former.isSameMessages = isSameHash(record.key.messages, keys_.messages(job));
    former.exitCode = record.exitCode;
    former.files = static_cast<std::uint32_t>(record.files.size());
    for (const OutputFile& file : record.files) former.bytes += file.bytes;
    former.drawing = placeOf(record.key.drawing);
    former.saved = placeOf(record.savedDrawing);
    if (entry.savesInPlace && record.savedDrawing.size() == record.key.drawing.size())
      savings_[place->second].emplace_back(former.drawing, former.saved);
    if (record.exitCode == 0) former.ofFiles = stateOfFiles(record.files, entry.savesInPlace, job);
  }

  void takeUnreadable(const std::vector<journal::UnreadableLine>& lines) {
    for (const journal::UnreadableLine& line : lines) {
      if (line.jobLine) cutJobs_.insert(*line.jobLine);
      hasUnknown_ = hasUnknown_ || !line.jobLine;
    }
  }

  ResumePlan plan(const std::set<std::string>& begun) {
    ResumePlan plan;
    plan.reasons.assign(formers_.size(), RunReason::NotBegun);
    plan.replaces.assign(formers_.size(), false);
    for (const auto& [key, place] : places_) {
      const Former& former = formers_[place];
      const JobFile::Entry& entry = jobs_.entries()[place];
      const bool isBegun = begun.contains(key) || cutJobs_.contains(entry.line);
      plan.replaces[place] = former.isThere ? !former.isKept : isBegun || hasUnknown_;
      if (former.isThere) continue;
      if (isBegun) plan.reasons[place] = RunReason::BrokenOff;
      const auto stray = strays_.find(entry.line);
      if (stray == strays_.end() || stray->second.out != jobs_.read(entry).options.report.stem) continue;
      if (!isBegun) plan.reasons[place] = RunReason::OtherOptions;
      if (!stray->second.isKept) plan.replaces[place] = true;
    }
    std::vector<std::vector<std::uint32_t>> ofDrawings(jobs_.drawingCount());
    for (std::uint32_t i = 0; i < formers_.size(); ++i) ofDrawings[jobs_.entries()[i].drawing].push_back(i);
    for (const std::vector<std::uint32_t>& ofDrawing : ofDrawings)
      if (!isInterrupted()) planDrawing(ofDrawing, plan);
    for (std::size_t i = 0; i < formers_.size(); ++i) {
      if (plan.reasons[i] != RunReason::Done) continue;
      ++plan.done;
      plan.files += formers_[i].files;
      plan.bytes += formers_[i].bytes;
    }
    return plan;
  }

 private:
  static bool isSameHash(const std::string& a, const std::string& b) { return a == b && !a.empty(); }

  std::uint32_t placeOf(const State& state) {
    const auto [at, isNew] = stateNumbers_.emplace(state, static_cast<std::uint32_t>(states_.size()));
    if (isNew) states_.push_back(state);
    return at->second;
  }

  static RunReason stateOfFiles(const std::vector<OutputFile>& files, bool savesInPlace, const Job& job) {
    const std::vector<std::string> drawing = savesInPlace ? drawingFiles(job.options) : std::vector<std::string>();
    for (const OutputFile& file : files) {
      // Jobs behind it may have saved it too.
      const auto isFile = [&](const std::string& own) { return standin_platform::leadToOneFile(own, file.path); };
      if (std::any_of(drawing.begin(), drawing.end(), isFile)) continue;
      std::error_code error;
      const std::uintmax_t bytes = std::filesystem::file_size(file.path, error);
      if (error) return RunReason::FilesGone;
      if (bytes != file.bytes || !isSameHash(hashOrNothing(file.path), file.hash)) return RunReason::FilesChanged;
    }
    return RunReason::Done;
  }

  const std::string& hashOfDrawing(const std::string& path) {
    const auto [at, isNew] = drawingHashes_.try_emplace(path);
    if (isNew) at->second = hashOrNothing(path);
    return at->second;
  }

  /// The jobs of one drawing, in their order: from the last one back, with the state in which the next job found it.
  void planDrawing(const std::vector<std::uint32_t>& ofDrawing, ResumePlan& plan) {
    const auto isDone = [&](std::uint32_t job) { return formers_[job].isThere && formers_[job].exitCode == 0; };
    State state;
    if (std::any_of(ofDrawing.begin(), ofDrawing.end(), isDone))
      for (const std::string& file : drawingFiles(jobs_.read(jobs_.entries()[ofDrawing.front()]).options))
        state.push_back(hashOfDrawing(file));
    for (auto job = ofDrawing.rbegin(); job != ofDrawing.rend(); ++job) {
      const Former& former = formers_[*job];
      const bool savesInPlace = jobs_.entries()[*job].savesInPlace;
      const bool isSameDrawing = former.isThere && isSame(state, states_[savesInPlace ? former.saved : former.drawing]);
      if (former.isThere) plan.reasons[*job] = reasonOf(former, isSameDrawing);
      takeBack(*job, state);
    }
    bool isSavedAnew = false;
    for (const std::uint32_t job : ofDrawing) {
      RunReason& reason = plan.reasons[job];
      if (reason == RunReason::Done && isSavedAnew) reason = RunReason::DrawingSavedAnew;
      if (reason != RunReason::Done && jobs_.entries()[job].savesInPlace) isSavedAnew = true;
    }
  }

  /// What the job saved in the drawing's files by the journal, the last time first, each file for itself: a kill may have
  /// left some of them old.
  void takeBack(std::uint32_t job, State& state) const {
    const auto savings = savings_.find(job);
    if (savings == savings_.end()) return;
    for (auto saving = savings->second.rbegin(); saving != savings->second.rend(); ++saving) {
      const State& before = states_[saving->first];
      const State& after = states_[saving->second];
      if (before.size() != state.size()) continue;
      for (std::size_t i = 0; i < state.size(); ++i)
        if (isSameHash(state[i], after[i])) state[i] = before[i];
    }
  }

  static RunReason reasonOf(const Former& former, bool isSameDrawing) {
    if (former.exitCode == options::kInterrupted || (former.isSaving && !isSameDrawing)) return RunReason::BrokenOff;
    if (former.exitCode != 0) return RunReason::Failed;
    if (!former.isSameProgram) return RunReason::OtherProgram;
    if (!former.isSameMessages) return RunReason::OtherMessages;
    if (!isSameDrawing) return RunReason::OtherDrawing;
    return former.ofFiles;
  }

  const JobFile& jobs_;
  JobKeys& keys_;
  std::unordered_map<std::string, std::uint32_t> places_;
  std::vector<Former> formers_;
  std::unordered_map<std::size_t, Stray> strays_;
  /// By their lines: jobs of cut lines; and whether there is one that doesn't tell its job.
  std::set<std::size_t> cutJobs_;
  bool hasUnknown_ = false;
  std::vector<State> states_;
  std::map<State, std::uint32_t> stateNumbers_;
  /// Of jobs that save in place: states before and behind it.
  std::unordered_map<std::uint32_t, std::vector<std::pair<std::uint32_t, std::uint32_t>>> savings_;
  std::unordered_map<std::string, std::string> drawingHashes_;
};

}  // namespace

ResumePlan planResume(const JobFile& jobs, JobKeys& keys, const std::string& journal,
                      const std::set<std::string>& begun) {
  Planner planner(jobs, keys);
  std::vector<std::size_t> unreadable;
  std::error_code error;
  if (std::filesystem::exists(journal, error)) {
    const auto reading = journal::readJournal(journal, [&](const JobRecord& record) { planner.take(record); });
    planner.takeUnreadable(reading.unreadable);
    for (const journal::UnreadableLine& line : reading.unreadable) unreadable.push_back(line.number);
  }
  ResumePlan plan = planner.plan(begun);
  plan.unreadable = std::move(unreadable);
  return plan;
}

std::string reasonText(RunReason reason, bool isOne) {
  const std::string they = isOne ? "it " : "they ";
  const std::string their = isOne ? "its " : "their ";
  switch (reason) {
    case RunReason::Done:
      return "";
    case RunReason::NotBegun:
      return "since " + they + (isOne ? "wasn't begun" : "weren't begun");
    case RunReason::BrokenOff:
      return "since " + they + (isOne ? "was broken off" : "were broken off");
    case RunReason::Failed:
      return "since " + they + "failed";
    case RunReason::OtherOptions:
      return "since " + their + "options changed";
    case RunReason::OtherProgram:
      return "since the program changed";
    case RunReason::OtherMessages:
      return "since the message file changed";
    case RunReason::OtherDrawing:
      return "since " + their + "drawing changed";
    case RunReason::FilesGone:
      return "since files of " + std::string(isOne ? "it" : "them") + " are missing";
    case RunReason::FilesChanged:
      return "since files of " + std::string(isOne ? "it" : "them") + " hold something else";
    case RunReason::DrawingSavedAnew:
      return "since a job before saves the drawing anew";
  }
  return "";
}

}  // namespace lvx::cli

#include "cli/drawing_worker.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/file_hash.h"
#include "cli/guarded_run.h"
#include "cli/job_key.h"
#include "cli/report_commands.h"
#include "cli/terminal.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using standin_platform::ChildResult;
using standin_platform::isInterrupted;
using standin_platform::MessageLine;
using standin_platform::ProcessCopy;

namespace {

constexpr std::chrono::milliseconds kLookForInterruption{100};

using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;

// Texts go as they are, whatever bytes are in them.
std::string bytesOf(const Json& value) {
  std::string bytes;
  Json::to_msgpack(value, nlohmann::detail::output_adapter<char>(bytes));
  return bytes;
}

Json filesOf(const std::vector<OutputFile>& files) {
  Json list = Json::array();
  for (const OutputFile& file : files) list.push_back({file.path, file.bytes, file.hash});
  return list;
}

std::vector<OutputFile> unpackedFiles(const Json& list) {
  std::vector<OutputFile> files;
  for (const Json& file : list)
    files.push_back({file[0].get<std::string>(), file[1].get<std::uint64_t>(), file[2].get<std::string>()});
  return files;
}

std::vector<std::string> textsOf(const Json& list) { return list.get<std::vector<std::string>>(); }

/// A process that runs one report after the other, as long as each leaves the drawing as it was.
struct Runner {
  std::unique_ptr<ProcessCopy> process;
  /// The report that runs now.
  std::size_t job = 0;
  Clock::time_point start;
  std::vector<std::string> messages;
};

/// What such a process says at the end of a report.
struct ReportEnd {
  JobResult result;
  /// It can run a further one.
  bool isReady = false;
};

std::string packed(const ReportEnd& end) {
  return bytesOf(Json::array({packed(WorkerMessage{WorkerMessage::Kind::Result, end.result}), end.isReady}));
}

ReportEnd unpackedEnd(std::string_view bytes) {
  const Json list = Json::from_msgpack(bytes.begin(), bytes.end());
  return {unpackedMessage(list[0].get<std::string>()).result, list[1].get<bool>()};
}

class DrawingServer {
 public:
  DrawingServer(const JobFile& jobs, const WorkerOptions& options, MessageLine& line)
      : jobs_(jobs), options_(options), line_(line) {}
  /// For a report over what another one has read.
  DrawingServer(const DrawingServer& other, MessageLine& line)
      : jobs_(other.jobs_),
        options_(other.options_),
        line_(line),
        drawing_(other.drawing_),
        drawingHashes_(other.drawingHashes_) {}

  int serve(const std::string& first) {
    WorkerMessage message;
    const ToldJob job = unpackedJob(first);
    message.result.exitCode = standin_platform::copiesShareMemory() ? load(job, message.result.errors)
                                                                    : readInRunner(job, message.result.errors);
    if (message.result.exitCode != kDone) message.kind = WorkerMessage::Kind::NoDrawing;
    message.result.drawing = drawingHashes_;
    if (!line_.send(packed(message)) || message.result.exitCode != kDone) return message.result.exitCode;
    try {
      // After an interruption it waits for no more jobs: one that it was told then is answered by its end.
      while ((isTold_ && !isInterrupted()) || !running_.empty()) {
        start();
        wait();
        hear();
        collect();
      }
    } catch (const std::exception&) {
      // For lack of memory. What the reports began they take away themselves.
      for (const Runner& runner : running_) runner.process->stop();
      throw;
    }
    ready_.clear();
    return isInterrupted() ? kInterrupted : kDone;
  }

  /// In a process for reports.
  int serveReports(const std::string& first) {
    answer().release();  // the batch answers for its reports, from what they say
    ToldJob job = unpackedJob(first);
    if (!drawing_) {
      ReportEnd end;
      const int code = load(job, end.result.errors);
      if (!job.onlyReads) tell(end.result.errors);
      if (job.onlyReads) {
        end.result.exitCode = code;
        end.result.drawing = drawingHashes_;
        end.isReady = code == kDone;
        line_.send(packed(end));
      }
      if (code != kDone) return code;
      if (job.onlyReads) {
        const std::optional<ToldJob> next = waitForJob();
        if (!next) return isInterrupted() ? kInterrupted : kDone;
        job = *next;
      }
    }
    for (;;) {
      const std::size_t state = drawing_->editState();
      ReportEnd end;
      end.result = runReport(job);
      const bool isAsRead = !drawing_->isChanged() && drawing_->editState() == state;
      end.isReady = isAsRead && end.result.exitCode == kDone && !isInterrupted();
      standin_platform::KeptWords said;
      // What can't be taken is left to who waits for the end of this process.
      end.isReady = standin_platform::takeKeptWords(said) && end.isReady;
      end.result.output = std::move(said.output);
      end.result.errors = std::move(said.errors);
      line_.send(packed(end));
      if (!end.isReady) return end.result.exitCode;
      const std::optional<ToldJob> next = waitForJob();
      if (!next) return isInterrupted() ? kInterrupted : kDone;
      job = *next;
    }
  }

 private:
  /// The exit code for reports of a drawing that can't be read, with its words.
  int load(const ToldJob& told, std::string& words) {
    Job job = jobs_.read(told.line, told.text);
    // Other drawings are read beside this one.
    if (!job.options.common.threads) job.options.common.threads = 1;
    try {
      const auto before = stamps(job.options);
      hashDrawing(job.options);
      drawing_ = std::make_shared<runtime::OpenDrawing>(loadDrawing(job.options));
      const auto after = stamps(job.options);
      for (std::size_t i = 0; i < drawingHashes_.size(); ++i)
        if (before[i] != after[i]) drawingHashes_[i].clear();
      return kDone;
    } catch (const Failure& failure) {
      words = std::string("lvxhost: ") + failure.what() + "\n";
      return failure.code();
    } catch (const runtime::Interrupted&) {
      return kInterrupted;
    } catch (const std::exception& error) {
      words = std::string("lvxhost: the command ended by an exception: ") + error.what() + "\n";
      return kException;
    }
  }

  /// The same where no copy has what this process read: a process for reports reads it, and runs the first of them.
  int readInRunner(ToldJob told, std::string& words) {
    told.onlyReads = true;
    Runner runner;
    try {
      runner.process = newProcess(packed(told));
    } catch (const std::system_error& error) {
      words = "lvxhost: the system has no process for this drawing: " + error.code().message() + "\n";
      return kNotWritten;
    }
    MessageLine& line = runner.process->line();
    while (line.take(runner.messages) && runner.messages.empty()) {
      MessageLine* const only = &line;
      standin_platform::waitForMessages({&only, 1}, kLookForInterruption);
      if (isInterrupted()) runner.process->interrupt();
    }
    if (runner.messages.empty()) {
      const ChildResult ended = runner.process->wait();
      words = ended.output + ended.errors;
      return ended.exitCode == kDone ? static_cast<int>(kException) : ended.exitCode;
    }
    const ReportEnd end = unpackedEnd(runner.messages.front());
    runner.messages.clear();
    words = end.result.errors;
    drawingHashes_ = end.result.drawing;
    if (end.isReady) ready_.push_back(std::move(runner));
    return end.result.exitCode;
  }

  using Stamps = std::vector<std::optional<standin_platform::FileStamp>>;

  static Stamps stamps(const options::Options& options) {
    Stamps stamps;
    for (const std::string& file : drawingFiles(options)) stamps.push_back(standin_platform::stampOf(file));
    return stamps;
  }

  void hashDrawing(const options::Options& options) {
    if (!options_.hashes) return;
    for (const std::string& file : drawingFiles(options)) drawingHashes_.push_back(hashOrNothing(file));
  }

  void start() {
    while (!waiting_.empty()) {
      const std::size_t index = unpackedJob(waiting_.front()).job;
      // Its place first: a report that runs without one would be killed in the middle of its files.
      running_.emplace_back();
      try {
        giveTo(running_.back(), waiting_.front());
        running_.back().job = index;
        running_.back().start = Clock::now();
      } catch (const std::system_error& error) {
        running_.pop_back();
        if (!running_.empty()) return;
        WorkerMessage message{WorkerMessage::Kind::Result, {}};
        message.result.job = index;
        message.result.exitCode = kNotWritten;
        message.result.errors = "lvxhost: the system has no process for this report: " + error.code().message() + "\n";
        line_.send(packed(message));
      } catch (...) {
        running_.pop_back();
        throw;
      }
      waiting_.pop_front();
    }
  }

  /// Tells the job to a process: one that is ready, or a new one.
  void giveTo(Runner& runner, const std::string& told) {
    while (!ready_.empty()) {
      runner.process = std::move(ready_.back().process);
      ready_.pop_back();
      std::vector<std::string> none;
      if (runner.process->line().take(none) && runner.process->line().send(told)) return;
    }
    runner.process = newProcess(told);
  }

  std::unique_ptr<ProcessCopy> newProcess(const std::string& told) {
    return std::make_unique<ProcessCopy>(
        kReportWork, told,
        [&](const std::string& first, MessageLine& line) { return DrawingServer(*this, line).serveReports(first); },
        ProcessCopy::Streams::Kept);
  }

  /// The next job that this process for reports is told; none once the line is closed, or after an interruption.
  [[nodiscard]] std::optional<ToldJob> waitForJob() {
    std::vector<std::string> messages;
    MessageLine* const line = &line_;
    while (!isInterrupted() && line_.take(messages) && messages.empty())
      standin_platform::waitForMessages({&line, 1}, kLookForInterruption);
    if (messages.empty() || isInterrupted()) return std::nullopt;
    return unpackedJob(messages.front());
  }

  JobResult runReport(const ToldJob& told) {
    ReportRun run;
    run.drawing = drawing_;
    JobResult result;
    result.job = told.job;
    result.exitCode = runGuarded([&] {
      Job job = jobs_.read(told.line, told.text);
      if (told.replaces && !job.options.common.keep) job.options.common.overwrite = true;
      if (options_.hashes && told.savesInPlace)
        run.beforeSaving = [&](ExitCode ends, const NewFiles& files) {
          result.savedDrawing = savedHashes(job.options, files);
          tellSaving(told.job, job, ends, run, files, result.savedDrawing);
        };
      const ExitCode ended = runReportCommand(job.command, job.options, run);
      finishOutput();
      return static_cast<int>(ended);
    });
    if (result.exitCode != kDone && !result.savedDrawing.empty())
      result.savedDrawing = savedHashes(jobs_.read(told.line, told.text).options, {});
    result.written = outputFiles(run.written);
    result.kept = run.kept;
    result.drawing = drawingHashes_;
    return result;
  }

  /// Hashes of the drawing's files once the new ones have their names.
  static std::vector<std::string> savedHashes(const options::Options& options, const NewFiles& files) {
    std::vector<std::string> hashes;
    for (const std::string& file : drawingFiles(options)) {
      std::string path = file;
      for (const auto& [target, content] : files)
        if (standin_platform::leadToOneFile(target, file)) path = content;
      hashes.push_back(hashOrNothing(path));
    }
    return hashes;
  }

  void tellSaving(std::size_t index, const Job& job, ExitCode ends, const ReportRun& run, const NewFiles& files,
                  const std::vector<std::string>& savedDrawing) const {
    if (!options_.saving) return;
    JobResult result;
    result.job = index;
    result.exitCode = ends;
    result.written = outputFiles(run.written);
    for (const auto& [target, content] : files) {
      OutputFile file = outputFile(content);
      file.path = target;
      result.written.push_back(std::move(file));
    }
    result.kept = run.kept;
    result.drawing = drawingHashes_;
    result.savedDrawing = savedDrawing;
    options_.saving(job, result);
  }

  [[nodiscard]] std::vector<OutputFile> outputFiles(const std::vector<std::string>& paths) const {
    std::vector<OutputFile> files;
    for (const std::string& path : paths) files.push_back(outputFile(path));
    return files;
  }

  [[nodiscard]] OutputFile outputFile(const std::string& path) const {
    try {
      const FileHash hash = options_.hashes ? hashOf(path) : FileHash{std::filesystem::file_size(path), {}};
      return {path, hash.bytes, hash.digits};
    } catch (const std::system_error&) {
      return {path, 0, {}};  // somebody took it away already
    }
  }

  void wait() {
    std::vector<MessageLine*> lines;
    if (isTold_) lines.push_back(&line_);
    for (const Runner& runner : running_) lines.push_back(&runner.process->line());
    waitForMessages(lines, kLookForInterruption);
    if (isInterrupted()) interruptAll();
  }

  void interruptAll() {
    waiting_.clear();
    for (const Runner& runner : running_) runner.process->interrupt();
  }

  void hear() {
    if (!isTold_) return;
    std::vector<std::string> messages;
    isTold_ = line_.take(messages);
    // Without who asked nobody wants the reports.
    if (!isTold_) interruptAll();
    if (!isTold_ || isInterrupted()) return;
    for (const std::string& message : messages) waiting_.push_back(message);
  }

  void collect() {
    for (auto runner = running_.begin(); runner != running_.end();) {
      const bool isThere = runner->process->line().take(runner->messages);
      if (isThere && runner->messages.empty()) {
        ++runner;
        continue;
      }
      const std::chrono::duration<double> seconds = Clock::now() - runner->start;
      ReportEnd end;
      end.result.job = runner->job;
      end.result.drawing = drawingHashes_;
      const bool isTold = !runner->messages.empty();
      if (isTold) end = unpackedEnd(runner->messages.front());
      if (!end.isReady) hearLast(*runner, end.result, isTold);
      end.result.seconds = seconds.count();
      line_.send(packed(WorkerMessage{WorkerMessage::Kind::Result, std::move(end.result)}));
      runner->messages.clear();
      if (end.isReady) {
        ready_.splice(ready_.end(), running_, runner++);
      } else {
        runner = running_.erase(runner);
      }
    }
  }

  /// Waits for the end of a process for reports, and adds what it said last. One that broke off told no result.
  static void hearLast(Runner& runner, JobResult& result, bool isTold) {
    const ChildResult ended = runner.process->wait();
    if (!isTold) result.exitCode = ended.exitCode;
    result.output += ended.output;
    result.errors += ended.errors;
    if (!ended.unread) return;
    result.errors += "lvxhost: the report's words can't be read: " + ended.unread.message() + "\n";
    if (result.exitCode == kDone) result.exitCode = kNotWritten;
  }

  const JobFile& jobs_;
  const WorkerOptions& options_;
  MessageLine& line_;
  bool isTold_ = true;
  runtime::OpenDrawingRef drawing_;
  std::vector<std::string> drawingHashes_;
  std::deque<std::string> waiting_;  ///< as they were told
  std::list<Runner> running_;
  std::list<Runner> ready_;  ///< without a report
};

}  // namespace

std::string packed(const WorkerMessage& message) {
  const JobResult& result = message.result;
  return bytesOf(
      Json::array({static_cast<int>(message.kind), result.job, result.exitCode, result.seconds, result.output,
                   result.errors, filesOf(result.written), result.kept, result.drawing, result.savedDrawing}));
}

WorkerMessage unpackedMessage(std::string_view bytes) {
  const Json list = Json::from_msgpack(bytes.begin(), bytes.end());
  return {static_cast<WorkerMessage::Kind>(list[0].get<int>()),
          {list[1].get<std::size_t>(), list[2].get<int>(), list[3].get<double>(), list[4].get<std::string>(),
           list[5].get<std::string>(), unpackedFiles(list[6]), textsOf(list[7]), textsOf(list[8]), textsOf(list[9])}};
}

std::string packed(const ToldJob& job) {
  return bytesOf(Json::array({job.job, job.line, job.text, job.savesInPlace, job.replaces, job.onlyReads}));
}

ToldJob unpackedJob(std::string_view bytes) {
  const Json list = Json::from_msgpack(bytes.begin(), bytes.end());
  return {list[0].get<std::size_t>(), list[1].get<std::size_t>(), list[2].get<std::string>(),
          list[3].get<bool>(),        list[4].get<bool>(),        list[5].get<bool>()};
}

int serveDrawing(const JobFile& jobs, const std::string& first, const WorkerOptions& options, MessageLine& line) {
  auto server = std::make_unique<DrawingServer>(jobs, options, line);
  const int code = runGuarded([&] { return server->serve(first); });
  // The process ends: its memory goes as a whole, which is faster than by each object of a drawing.
  (void)server.release();
  return code;
}

int serveReports(const JobFile& jobs, const std::string& first, const WorkerOptions& options, MessageLine& line) {
  return DrawingServer(jobs, options, line).serveReports(first);
}

}  // namespace lvx::cli

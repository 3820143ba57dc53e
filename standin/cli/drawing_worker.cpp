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

#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/file_hash.h"
#include "cli/guarded_run.h"
#include "cli/report_commands.h"
#include "cli/terminal.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using standin_platform::ChildResult;
using standin_platform::isInterrupted;
using standin_platform::MessageLine;
using standin_platform::ProcessCopy;

namespace {

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

std::vector<OutputFile> outputFiles(const Json& list) {
  std::vector<OutputFile> files;
  for (const Json& file : list)
    files.push_back({file[0].get<std::string>(), file[1].get<std::uint64_t>(), file[2].get<std::string>()});
  return files;
}

/// A report that runs.
struct Running {
  std::size_t job = 0;
  Clock::time_point start;
  std::unique_ptr<ProcessCopy> process;
  std::vector<std::string> messages;
};

class DrawingServer {
 public:
  DrawingServer(const JobFile& jobs, bool hashes, MessageLine& line) : jobs_(jobs), hashes_(hashes), line_(line) {}

  int serve(std::size_t first) {
    WorkerMessage message;
    message.result.exitCode = load(first, message.result.errors);
    if (message.result.exitCode != kDone) message.kind = WorkerMessage::Kind::NoDrawing;
    if (!line_.send(packed(message)) || message.result.exitCode != kDone) return message.result.exitCode;
    while (isTold_ || !running_.empty()) {
      start();
      wait();
      hear();
      collect();
    }
    return kDone;
  }

 private:
  /// The exit code for reports of a drawing that can't be read, with its words.
  int load(std::size_t first, std::string& words) {
    const Job job = jobs_.read(jobs_.entries()[first]);
    try {
      drawing_ = std::make_shared<runtime::OpenDrawing>(loadDrawing(job.options));
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

  void start() {
    while (!waiting_.empty()) {
      const std::size_t index = waiting_.front();
      try {
        Running report{index, Clock::now(), nullptr, {}};
        report.process = std::make_unique<ProcessCopy>([&](MessageLine& line) { return runReport(index, line); },
                                                       ProcessCopy::Streams::Kept);
        running_.push_back(std::move(report));
      } catch (const std::system_error& error) {
        if (!running_.empty()) return;
        WorkerMessage message{WorkerMessage::Kind::Result, {}};
        message.result.job = index;
        message.result.exitCode = kNotWritten;
        message.result.errors = "lvxhost: the system has no process for this report: " + error.code().message() + "\n";
        line_.send(packed(message));
      }
      waiting_.pop_front();
    }
  }

  /// In the report's own process.
  int runReport(std::size_t index, MessageLine& line) {
    ReportRun run;
    run.drawing = drawing_;
    const int code = runGuarded([&] {
      const Job job = jobs_.read(jobs_.entries()[index]);
      const ExitCode ended = runReportCommand(job.command, job.options, run);
      finishOutput();
      return static_cast<int>(ended);
    });
    std::vector<OutputFile> files;
    for (const std::string& path : run.written) files.push_back(outputFile(path));
    line.send(bytesOf(filesOf(files)));
    return code;
  }

  [[nodiscard]] OutputFile outputFile(const std::string& path) const {
    try {
      const FileHash hash = hashes_ ? hashOf(path) : FileHash{std::filesystem::file_size(path), {}};
      return {path, hash.bytes, hash.digits};
    } catch (const std::system_error&) {
      return {path, 0, {}};  // somebody took it away already
    }
  }

  void wait() {
    constexpr std::chrono::milliseconds kLookForInterruption{100};
    std::vector<MessageLine*> lines;
    if (isTold_) lines.push_back(&line_);
    for (const Running& report : running_) lines.push_back(&report.process->line());
    waitForMessages(lines, kLookForInterruption);
    if (isInterrupted()) interruptAll();
  }

  void interruptAll() {
    waiting_.clear();
    for (const Running& report : running_) report.process->interrupt();
  }

  void hear() {
    if (!isTold_) return;
    std::vector<std::string> messages;
    isTold_ = line_.take(messages);
    // Without who asked nobody wants the reports.
    if (!isTold_) interruptAll();
    if (!isTold_ || isInterrupted()) return;
    for (const std::string& message : messages) waiting_.push_back(Json::from_msgpack(message).get<std::size_t>());
  }

  void collect() {
    for (auto report = running_.begin(); report != running_.end();) {
      if (report->process->line().take(report->messages)) {
        ++report;
        continue;
      }
      const ChildResult ended = report->process->wait();
      const std::chrono::duration<double> seconds = Clock::now() - report->start;
      WorkerMessage message{WorkerMessage::Kind::Result,
                            {report->job, ended.exitCode, seconds.count(), ended.output, ended.errors, {}}};
      if (!report->messages.empty()) message.result.written = outputFiles(Json::from_msgpack(report->messages.front()));
      line_.send(packed(message));
      report = running_.erase(report);
    }
  }

  const JobFile& jobs_;
  bool hashes_;
  MessageLine& line_;
  bool isTold_ = true;
  runtime::OpenDrawingRef drawing_;
  std::deque<std::size_t> waiting_;
  std::list<Running> running_;
};

}  // namespace

std::string packed(const WorkerMessage& message) {
  const JobResult& result = message.result;
  return bytesOf(Json::array({static_cast<int>(message.kind), result.job, result.exitCode, result.seconds,
                              result.output, result.errors, filesOf(result.written)}));
}

WorkerMessage unpackedMessage(std::string_view bytes) {
  const Json list = Json::from_msgpack(bytes.begin(), bytes.end());
  return {static_cast<WorkerMessage::Kind>(list[0].get<int>()),
          {list[1].get<std::size_t>(), list[2].get<int>(), list[3].get<double>(), list[4].get<std::string>(),
           list[5].get<std::string>(), outputFiles(list[6])}};
}

std::string packedJob(std::size_t job) { return bytesOf(Json(job)); }

int serveDrawing(const JobFile& jobs, std::size_t first, bool hashes, MessageLine& line) {
  return DrawingServer(jobs, hashes, line).serve(first);
}

}  // namespace lvx::cli

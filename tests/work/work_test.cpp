// No heavy job costs more than a tenth beyond what was recorded for it: instructions, allocations and bytes read are counted,
// which no other work of the machine changes. `./lvx bench --record-work` records what they cost now; the commit says why.
//
// The figures hold for the compiler, kind of build and processor that they were recorded with. Another one has other figures,
// and its tests are skipped until some are recorded for it beside those.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "generator/scaled_drawing.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

constexpr double kMost = 1.1;
constexpr const char* kValgrind = "/usr/bin/valgrind";

std::filesystem::path recordsPath() { return test::inSource("/tests/work/recorded_work.json"); }
bool isRecording() { return std::getenv("LVX_RECORD_WORK") != nullptr; }

nlohmann::ordered_json readRecords() {
  std::ifstream in(recordsPath());
  return in ? nlohmann::ordered_json::parse(in) : nlohmann::ordered_json::object();
}

struct Job {
  const char* name;
  const char* program;
  std::vector<std::string> arguments;
  bool isPart = false;  ///< instructions count within lvxMeasuredPart alone
};

void PrintTo(const Job& job, std::ostream* out) { *out << job.name; }

std::vector<Job> jobs() {
  const auto geometry = [](const char* name) { return Job{name, "/tests/work/work_jobs", {name}, true}; };
  const auto host = [](const char* name, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--threads", "1", "--overwrite", "--quiet"});
    return Job{name, "/bin/lvxhost", std::move(arguments)};
  };
  return {
      geometry("index"),
      geometry("sampling"),
      geometry("lattice"),
      geometry("stations"),
      geometry("transitions"),
      geometry("corridors"),
      {"start", "/bin/lvxhost", {"--version"}},
      host("reading", {"info", "large.xml"}),
      host("points",
           {"--forms", "txt,html", "points", "small.xml", "--alignment", "Road", "--points", "all", "--out", "points"}),
      host("workbook",
           {"--forms", "xls", "points", "small.xml", "--alignment", "Road", "--points", "all", "--out", "workbook"}),
      host("projection", {"projection", "small.xml", "--alignment", "Road", "--group", "Sections", "--surface",
                          "Ground", "--out", "projection"}),
      host("gls",
           {"gls", "small.xml", "--alignment", "Road", "--profile", "Design", "--group", "Sections", "--out", "gls"}),
  };
}

class Work : public testing::TestWithParam<Job> {
 protected:
  static void SetUpTestSuite() {
    folder_ = new test::TemporaryFolder();
    generator::DrawingSize size;
    size.points = 1000;
    makeDrawing("small.xml", size);
    size.triangles = 100'000;
    makeDrawing("large.xml", size);
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }
  static void makeDrawing(const std::string& name, const generator::DrawingSize& size) {
    generator::TextOutput out((*folder_ / name).string());
    generator::writeScaledDrawing(out, size);
    out.finish();
  }

  static std::string run(test::RunRequest request) {
    request.folder = folder_->path();
    request.environment["SOURCE_DATE_EPOCH"] = "1700000000";
    request.environment["LC_ALL"] = "C.UTF-8";
    const test::RunResult result = test::runProgram(request);
    if (result.exitCode != 0) throw std::runtime_error(request.program.string() + " failed: " + result.errors);
    return result.errors;
  }

  /// All numbers that stand in a column of a file's lines, added up.
  static std::uint64_t sumOf(const std::string& text, std::size_t column) {
    std::istringstream lines(text);
    std::uint64_t sum = 0;
    for (std::string line; std::getline(lines, line);) {
      std::istringstream numbers(line);
      std::uint64_t number = 0;
      for (std::size_t i = 0; i <= column; ++i) numbers >> number;
      sum += number;
    }
    return sum;
  }

  /// The processes of a job together.
  static std::uint64_t instructionsOf(const Job& job) {
    const std::filesystem::path logs = *folder_ / (std::string(job.name) + "-logs");
    std::filesystem::create_directory(logs);
    test::RunRequest request;
    request.program = kValgrind;
    request.arguments = {"--tool=callgrind", "--callgrind-out-file=/dev/null", "--log-file=" + (logs / "%p").string()};
    if (job.isPart) request.arguments.emplace_back("--toggle-collect=lvxMeasuredPart");
    request.arguments.push_back(test::inBuild(job.program));
    request.arguments.insert(request.arguments.end(), job.arguments.begin(), job.arguments.end());
    run(std::move(request));
    std::uint64_t sum = 0;
    for (const auto& log : std::filesystem::directory_iterator(logs)) {
      const std::string text = test::fileBytes(log.path());
      constexpr std::string_view kTold = "Collected : ";
      const std::size_t told = text.find(kTold);
      if (told == std::string::npos) throw std::runtime_error("valgrind counted nothing: " + text);
      sum += std::stoull(text.substr(told + kTold.size()));
    }
    return sum;
  }

  static std::map<std::string, std::uint64_t> countsOf(const Job& job) {
    const std::filesystem::path counts = *folder_ / (std::string(job.name) + "-counts");
    test::RunRequest request;
    request.program = test::inBuild(job.program);
    request.arguments = job.arguments;
    request.environment = {{"LD_PRELOAD", test::inBuild("/tests/work/liblvx_work_counter.so")},
                           {"LVX_WORK_COUNT", counts.string()}};
    run(std::move(request));
    const std::string text = test::fileBytes(counts);
    return {{"instructions", instructionsOf(job)}, {"allocations", sumOf(text, 0)}, {"bytes read", sumOf(text, 1)}};
  }

 private:
  inline static test::TemporaryFolder* folder_ = nullptr;
};

TEST_P(Work, StaysWithinATenthOfWhatIsRecorded) {
  if (!std::filesystem::exists(kValgrind)) GTEST_SKIP() << "valgrind isn't installed, which counts instructions";
  nlohmann::ordered_json records = readRecords();
  if (!isRecording() && !records.contains(LVX_BUILT_WITH))
    GTEST_SKIP() << "nothing is recorded for " LVX_BUILT_WITH "; ./lvx bench --record-work does that";
  const Job& job = GetParam();
  const std::map<std::string, std::uint64_t> counts = countsOf(job);
  for (const auto& [name, count] : counts) ASSERT_GT(count, 0U) << name << " of " << job.name << " aren't counted";
  if (isRecording()) {
    for (const auto& [name, count] : counts) records[LVX_BUILT_WITH][job.name][name] = count;
    std::ofstream out(recordsPath());
    out << records.dump(2) << '\n';
    ASSERT_TRUE(out.flush()) << recordsPath();
    return;
  }
  const auto& recorded = records[LVX_BUILT_WITH];
  ASSERT_TRUE(recorded.contains(job.name)) << "nothing is recorded for this job; ./lvx bench --record-work does that";
  for (const auto& [name, count] : counts) {
    const auto most = static_cast<std::uint64_t>(kMost * recorded[job.name].value(name, 0.0));
    EXPECT_LE(count, most) << job.name << " takes " << count << " " << name << ", recorded are "
                           << recorded[job.name].value(name, 0.0)
                           << ". Where that is meant, ./lvx bench --record-work records it, and the commit says why.";
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Work, testing::ValuesIn(jobs()),
                         [](const auto& job) { return std::string(job.param.name); });

}  // namespace
}  // namespace lvx

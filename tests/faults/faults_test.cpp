// Whole runs of lvxhost in which something of the system fails, one thing a run: system calls, memory, room on the disk, or
// the process itself. Whatever it is, nothing is lost and nothing is untold.
//
// Each test tries some of a scenario's points, chosen by a seed. LVX_FAULTS=all tries every one (`./lvx test faults`),
// LVX_FAULTS=20 so many a test; LVX_FAULTS_SEED=7 chooses others; LVX_FAULTS_AT=137 tries the point of that number, which a
// failure tells.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/syscall.h>

#include "faulty_run.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::faults {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

struct Scenario {
  const char* name;
  std::vector<std::string> arguments;
  /// That many runs came before, so that there are files to replace.
  int former = 0;
  /// Where a report stands already it waits for an answer that its script hasn't got.
  bool needsFreeNames = false;
  /// A drawing large enough to be read by several threads stands there too.
  bool hasGround = false;
};

const std::vector<Scenario>& scenarios() {
  static const std::vector<std::string> gls{"--overwrite", "gls",     "road.xml", "--alignment", "CL",     "--profile",
                                            "FG",          "--group", "Lines",    "--out",       "out/gls"};
  const auto with = [](std::vector<std::string> arguments, const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  };
  static const std::vector<Scenario> all{
      {"Projection",
       {"--overwrite", "projection", "road.xml", "--alignment", "CL", "--surface", "EG", "--lines",
        "every=100,left=10,right=10", "--out", "out/projection"}},
      {"Points",
       {"--overwrite", "points", "road.xml", "--alignment", "CL", "--points", "all", "--out", "out/points"},
       1},
      {"Gls", gls},
      {"GlsAgain", gls, 1},
      {"GlsSavedBeside", with(gls, {"--add-sections", "--save", "out/saved.xml"})},
      {"GlsSavedInPlace", with(gls, {"--add-sections", "--save", "road.xml"})},
      {"Batch", {"--overwrite", "batch", "jobs.jsonl", "--jobs", "1"}},
      {"Play", {"play", "road.xml", "script.json"}, 0, true},
      {"Info", {"info", "road.xml", "--json"}},
      {"Ground", {"info", "ground.xml", "--json", "--threads", "3"}, 0, false, true},
      {"Lines",
       {"--overwrite", "lines", "road.xml", "--alignment", "CL", "--name", "New", "--every", "50", "--left", "5",
        "--right", "5", "--save", "out/lines.xml"}},
      {"Book",
       {"--overwrite", "sections", "road.xml", "--alignment", "CL", "--lines", "every=100,left=10,right=10", "--out",
        "out/book.pdf"},
       1},
  };
  return all;
}

enum class Kind { Calls, ShortCounts, Kills, Allocations, MemoryEnds, Disks, FileSizes, MemoryLimits };

const std::vector<std::pair<Kind, const char*>> kKinds{
    {Kind::Calls, "Calls"},           {Kind::ShortCounts, "ShortCounts"},
    {Kind::Kills, "Kills"},           {Kind::Allocations, "Allocations"},
    {Kind::MemoryEnds, "MemoryEnds"}, {Kind::Disks, "Disks"},
    {Kind::FileSizes, "FileSizes"},   {Kind::MemoryLimits, "MemoryLimits"},
};

/// One thing that goes wrong.
struct Point {
  Fault fault = Fault::None;
  std::uint64_t at = 0;
  std::uint64_t lasting = 1;
  int error = 0;
  std::uint64_t largestFile = 0;
  std::uint64_t memory = 0;
};

const char* nameOfError(int error) {
  switch (error) {
    case ENOSPC:
      return "ENOSPC";
    case EIO:
      return "EIO";
    case EINTR:
      return "EINTR";
    case ENOMEM:
      return "ENOMEM";
    default:
      return "an error";
  }
}

/// Standard output without the seconds that a command took.
std::string repeatable(std::string output) {
  if (const std::size_t start = output.find("\n  \"seconds\": "); start != std::string::npos)
    output.erase(start, output.find('\n', start + 1) - start);
  return output;
}

std::string describe(const Point& point, const FaultyResult& result) {
  if (point.largestFile > 0) return "no file above " + std::to_string(point.largestFile) + " bytes";
  if (point.memory > 0) return "no more than " + std::to_string(point.memory) + " bytes of addresses";
  const std::string at = std::to_string(point.at);
  if (point.fault == Fault::AllocationFails) return "allocation " + at + " fails";
  if (point.fault == Fault::AllocationsFail) return "allocations fail from " + at + " on";
  if (point.fault == Fault::DiskFills) return "the disk is full after " + at + " bytes";
  std::string call = "call " + at + ", " + nameOfCall(result.done.number);
  if (result.done.descriptor >= 0) call += " on " + std::to_string(result.done.descriptor);
  if (result.done.size > 0) call += " of " + std::to_string(result.done.size) + " bytes";
  if (!result.path.empty()) call += " of " + result.path;
  switch (point.fault) {
    case Fault::CallFails:
      return call + ": " + nameOfError(point.error);
    case Fault::CallComesShort:
      return call + ": half of it";
    case Fault::CallKilledBefore:
      return call + ": killed before";
    case Fault::CallKilledWithin:
      return call + ": killed within";
    default:
      return call;
  }
}

bool isOneOf(int number, std::initializer_list<int> numbers) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

std::vector<int> errorsOf(int number) {
  if (number == SYS_mmap) return {ENOMEM};
  std::vector<int> errors{ENOSPC, EIO};
  // Only calls that may wait for something are ever interrupted.
  if (isOneOf(number, {SYS_open, SYS_openat, SYS_read, SYS_pread64, SYS_write, SYS_pwrite64, SYS_writev, SYS_fsync,
                       SYS_close, SYS_ftruncate, SYS_wait4, SYS_waitid}))
    errors.push_back(EINTR);
  return errors;
}

/// The folder of a run: what lies there before and, once it ran without a fault, behind it.
class Place {
 public:
  explicit Place(const Scenario& scenario) : scenario_(scenario) {
    fs::create_directory(work());
    fs::create_directory(temporary());
  }
  [[nodiscard]] fs::path work() const { return folder_ / "work"; }
  [[nodiscard]] fs::path temporary() const { return folder_ / "tmp"; }

  /// As before every run.
  void lay(const Files& files) const {
    for (const fs::path& folder : {work(), temporary()})
      for (const auto& entry : fs::directory_iterator(folder)) fs::remove_all(entry.path());
    for (const auto& [name, bytes] : files) {
      if (name.back() == '/')
        fs::create_directories(work() / name);
      else
        std::ofstream(work() / name, std::ios::binary) << bytes;
    }
  }
  [[nodiscard]] FaultyRun run(const Point& point) const {
    FaultyRun run;
    run.program = test::inBuild("/bin/lvxhost");
    run.arguments = scenario_.arguments;
    run.folder = work();
    run.temporaryFolder = temporary();
    run.fault = point.fault;
    run.at = point.at;
    run.lasting = point.lasting;
    run.error = point.error;
    run.largestFile = point.largestFile;
    run.memory = point.memory;
    run.isWatched = point.largestFile == 0 && point.memory == 0;
    return run;
  }

 private:
  const Scenario& scenario_;
  test::TemporaryFolder folder_;
};

/// A strip of triangles, in lists of half a megabyte each.
std::string groundDrawing() {
  std::string points;
  std::string faces;
  for (int i = 1; i <= 16'000; ++i) {
    const std::string id = std::to_string(i);
    points += "<P id=\"" + id + "\">" + id + ".5 " + std::to_string(i % 2) + ".5 7.25</P>\n";
    if (i > 2) faces += "<F>" + std::to_string(i - 2) + " " + std::to_string(i - 1) + " " + id + "</F>\n";
  }
  return "<LandXML version=\"1.2\"><Surfaces><Surface name=\"EG\"><Definition surfType=\"TIN\">\n<Pnts>" + points +
         "</Pnts>\n<Faces>" + faces + "</Faces></Definition></Surface></Surfaces></LandXML>\n";
}

/// A scenario with what it gives where nothing goes wrong.
class Subject {
 public:
  explicit Subject(const Scenario& scenario) : scenario_(scenario), place_(scenario) {
    before_["out/"];
    before_["road.xml"] = test::fileBytes(test::inSource("/tests/faults/road.xml"));
    before_["jobs.jsonl"] =
        R"({"command": "projection", "drawing": "road.xml", "alignment": "CL", "surface": "EG", "group": "Lines", "out": "out/first"})"
        "\n"
        R"({"command": "points", "drawing": "road.xml", "alignment": "CL", "points": "1-3", "out": "out/second"})"
        "\n";
    before_["script.json"] =
        R"([{"command": "lvx_Report_GLS"}, {"select": 261, "text": "North"}, {"select": 112, "text": "FG"},)"
        R"( {"select": 262, "text": "Lines"}, {"type": 100, "text": "out/played"}, {"click": 1}, {"click": 2}])";
    if (scenario.hasGround) before_["ground.xml"] = groundDrawing();
    for (int i = 0; i < scenario.former; ++i) {
      (void)plainRun();
      // Older files, which can be told from the new ones.
      before_ = contentOf(place_.work());
      for (auto& [name, bytes] : before_)
        if (name.starts_with("out/") && name.ends_with(".txt")) bytes = "an older report\n";
    }
    golden_ = plainRun();
    after_ = contentOf(place_.work());
    const FaultyResult second = plainRun();
    isRepeatable_ = repeatable(second.output) == repeatable(golden_.output) && contentOf(place_.work()) == after_;
  }

  [[nodiscard]] const FaultyResult& golden() const { return golden_; }
  /// That a second run gives the same, so that any difference comes from a fault.
  [[nodiscard]] bool isRepeatable() const { return isRepeatable_; }
  [[nodiscard]] bool hasOutput() const { return before_ != after_ || !golden_.output.empty(); }

  /// What is wrong with the end of a run; empty for nothing. `point` is described for the reader.
  [[nodiscard]] std::string judge(const Place& place, const Point& point, std::string& description) const {
    place.lay(before_);
    const FaultyResult result = runWithFault(place.run(point));
    description = describe(point, result);
    const bool isKilled = point.fault == Fault::CallKilledBefore || point.fault == Fault::CallKilledWithin;
    if (isKilled && result.signal == SIGKILL) return judgeKilled(place);
    std::string wrong = judgeEnd(result);
    const Files now = contentOf(place.work());
    wrong += judgeFiles(now);
    wrong += judgeLeftOvers(place, now, result);
    if (result.exitCode == 0) wrong += judgeSuccess(result, now);
    if (!wrong.empty()) wrong += "  exit code " + std::to_string(result.exitCode) + "; it said:\n" + result.errors;
    return wrong;
  }

 private:
  [[nodiscard]] FaultyResult plainRun() const {
    place_.lay(before_);
    return runWithFault(place_.run({}));
  }

  static std::string judgeEnd(const FaultyResult& result) {
    if (result.isHung) return "  it hung\n";
    if (result.signal != 0) return "  it ended by signal " + std::to_string(result.signal) + "\n";
    constexpr int kException = 70;
    if (result.exitCode > 5 && result.exitCode != kException)
      return "  the exit code " + std::to_string(result.exitCode) + " isn't one of its own\n";
    // What can't be written to standard error can't be told.
    const bool isMute = result.isDone && result.done.descriptor == 2;
    // A transcript tells it as an event.
    const bool isTold = result.errors.find_first_not_of(" \n") != std::string::npos ||
                        result.output.find("\"event\":\"exception\"") != std::string::npos ||
                        result.output.find("\"event\":\"unwritten\"") != std::string::npos;
    if (result.exitCode != 0 && !isTold && !isMute) return "  it failed without a word\n";
    if (result.errors.find("changed by another program") != std::string::npos)
      return "  it blames a program that isn't there\n";
    return {};
  }

  [[nodiscard]] bool isSame(const std::string& name, const std::string& bytes, const Files& files) const {
    const auto file = files.find(name);
    return file != files.end() && file->second == bytes;
  }

  /// Under each name stands what stood there, or all of what should.
  [[nodiscard]] std::string judgeFiles(const Files& now) const {
    std::string wrong;
    for (const auto& [name, bytes] : now) {
      if (!before_.contains(name) && !after_.contains(name)) continue;
      if (!isSame(name, bytes, before_) && !isSame(name, bytes, after_))
        wrong += "  " + name + " is neither the old nor the new one (" + std::to_string(bytes.size()) + " bytes)\n";
    }
    for (const auto& [name, bytes] : before_)
      if (!now.contains(name)) wrong += "  " + name + " is lost\n";
    return wrong;
  }

  [[nodiscard]] std::string judgeLeftOvers(const Place& place, const Files& now, const FaultyResult& result) const {
    std::string wrong;
    // What the system doesn't let anybody remove stays.
    const bool isRemoval = isOneOf(result.done.number, {SYS_unlink, SYS_unlinkat, SYS_rmdir});
    const std::string kept = isRemoval ? fs::path(result.path).filename().string() : std::string();
    const auto add = [&](const std::string& name) {
      const fs::path path(name);
      if (kept.empty() || (path.has_filename() ? path : path.parent_path()).filename() != kept)
        wrong += "  " + name + " is left over\n";
    };
    for (const auto& [name, bytes] : now)
      if (!before_.contains(name) && !after_.contains(name)) add(name);
    for (const auto& [name, bytes] : contentOf(place.temporary())) add("tmp/" + name);
    return wrong;
  }

  [[nodiscard]] std::string judgeSuccess(const FaultyResult& result, const Files& now) const {
    std::string wrong;
    for (const auto& [name, bytes] : after_) {
      if (isSame(name, bytes, now)) continue;
      wrong += "  success is told, but " + name + (now.contains(name) ? " isn't the new one\n" : " is missing\n");
    }
    if (repeatable(result.output) != repeatable(golden_.output))
      wrong += "  success is told, but standard output differs\n";
    return wrong;
  }

  /// After a kill whole files stand under all names, and the next run finishes the work and clears what lies about.
  [[nodiscard]] std::string judgeKilled(const Place& place) const {
    std::string wrong = judgeFiles(contentOf(place.work()));
    for (const auto& [name, bytes] : after_)
      if (scenario_.needsFreeNames && !before_.contains(name)) fs::remove(place.work() / name);
    const FaultyResult next = runWithFault(place.run({}));
    const Files now = contentOf(place.work());
    if (next.exitCode != 0) wrong += "  the next run gives " + std::to_string(next.exitCode) + ": " + next.errors;
    for (const auto& [name, bytes] : after_)
      if (!isSame(name, bytes, now)) wrong += "  the next run doesn't give the right " + name + "\n";
    for (const auto& [name, bytes] : now)
      if (!after_.contains(name)) wrong += "  the next run doesn't clear " + name + "\n";
    return wrong;
  }

  const Scenario& scenario_;
  Place place_;
  Files before_;
  Files after_;
  FaultyResult golden_;
  bool isRepeatable_ = false;
};

/// Every point of a kind.
class Points {
 public:
  Points(const Scenario& scenario, const Subject& subject) : scenario_(scenario), golden_(subject.golden()) {}

  [[nodiscard]] std::vector<Point> of(Kind kind) const {
    switch (kind) {
      case Kind::Calls:
        return calls();
      case Kind::ShortCounts:
        return shortCounts();
      case Kind::Kills:
        return kills();
      case Kind::Allocations:
        return allocations(1);
      case Kind::MemoryEnds:
        return allocations(~0ULL);
      case Kind::Disks:
        return sizes(golden_.bytes, [](std::uint64_t size) { return Point{.fault = Fault::DiskFills, .at = size}; });
      case Kind::FileSizes:
        return sizes(golden_.bytes, [](std::uint64_t size) { return Point{.largestFile = size + 1}; });
      case Kind::MemoryLimits:
        return memoryLimits();
    }
    return {};
  }

 private:
  [[nodiscard]] std::vector<Point> calls() const {
    std::vector<Point> points;
    for (std::size_t i = 0; i < golden_.record.size(); ++i)
      for (const int error : errorsOf(golden_.record[i].number))
        points.push_back({.fault = Fault::CallFails, .at = i + 1, .error = error});
    return points;
  }
  [[nodiscard]] std::vector<Point> shortCounts() const {
    std::vector<Point> points;
    for (std::size_t i = 0; i < golden_.record.size(); ++i)
      if (golden_.record[i].size > 1) points.push_back({.fault = Fault::CallComesShort, .at = i + 1});
    return points;
  }
  [[nodiscard]] std::vector<Point> kills() const {
    std::vector<Point> points;
    for (std::size_t i = 0; i < golden_.record.size(); ++i) {
      const int number = golden_.record[i].number;
      const bool writes = isOneOf(number, {SYS_write, SYS_pwrite64, SYS_writev});
      if (!writes && !isOneOf(number, {SYS_open, SYS_openat, SYS_rename, SYS_renameat2, SYS_unlink, SYS_unlinkat,
                                       SYS_mkdir, SYS_ftruncate, SYS_fsync, SYS_close, SYS_fchmod}))
        continue;
      points.push_back({.fault = Fault::CallKilledBefore, .at = i + 1});
      if (writes && golden_.record[i].size > 1) points.push_back({.fault = Fault::CallKilledWithin, .at = i + 1});
    }
    return points;
  }
  [[nodiscard]] std::vector<Point> allocations(std::uint64_t lasting) const {
    std::vector<Point> points;
    const Fault fault = lasting == 1 ? Fault::AllocationFails : Fault::AllocationsFail;
    for (std::uint64_t i = 1; i <= golden_.allocations; ++i)
      points.push_back({.fault = fault, .at = i, .lasting = lasting});
    return points;
  }
  template <typename Make>
  [[nodiscard]] static std::vector<Point> sizes(std::uint64_t most, const Make& make) {
    constexpr std::uint64_t kMost = 400;
    std::vector<Point> points;
    const std::uint64_t step = std::max<std::uint64_t>(1, most / kMost);
    for (std::uint64_t size = 0; size <= most; size += step) points.push_back(make(size));
    return points;
  }

  /// From what the program takes to say its version up to what the run needs.
  [[nodiscard]] std::vector<Point> memoryLimits() const {
    constexpr std::uint64_t kMegabyte = 1U << 20U;
    constexpr std::uint64_t kMost = 1024 * kMegabyte;
    const auto least = [&](const std::vector<std::string>& arguments) {
      std::uint64_t low = kMegabyte;
      std::uint64_t high = kMost;
      while (high - low > kMegabyte / 16) {
        const std::uint64_t middle = low + (high - low) / 2;
        test::TemporaryFolder folder;
        FaultyRun run;
        run.program = test::inBuild("/bin/lvxhost");
        run.arguments = arguments;
        run.folder = folder.path();
        run.temporaryFolder = folder.path();
        run.isWatched = false;
        run.memory = middle;
        (runWithFault(run).exitCode == 0 ? high : low) = middle;
      }
      return high;
    };
    const std::uint64_t begin = least({"--version"});
    constexpr std::uint64_t kStep = 1U << 15U;
    constexpr std::uint64_t kRange = 24 * kMegabyte;
    std::vector<Point> points;
    for (std::uint64_t memory = begin; memory < begin + kRange; memory += kStep) points.push_back({.memory = memory});
    return points;
  }

  const Scenario& scenario_;
  const FaultyResult& golden_;
};

std::string variable(const char* name, const char* otherwise) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != 0 ? value : otherwise;
}

/// The numbers of the points that this run tries.
std::vector<std::size_t> chosen(std::size_t count, const std::string& test) {
  const std::string one = variable("LVX_FAULTS_AT", "");
  if (!one.empty()) return {static_cast<std::size_t>(std::stoull(one))};
  std::vector<std::size_t> numbers(count);
  for (std::size_t i = 0; i < count; ++i) numbers[i] = i;
  const std::string wanted = variable("LVX_FAULTS", "3");
  if (wanted == "all") return numbers;
  std::seed_seq seed(test.begin(), test.end());
  std::mt19937 random(seed);
  random.discard(std::stoull(variable("LVX_FAULTS_SEED", "1")));
  std::vector<std::size_t> some;
  // std::sample differs between libraries; any even choice will do.
  for (std::size_t i = std::stoull(wanted); i > 0 && !numbers.empty(); --i) {
    const std::size_t which = random() % numbers.size();
    some.push_back(numbers[which]);
    numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(which));
  }
  return some;
}

using Parameter = std::tuple<std::size_t, std::size_t>;

class FaultsTest : public testing::TestWithParam<Parameter> {};

TEST_P(FaultsTest, LeavesNothingLostAndNothingUntold) {
  const Scenario& scenario = scenarios()[std::get<0>(GetParam())];
  const Kind kind = kKinds[std::get<1>(GetParam())].first;
  const Subject subject(scenario);
  ASSERT_EQ(subject.golden().exitCode, 0) << subject.golden().errors;
  ASSERT_TRUE(subject.isRepeatable());
  ASSERT_TRUE(subject.hasOutput());
  const std::vector<Point> points = Points(scenario, subject).of(kind);
  ASSERT_FALSE(points.empty());

  const auto* const info = testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = std::string(info->test_suite_name()) + "." + info->name();
  const std::vector<std::size_t> numbers = chosen(points.size(), name);
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::size_t wrongs = 0;
  const auto work = [&] {
    const Place place(scenario);
    for (std::size_t i = next++; i < numbers.size(); i = next++) {
      ASSERT_LT(numbers[i], points.size());
      std::string description;
      std::string wrong;
      try {
        wrong = subject.judge(place, points[numbers[i]], description);
      } catch (const std::exception& exception) {
        wrong = std::string("  ") + exception.what() + "\n";
      }
      if (wrong.empty()) continue;
      const std::lock_guard guard(mutex);
      ++wrongs;
      ADD_FAILURE() << scenario.name << ", " << description << "\n"
                    << wrong << "again by: LVX_FAULTS_AT=" << numbers[i] << " "
                    << test::inBuild("/tests/faults/faults_test") << " --gtest_filter=" << name;
    }
  };
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  RecordProperty("points", static_cast<int>(numbers.size()));
  if (numbers.size() == points.size() || wrongs > 0)
    std::printf("%s: %zu of %zu points tried, %zu of them wrong\n", name.c_str(), numbers.size(), points.size(),
                wrongs);
}

std::vector<Parameter> everyCase() {
  std::vector<Parameter> cases;
  for (std::size_t scenario = 0; scenario < scenarios().size(); ++scenario)
    for (std::size_t kind = 0; kind < kKinds.size(); ++kind) cases.emplace_back(scenario, kind);
  return cases;
}

INSTANTIATE_TEST_SUITE_P(EveryRun, FaultsTest, testing::ValuesIn(everyCase()),
                         [](const testing::TestParamInfo<Parameter>& parameter) {
                           return std::string(scenarios()[std::get<0>(parameter.param)].name) +
                                  kKinds[std::get<1>(parameter.param)].second;
                         });

}  // namespace
}  // namespace lvx::faults

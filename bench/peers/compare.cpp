// Our rows beside the peers that are installed: `./lvx bench --compare`.
//
//   lvx-compare [JOB…] [--rounds N] [--out FILE] [--data FOLDER] [--commit TEXT]
//
// Each round takes ours and every peer once, so that a noisy minute hits them all. Writes a document of tables. Exit code 1,
// with the differences on standard error, where counts, sums or hashes disagree or a program fails; 2 for a wrong call.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>

#include "../measuring.h"
#include "comparison/comparison.h"

namespace {

using lvx::comparison::Comparison;
using lvx::comparison::Job;
using lvx::comparison::Peer;

const std::string kBench = LVX_BENCH_DIR "/bench_";
const std::string kPeers = LVX_BENCH_DIR "/peers/peer_";

/// A program and what it is called in the lines that it prints; none where that follows from its job.
struct Program {
  std::string path;
  std::string arguments;
  const char* package = "";  ///< that has its library
};

struct PlannedJob {
  Job job;
  std::string data;        ///< a folder or file below that of all data
  std::string makingData;  ///< by which program, with out= or --out as the last argument; empty for none
  std::vector<Program> programs;
};

std::string makeSet(const std::string& arguments) { return kPeers + "make_data " + arguments + " out="; }

/// `data` stands for the data's path in the arguments.
std::vector<PlannedJob> allJobs() {
  const std::vector<std::string> samples{"samples", "counts_hash", "sum_z", "sum_d"};
  const std::vector<std::string> numbers{"points",   "faces", "hidden", "sum_north",
                                         "sum_east", "sum_z", "sum_id", "sum_corner"};
  const auto samplers = [](bool hasCorners) {
    std::vector<Program> programs{{kBench + "sample", "runs=3 data="}};
    if (!hasCorners) programs.push_back({kPeers + "sample_cgal", "data=", "libcgal-dev"});
    programs.push_back({kPeers + "sample_geos", "data=", "libgeos-dev libgeos++-dev"});
    if (!hasCorners) programs.push_back({kPeers + "sample_vtk", "data=", "libvtk9-dev"});
    if (!hasCorners) programs.push_back({kPeers + "sample_bound", "data="});
    return programs;
  };
  const std::vector<Peer> samplingPeers{{"CGAL walk"}, {"GEOS tree"}, {"VTK locator"}, {"plain walk", true}};
  const auto readers = [](const std::string& ours) {
    return std::vector<Program>{{kBench + "landxml", ours + " file="},
                                {kPeers + "read_libxml2", "file=", "libxml2-dev"},
                                {kPeers + "read_expat", "file=", "libexpat1-dev"},
                                {kPeers + "read_pugixml", "file="},
                                {kPeers + "read_bound", "file="}};
  };
  const std::vector<Peer> readingPeers{{"libxml2"}, {"expat"}, {"pugixml"}, {"plain scan", true}};
  const std::string large = "5m/tin.xml";
  const std::string makeLarge = makeSet("triangles=5000000 points=1000 xml=1");

  std::vector<PlannedJob> jobs{
      {{"sampling", "sampling in order, 1M triangles", "lvx", "at most 0.5", samples, samplingPeers},
       "1m",
       makeSet("triangles=1000000 points=1000000"),
       samplers(false)},
      {{"holes", "sampling, 1M triangles with 40 holes", "lvx", "at most 0.5", samples, samplingPeers},
       "1m-holes",
       makeSet("triangles=1000000 points=1000 holes=40"),
       samplers(false)},
      {{"shuffled", "sampling, 1M triangles in shuffled numbering", "lvx", "at most 0.25", samples, samplingPeers},
       "1m-shuffled",
       makeSet("triangles=1000000 points=1000 order=shuffled"),
       samplers(false)},
      {{"lattice", "sampling along the edges of a lattice, 1M triangles", "lvx", "", samples, {{"GEOS tree"}}},
       "1m-lattice",
       makeSet("triangles=1000000 points=1000 order=lattice"),
       samplers(true)},
  };
  for (const char* const law : {"clothoid", "bloss", "cosine", "biquadratic", "sinusoid"}) {
    const bool isClothoid = std::string(law) == "clothoid";

    jobs.push_back({{isClothoid ? "stations" : std::string("stations-") + law,
                     std::string("station and offset, 1M points, transitions: ") + law,
                     "lvx",
                     isClothoid ? "at most 0.2" : "at most 0.4",
                     {"points", "sum_station", "sum_abs_offset"},
                     {{"Boost R*-tree", false, 1e-5}, {"right element known", true}}},
                    isClothoid ? "1m" : std::string("road-") + law,
                    makeSet("triangles=1000000 points=1000000 law=" + std::string(law)),
                    {{kBench + "station_offset", "runs=3 data="},
                     {kPeers + "station_boost", "data=", "libboost-dev"},
                     {kPeers + "station_bound", "data="}}});
  }
  for (const char* const threads : {"1", "2"}) {
    const bool isOne = threads[0] == '1';
    const std::string words = isOne ? ", one thread" : ", two threads";
    jobs.push_back({{std::string("numbers-") + threads, "5M triangles of LandXML, numbers alone" + words, "lvx",
                     isOne ? "at most 0.4" : "at most 0.25", numbers, readingPeers},
                    large,
                    makeLarge,
                    readers(std::string("task=extract threads=") + threads)});
    jobs.push_back({{std::string("drawing-") + threads,
                     "the same as an open drawing" + words,
                     "lvx",
                     isOne ? "at most 0.6" : "at most 0.4",
                     {"faces"},
                     readingPeers},
                    large,
                    makeLarge,
                    readers(std::string("task=load threads=") + threads)});
  }
  jobs.push_back(
      {{"sections", "40 MB of design sections as an open drawing", "lvx", "", {"sections"}, {{"libxml2"}, {"expat"}}},
       "sections.xml",
       LVX_MAKE_DRAWING " --bulk design-sections --megabytes 40 --out ",
       {{kBench + "landxml", "task=load file="},
        {kPeers + "read_libxml2", "file=", "libxml2-dev"},
        {kPeers + "read_expat", "file=", "libexpat1-dev"}}});
  jobs.push_back({{"workbook",
                   "workbook, 100,000 rows",
                   "lvx_workbook",
                   "at most 0.75",
                   {"rows", "sum_numbers"},
                   {{"libxlsxwriter_constant"}, {"text and zlib alone", true}}},
                  "",
                  "",
                  {{kBench + "workbook", "rows=100000 rounds=1"}, {kPeers + "workbook_bound", "rows=100000"}}});
  return jobs;
}

/// A path of this program as one word of the shell.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

/// What a command of the shell prints. Throws where it fails.
std::string outputOf(const std::string& command) {
  const auto close = [](std::FILE* stream) { pclose(stream); };
  std::unique_ptr<std::FILE, decltype(close)> stream(popen(command.c_str(), "r"), close);
  if (!stream) throw std::runtime_error("can't run " + command);
  std::string text;
  std::array<char, 4096> piece{};
  for (std::size_t size; (size = std::fread(piece.data(), 1, piece.size(), stream.get())) > 0;)
    text.append(piece.data(), size);
  if (pclose(stream.release()) != 0) throw std::runtime_error("failed: " + command);
  return text;
}

void makeData(const PlannedJob& planned, const std::filesystem::path& folder) {
  if (planned.makingData.empty()) return;
  const std::filesystem::path data = folder / planned.data;
  const std::filesystem::path marker = data.string() + ".made";
  if (std::filesystem::exists(marker)) return;
  std::filesystem::create_directories(folder);
  const bool isInSet = planned.data.ends_with("/tin.xml");
  if (isInSet) std::filesystem::create_directories(data.parent_path());
  std::fprintf(stderr, "making %s\n", data.c_str());
  (void)outputOf(planned.makingData + quoted(isInSet ? data.parent_path().string() : data.string()));
  std::ofstream made(marker);
  made << planned.makingData << '\n';
  if (!made.flush()) throw std::runtime_error("can't write " + marker.string());
}

Comparison compare(const PlannedJob& planned, const std::filesystem::path& folder, int rounds) {
  Comparison comparison(planned.job);
  const std::string data = planned.data.empty() ? "" : quoted((folder / planned.data).string());
  for (int round = 0; round < rounds; ++round) {
    for (const Program& program : planned.programs) {
      if (!std::filesystem::exists(program.path)) {
        if (round == 0)
          std::fprintf(stderr, "%s: left out, since %s isn't built (needs %s)\n", planned.job.name.c_str(),
                       std::filesystem::path(program.path).filename().c_str(), program.package);
        continue;
      }
      std::istringstream lines(outputOf(quoted(program.path) + " " + program.arguments + data + " 2>/dev/null"));
      for (std::string line; std::getline(lines, line);)
        if (auto result = lvx::comparison::parseResult(line)) comparison.add(std::move(*result));
    }
    std::fprintf(stderr, "%s: round %d of %d\n", planned.job.name.c_str(), round + 1, rounds);
  }
  return comparison;
}

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);)
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  return "a processor without a name";
}

int run(int argc, char** argv) {
  std::vector<PlannedJob> jobs = allJobs();
  std::vector<std::string> names;
  for (const PlannedJob& planned : jobs) names.push_back(planned.job.name);
  std::vector<std::string> wanted;
  std::string out = "comparison.md";
  std::string data = "peer-data";
  std::string commit = "unknown";
  int rounds = 6;
  CLI::App app{
      "Runs this program's heavy jobs beside public libraries that do the same, and writes tables of what they took."};
  app.add_option("JOB", wanted, "Only these jobs")->check(CLI::IsMember(names));
  app.add_option("--rounds", rounds, "How often each program runs")->check(CLI::PositiveNumber)->capture_default_str();
  app.add_option("--out", out, "The document to write")->capture_default_str();
  app.add_option("--data", data, "The folder of the data, kept for the next time (2 GB)")->capture_default_str();
  app.add_option("--commit", commit, "What was built");
  app.footer(
      "A peer whose library isn't installed is left out. Exit code 1, with the differences, where they disagree.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }

  std::string rows;
  std::vector<std::string> disagreements;
  for (const PlannedJob& planned : jobs) {
    if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), planned.job.name) == wanted.end()) continue;
    makeData(planned, data);
    const Comparison comparison = compare(planned, data, rounds);
    rows += comparison.rows();
    for (std::string& line : comparison.disagreements()) disagreements.push_back(std::move(line));
  }
  std::ofstream document(out);
  document << "Commit " << commit << ", " << LVX_COMPILER << " " << LVX_FLAGS << ", "
           << std::thread::hardware_concurrency() << " processors: " << processor() << ". Medians of " << rounds
           << " rounds.\n\n"
           << Comparison::head() << rows;
  if (!document.flush()) throw std::runtime_error("can't write " + out);
  std::printf("%s%s", Comparison::head().c_str(), rows.c_str());
  for (const std::string& line : disagreements) std::fprintf(stderr, "lvx-compare: %s\n", line.c_str());
  return disagreements.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) try { return run(argc, argv); } catch (const std::exception& failure) {
  std::fprintf(stderr, "lvx-compare: %s\n", failure.what());
  return 1;
}

// The points report of one large group against a road of 400 elements, over the stand-in host's own model: collection,
// sort and the three files, each step at a tenth of the points and at all of them, then the same work by bare libraries.
//
//   bench_points [points=1000000] [rounds=1]
//
// Prints the seconds of processor time of each step at both sizes and how much they grew (ten times the points), the memory that the
// workbook took above what stood before, and how the whole report compares with the sum of its bare parts: station and
// offset by the geometry alone, a sort of numbers, text and page by the C library, the workbook by the workbook library.
// What the bare parts write is compared with the report's files first; exits with 1 where they differ.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include "measuring.h"
#include "platform/utf8.h"
#include "points/point_collector.h"
#include "points/point_sort.h"
#include "points/points_ascii.h"
#include "points/points_excel.h"
#include "points/points_html.h"
#include "runtime/model_objects.h"
#include "runtime/standin_host.h"

namespace {

using lvx::civil::Element;
using lvx::civil::ElementKind;
using lvx::framework::CString;

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "bench_points: %s\n", what.c_str());
  std::exit(1);
}

/// A host's front end that nobody talks to.
class NobodyThere final : public lvx::runtime::FrontEnd {
 public:
  lvx::host::BoxAnswer messageBox(const CString& text, lvx::host::BoxButtons, lvx::host::BoxIcon) override {
    fail(lvx::platform::toUtf8(text));
  }
  std::optional<CString> saveFileBox(const CString&, std::uint32_t) override { return std::nullopt; }
  void showHelp(const CString&) override {}
  std::uint32_t buttonFaceColour() override { return 0; }
  lvx::host::DialogRunner& dialogs() override { fail("no dialog is expected"); }
  void* mainWindow() override { return nullptr; }
  void console(const CString& text) override { std::fputs(lvx::platform::toUtf8(text).c_str(), stderr); }
  std::optional<lvx::civil::Handle> pickEntity(const CString&) override { return std::nullopt; }
  std::optional<std::vector<lvx::civil::Handle>> selectEntities(const CString&, const CString&,
                                                                const CString&) override {
    return std::nullopt;
  }
};

/// Lines, clothoids and arcs to the right and left in turn: 400 elements over about 25 km.
lvx::civil::Alignment makeRoad() {
  std::vector<Element> elements;
  lvx::civil::Pose pen{{4500000.0, 5400000.0}, 0.3};
  const auto add = [&](ElementKind kind, double length, double from, double to) {
    Element element{kind, pen.point, pen.direction, length, from, to, {}};
    pen = element.endPose();
    element.givenEnd = pen.point;
    elements.push_back(element);
  };
  double sign = 1.0;
  for (int bend = 0; bend < 100; ++bend, sign = -sign) {
    const double curvature = sign / (250.0 + 7.0 * bend);
    add(ElementKind::Line, 60.0 + bend % 40, 0.0, 0.0);
    add(ElementKind::Clothoid, 60.0, 0.0, curvature);
    add(ElementKind::Arc, 40.0 + bend % 50, curvature, curvature);
    add(ElementKind::Clothoid, 60.0, curvature, 0.0);
  }
  return {1000.0, std::move(elements)};
}

/// Points beside the road in an order without locality, all in one group.
lvx::civil::Drawing makeDrawing(int count) {
  lvx::civil::Drawing drawing;
  auto axis = std::make_unique<lvx::civil::AlignmentObject>();
  axis->name = "Axis";
  axis->handle = 1;
  axis->geometry = makeRoad();
  const lvx::civil::Alignment& road = axis->geometry;
  std::mt19937_64 random(7);
  const auto unitRandom = [&] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  lvx::civil::PointGroup group;
  group.name = "All";
  group.handle = 2;
  for (int i = 1; i <= count; ++i) {
    const double station = road.startStation() + road.length() * unitRandom();
    const auto place = road.pointLocation(station, 60.0 * unitRandom() - 30.0)->point;
    lvx::civil::Point point;
    point.handle = 2U + static_cast<lvx::civil::Handle>(i);
    point.number = i;
    point.position = {place.x, place.y, 300.0 + 50.0 * unitRandom()};
    point.texts = {"P" + std::to_string(i), "EP", "Edge left"};
    drawing.points.push_back(std::move(point));
    group.numbers.push_back(i);
  }
  drawing.siteless.alignments.push_back(std::move(axis));
  drawing.pointGroups.push_back(std::move(group));
  return drawing;
}

/// Processor time of this process and of those that it started, so that the figures hold beside other programs.
double processorSeconds() {
  double seconds = 0.0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime})
      seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  }
  return seconds;
}

double secondsOf(const std::function<void()>& run) {
  const double begin = processorSeconds();
  run();
  return processorSeconds() - begin;
}

/// A figure of /proc/self/status in megabytes; 0 where there is none.
double statusMegabytes(std::string_view name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(name)) return std::strtod(line.c_str() + name.size(), nullptr) / 1024.0;
  return 0.0;
}

/// Memory that `run` takes at its worst above what is held before it.
double megabytesOf(const std::function<void()>& run) {
  std::ofstream("/proc/self/clear_refs") << "5";  // the peak starts anew
  const double before = statusMegabytes("VmRSS:");
  run();
  return statusMegabytes("VmHWM:") - before;
}

struct Steps {
  double collect = 0.0;
  double sort = 0.0;
  double text = 0.0;
  double workbook = 0.0;
  double page = 0.0;
  double workbookMegabytes = 0.0;
  [[nodiscard]] double whole() const { return collect + sort + text + workbook + page; }
};

class Bench {
 public:
  explicit Bench(std::string folder) : folder_(std::move(folder)), host_(nobody_, options()) {}

  void open(int count) { host_.open(makeDrawing(count)); }

  Steps report() {
    Steps steps;
    lvx::points::PointList rows;
    const auto document = lvx::runtime::makeDocument(host_.openDrawing());
    const auto database = lvx::runtime::makeDatabase(host_.openDrawing());
    steps.collect = secondsOf([&] { lvx::points::collectPoints(document, database, L"", L"Axis", L"All", {}, rows); });
    steps.sort = secondsOf([&] { lvx::points::sortPointsByStation(rows); });
    const CString stem = lvx::platform::fromUtf8(folder_) + L"/report";
    steps.text = secondsOf([&] { lvx::points::writePointsAscii(stem + L".txt", rows); });
    steps.workbookMegabytes =
        megabytesOf([&] { steps.workbook = secondsOf([&] { lvx::points::writePointsExcel(stem + L".xls", rows); }); });
    steps.page = secondsOf([&] { lvx::points::writePointsHtml(stem + L".html", rows); });
    return steps;
  }

  /// The same work by geometry, C library and workbook library alone.
  Steps bare() {
    Steps steps;
    const lvx::civil::Drawing& drawing = host_.openDrawing()->drawing();
    const lvx::civil::Alignment& road = drawing.siteless.alignments[0]->geometry;
    std::vector<lvx::civil::StationOffset> places;
    steps.collect = secondsOf([&] {
      places.reserve(drawing.points.size());
      for (const lvx::civil::Point& point : drawing.points)
        places.push_back(*road.stationOffset({point.position.x, point.position.y}));
    });
    std::vector<std::size_t> order(places.size());
    steps.sort = secondsOf([&] {
      std::iota(order.begin(), order.end(), std::size_t{0});
      std::stable_sort(order.begin(), order.end(),
                       [&](std::size_t a, std::size_t b) { return places[a].station < places[b].station; });
    });
    steps.text = secondsOf([&] {
      write("bare.txt", "%14d%14.3f%14.3f%14.3f%14s%14s%14s                  Axis%16s%14.3f\r\n", drawing, places,
            order);
    });
    steps.workbook = secondsOf([&] { writeBook(drawing, places, order); });
    steps.page = secondsOf([&] {
      write("bare.html",
            "<tr><td>%d</td> <td>%.3f</td> <td>%.3f</td> <td>%.3f</td> <td>%s</td> <td>%s</td> <td>%s</td> "
            "<td>Axis</td> <td>%s</td> <td>%.3f</td></tr>",
            drawing, places, order);
    });
    return steps;
  }

  /// The report's files hold what the bare parts wrote, behind their heads.
  void requireSameRows() const {
    if (!rest("report.txt", "Offset\r\n").starts_with(bytes("bare.txt"))) fail("the texts differ");
    if (!rest("report.html", "</tr></b>").starts_with(bytes("bare.html"))) fail("the pages differ");
  }

 private:
  static lvx::runtime::HostOptions options() {
    lvx::runtime::HostOptions all;
    all.platform.fixedMoment = 0;
    all.files[L"LVX_MIRELREPORT.txt"] = LVX_SOURCE_DIR "/messages/en/LVX_MIRELREPORT.txt";
    return all;
  }

  static std::string stationText(double station) {
    char text[32];
    const long millimetres = std::lround(station * 1000.0);
    std::snprintf(text, sizeof text, "%ld+%03ld.%03ld", millimetres / 1000000, millimetres / 1000 % 1000,
                  millimetres % 1000);
    return text;
  }

  void write(const char* name, const char* format, const lvx::civil::Drawing& drawing,
             const std::vector<lvx::civil::StationOffset>& places, const std::vector<std::size_t>& order) const {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::FILE* file = std::fopen((folder_ + "/" + name).c_str(), "wb");
    for (const std::size_t i : order) {
      const lvx::civil::Point& point = drawing.points[i];
      std::fprintf(file, format, point.number, point.position.x, point.position.y, point.position.z,
                   std::string(point.texts.name()).c_str(), std::string(point.texts.description()).c_str(),
                   std::string(point.texts.fullDescription()).c_str(), stationText(places[i].station).c_str(),
                   places[i].offset);
    }
    std::fclose(file);
#pragma GCC diagnostic pop
  }

  void writeBook(const lvx::civil::Drawing& drawing, const std::vector<lvx::civil::StationOffset>& places,
                 const std::vector<std::size_t>& order) const {
    lxw_workbook_options constantMemory{LXW_TRUE, nullptr, LXW_FALSE};
    lxw_workbook* book = workbook_new_opt((folder_ + "/bare.xlsx").c_str(), &constantMemory);
    lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
    lxw_format* decimals = workbook_add_format(book);
    format_set_num_format(decimals, "0.000");
    lxw_row_t row = 10;
    for (const std::size_t i : order) {
      const lvx::civil::Point& point = drawing.points[i];
      worksheet_write_string(sheet, row, 0, std::to_string(point.number).c_str(), nullptr);
      worksheet_write_number(sheet, row, 1, point.position.x, decimals);
      worksheet_write_number(sheet, row, 2, point.position.y, decimals);
      worksheet_write_number(sheet, row, 3, point.position.z, decimals);
      worksheet_write_string(sheet, row, 4, std::string(point.texts.name()).c_str(), nullptr);
      worksheet_write_string(sheet, row, 5, std::string(point.texts.description()).c_str(), nullptr);
      worksheet_write_string(sheet, row, 6, std::string(point.texts.fullDescription()).c_str(), nullptr);
      worksheet_write_string(sheet, row, 7, "Axis", nullptr);
      worksheet_write_string(sheet, row, 8, stationText(places[i].station).c_str(), nullptr);
      worksheet_write_number(sheet, row, 9, places[i].offset, decimals);
      ++row;
    }
    if (workbook_close(book) != LXW_NO_ERROR) fail("the workbook library failed");
  }

  [[nodiscard]] std::string bytes(const char* name) const {
    std::ifstream file(folder_ + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] std::string rest(const char* name, std::string_view mark) const {
    const std::string all = bytes(name);
    const std::size_t place = all.find(mark);
    return place == std::string::npos ? std::string() : all.substr(place + mark.size());
  }

  std::string folder_;
  NobodyThere nobody_;
  lvx::runtime::StandinHost host_;
};

/// The best of some rounds, step by step.
Steps best(int rounds, const std::function<Steps()>& run) {
  Steps least = run();
  for (int round = 1; round < rounds; ++round) {
    const Steps next = run();
    for (const auto step : {&Steps::collect, &Steps::sort, &Steps::text, &Steps::workbook, &Steps::page})
      least.*step = std::min(least.*step, next.*step);
  }
  return least;
}

constexpr const char* kUsage = "bench_points [points=1000000] [rounds=1]";

}  // namespace

int main(int argc, char** argv) {
  int points = 1000000;
  int rounds = 1;
  for (int i = 1; i < argc; ++i) {
    points = lvx::bench::valueOf(argv[i], "points=", points, kUsage);
    rounds = lvx::bench::valueOf(argv[i], "rounds=", rounds, kUsage);
  }
  lvx::bench::printMachine();

  std::string folder = (std::filesystem::temp_directory_path() / "lvx-bench-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) fail("no folder for the files");
  Bench bench(folder);
  const int tenth = std::max(1, points / 10);
  bench.open(tenth);
  const Steps small = best(rounds, [&] { return bench.report(); });
  bench.open(points);
  const Steps large = best(rounds, [&] { return bench.report(); });
  const Steps bare = best(rounds, [&] { return bench.bare(); });
  bench.requireSameRows();

  std::printf("%-28s %12d %12d %9s %12s %9s\n", "seconds; points:", tenth, points, "growth", "bare", "ratio");
  struct Row {
    const char* name;
    double Steps::*step;
  };
  for (const Row& row : {Row{"collect", &Steps::collect}, Row{"sort", &Steps::sort}, Row{"text", &Steps::text},
                         Row{"workbook", &Steps::workbook}, Row{"page", &Steps::page}})
    std::printf("%-28s %12.3f %12.3f %8.1fx %12.3f %8.2fx\n", row.name, small.*row.step, large.*row.step,
                large.*row.step / small.*row.step, bare.*row.step, large.*row.step / bare.*row.step);
  std::printf("%-28s %12.3f %12.3f %8.1fx %12.3f %8.2fx\n", "whole report", small.whole(), large.whole(),
              large.whole() / small.whole(), bare.whole(), large.whole() / bare.whole());
  std::printf("%-28s %12.1f %12.1f\n", "workbook, megabytes", small.workbookMegabytes, large.workbookMegabytes);
  std::filesystem::remove_all(folder);
  return 0;
}

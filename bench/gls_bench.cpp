// The computation of the GLS report at growing sizes, over alignment, profile and corridors in memory: the assembly of
// the rows, the reading of corridor sections, and the adding of sections with the corridor's rebuild. Prints the
// processor time of each size and how much it grew each time the size doubled: near 2 is linear.
//
//   bench_gls [percent=100] [rounds=3]
//
// 100 percent, the last size of each row, is an alignment of 10,000 sample lines, 2,000 horizontal elements and 500
// vertical curves, and 20 corridors of 5 baselines with 10,000 sections each. Small cases are compared with the plain
// rules first; exits with 1 where they differ.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <malloc.h>

#include "gls/corridor_stage.h"
#include "host/dialog_controls.h"
#include "measuring.h"
#include "plain_gls/gls_case.h"
#include "plain_gls/plain_gls.h"

namespace {

using lvx::gls::CorridorList;
using lvx::gls::GlsCase;
using lvx::gls::tglsReport;
using lvx::gls::tglsRow;

constexpr double kStretch = 10.0;
constexpr double kHalfWidth = 4.0;

struct Size {
  int sampleLines = 0;
  int elements = 0;
  int curves = 0;
  int corridors = 0;
  int baselines = 0;
  /// Of each baseline.
  int sections = 0;
};

constexpr Size kFull{10000, 2000, 500, 20, 5, 10000};

Size partOf(const Size& size, int percent) {
  const auto part = [percent](int count) { return static_cast<int>(static_cast<long long>(count) * percent / 100); };
  return {part(size.sampleLines), part(size.elements), part(size.curves),
          size.corridors,         size.baselines,      part(size.sections)};
}

/// One road of three points.
std::shared_ptr<lvx::test::FakeSection> sectionAt(double station) {
  auto section = std::make_shared<lvx::test::FakeSection>();
  section->addPart({L"Pave"})
      .addPoint(station, -kHalfWidth, 9.9)
      .addPoint(station, 0.0, 10.0)
      .addPoint(station, kHalfWidth, 9.9, {L"ETW"});
  return section;
}

/// A road of lines, clothoids and arcs in turn, with sample lines all along it, a rolling profile, and corridors whose
/// sections stand at the sample lines.
std::unique_ptr<GlsCase> makeCase(const Size& size) {
  auto made = std::make_unique<GlsCase>();
  const double length = kStretch * size.sampleLines;
  for (int i = 0; i < size.sampleLines; ++i) made->addSampleLine(L"SL" + std::to_wstring(i), kStretch * i);
  const double elementLength = size.elements > 0 ? length / size.elements : 0.0;
  for (int i = 0; i < size.elements; ++i) {
    const lvx::host::taxel kinds[] = {lvx::gls::line(elementLength), lvx::gls::clothoidIn(elementLength, 300.0),
                                      lvx::gls::arc(elementLength, 300.0), lvx::gls::clothoidOut(elementLength, 300.0)};
    made->elements.push_back(kinds[i % 4]);
  }
  std::vector<lvx::gls::Pvi> pvis{{0.0, 100.0}};
  const double tangent = length / (size.curves + 1);
  for (int i = 1; i <= size.curves; ++i)
    pvis.push_back({tangent * i + 0.5, 100.0 + (i % 2) * tangent * 0.03, tangent / 4.0});
  pvis.push_back({length, 100.0});
  made->points = lvx::gls::profileOf(pvis);
  for (int c = 0; c < size.corridors; ++c) {
    const auto corridor = made->roadway.addCorridor(L"C" + std::to_wstring(c));
    for (int b = 0; b < size.baselines; ++b) {
      const auto baseline = corridor->addBaseline();
      std::vector<double> stations(static_cast<std::size_t>(size.sections));
      for (int i = 0; i < size.sections; ++i) stations[static_cast<std::size_t>(i)] = kStretch * i;
      baseline->addRegion(std::move(stations));
      baseline->compute = sectionAt;
    }
  }
  return made;
}

std::unique_ptr<tglsReport> rowsAt(int count, double first) {
  auto report = std::make_unique<tglsReport>();
  for (int i = 0; i < count; ++i) {
    report->rows.add(new tglsRow);
    report->rows[i]->station = first + kStretch * i;
  }
  return report;
}

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "bench_gls: %s\n", what);
  std::exit(1);
}

void requireAgreement() {
  for (const int answer : {lvx::host::kIdCancel, lvx::host::kIdOk}) {
    std::string texts[2];
    for (const bool plain : {false, true}) {
      const auto made = makeCase({300, 60, 15, 2, 2, 200});
      made->user.code = answer;
      tglsReport report;
      if (plain)
        lvx::gls::plain::collectGlsRows(*made, report);
      else
        made->collect(report);
      texts[plain ? 1 : 0] = textOf(report);
    }
    require(texts[0] == texts[1], "the report differs from that of the plain rules");
  }
}

/// What one job does at one size, in three parts of which only `run` is timed; `check` ends the program where the result
/// can't be.
struct Job {
  const char* name;
  std::function<void(int percent)> prepare;
  std::function<void()> run;
  std::function<void(int percent)> check;
};

class Bench {
 public:
  std::vector<Job> jobs() {
    return {{"assemble rows, no corridors",
             [this](int percent) {
               // Every round over the same drawing: only adding sections changes it.
               if (percent != assembled_) {
                 Size size = partOf(kFull, percent);
                 size.corridors = 0;
                 makeCaseOf(size);
                 assembled_ = percent;
               }
               report_ = std::make_unique<tglsReport>();
             },
             [this] { made_->collect(*report_); },
             [this](int percent) {
               const Size size = partOf(kFull, percent);
               require(report_->rows.size() > 2 * (size.sampleLines + 2 * size.curves), "rows are missing");
               require(report_->verBreakRows.size() > 0, "no intersection point was found");
             }},
            {"read sections of 20 corridors of 5 baselines",
             [this](int percent) {
               makeCaseOf(partOf(kFull, percent));
               report_ = rowsAt(partOf(kFull, percent).sections, 0.0);
             },
             [this] { readCorridors(); }, [this](int) { requireRoad(); }},
            {"add sections to one region, rebuild, read",
             [this](int percent) {
               Size size = partOf(kFull, percent);
               size.corridors = size.baselines = 1;
               makeCaseOf(size);
               made_->user.code = lvx::host::kIdOk;
               report_ = rowsAt(size.sections, kStretch / 2.0);
             },
             [this] { readCorridors(); }, [this](int) { requireRoad(); }}};
  }

 private:
  /// One case stands behind the host's accessor at a time.
  void makeCaseOf(const Size& size) {
    made_.reset();
    made_ = makeCase(size);
  }

  void readCorridors() {
    CorridorList corridors;
    readCorridorData(made_->host, corridors, *report_);
    releaseCorridors(corridors);
  }

  void requireRoad() const {
    for (const tglsRow* row : report_->rows) require(row->widthLeft == kHalfWidth, "a row wasn't filled");
  }

  int assembled_ = 0;
  std::unique_ptr<GlsCase> made_;
  std::unique_ptr<tglsReport> report_;
};

/// Of the processor, so that what else runs on the machine doesn't count.
double millisecondsOf(const std::function<void()>& run) {
  const std::clock_t begin = std::clock();
  run();
  return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Memory that was once taken stays with the program: fresh pages cost more than the computation, by amounts that depend
/// on the machine, and would hide how that grows.
void keepMemory() {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

void measure(const Job& job, const std::vector<int>& percents, int rounds) {
  std::printf("%-46s", job.name);
  job.prepare(percents.back());
  job.run();
  double before = 0.0;
  std::string growth;
  for (const int percent : percents) {
    double best = 1e300;
    for (int round = 0; round < rounds; ++round) {
      job.prepare(percent);
      best = std::min(best, millisecondsOf(job.run));
      job.check(percent);
    }
    std::printf(" %9.1f", best);
    std::fflush(stdout);
    if (before > 0.0) {
      char text[16];
      std::snprintf(text, sizeof text, " x%.2f", best / before);
      growth += text;
    }
    before = best;
  }
  std::printf("  %s\n", growth.c_str());
}

constexpr const char* kUsage = "bench_gls [percent=100] [rounds=3]";

}  // namespace

int main(int argc, char** argv) {
  int percent = 100;
  int rounds = 3;
  for (int i = 1; i < argc; ++i) {
    percent = lvx::bench::valueOf(argv[i], "percent=", percent, kUsage);
    rounds = lvx::bench::valueOf(argv[i], "rounds=", rounds, kUsage);
  }
  const std::vector<int> percents{std::max(1, percent / 4), std::max(1, percent / 2), percent};
  lvx::bench::printMachine();
  keepMemory();
  requireAgreement();
  std::printf("%-46s", "milliseconds, best of rounds; percent of size:");
  for (const int size : percents) std::printf(" %9d", size);
  std::printf("   growth\n");
  Bench bench;
  for (const Job& job : bench.jobs()) measure(job, percents, rounds);
  return 0;
}

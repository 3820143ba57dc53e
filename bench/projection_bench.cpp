// Collection, computation and the four forms of the projection report at growing sizes, over a civil model in memory.
// Prints the time per item of each size and how much it grew from the smallest to the largest: near 1 is linear.
//
//   bench_projection [largest=100000] [rounds=3]
//
// Orders are checked before they are timed; exits with 1 where one is wrong.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "measuring.h"
#include "projection/projection_ascii.h"
#include "projection/projection_computation.h"
#include "projection/projection_excel.h"
#include "projection/projection_html.h"
#include "projection/projection_xml.h"
#include "projection/sample_line_collector.h"

namespace {

using lvx::framework::OwnedList;
using lvx::projection::tsl;
using lvx::test::FakeDrawing;

enum class Order { Ascending, Descending, Shuffled };

std::vector<double> numbers(int count, Order order) {
  std::vector<double> all(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) all[static_cast<std::size_t>(i)] = i + 1;
  if (order == Order::Descending) std::reverse(all.begin(), all.end());
  if (order == Order::Shuffled) std::shuffle(all.begin(), all.end(), std::mt19937(1));
  return all;
}

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "bench_projection: %s\n", what);
  std::exit(1);
}

/// Answers every automation call and keeps nothing, so that only the writer's own time is seen.
class SilentProgram final : public lvx::host::AutomationObject, public std::enable_shared_from_this<SilentProgram> {
 public:
  lvx::host::AutomationValue get(lvx::host::DispatchId, lvx::host::AutomationArguments) override { return itself(); }
  void put(lvx::host::DispatchId, const lvx::host::AutomationValue&) override {}
  lvx::host::AutomationValue call(lvx::host::DispatchId, lvx::host::AutomationArguments) override { return itself(); }

 private:
  lvx::host::AutomationValue itself() { return lvx::host::AutomationValue::ofObject(shared_from_this()); }
};

/// What one job does at one size, in two parts: `prepare` isn't timed.
struct Job {
  const char* name;
  std::function<void(int size)> prepare;
  std::function<void()> run;
};

double secondsOf(const std::function<void()>& run) {
  const auto begin = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void measure(const Job& job, const std::vector<int>& sizes, int rounds) {
  std::printf("%-44s", job.name);
  double first = 0.0;
  double last = 0.0;
  for (const int size : sizes) {
    double best = 1e300;
    for (int round = 0; round < rounds; ++round) {
      job.prepare(size);
      best = std::min(best, secondsOf(job.run));
    }
    last = best / size;
    if (first == 0.0) first = last;
    std::printf(" %9.1f", last * 1e9);
  }
  std::printf("   x%.2f\n", last / first);
  std::fflush(stdout);
}

class Bench {
 public:
  Bench() {
    host_.setAutomationFactory([](const lvx::host::CString&) { return std::make_shared<SilentProgram>(); });
    host_.useMessageBytes("101 Profiles\n122 Profile\n123 Station\n124 Offset\n125 Elevation\n");
  }

  std::vector<Job> jobs() {
    return {collection("collect lines, ascending", Order::Ascending),
            collection("collect lines, descending", Order::Descending),
            collection("collect lines, shuffled", Order::Shuffled),
            vertices("collect one line's vertices, ascending", Order::Ascending),
            vertices("collect one line's vertices, descending", Order::Descending),
            vertices("collect one line's vertices, shuffled", Order::Shuffled),
            {"sample many lines, 22 samples each", [this](int size) { makeLines(size, 10); }, [this] { project(); }},
            {"sample one line, left side", [this](int size) { makeLines(1, size / 2); }, [this] { project(); }},
            writer("text of many lines, 4 samples each",
                   [this] { lvx::projection::writeProjectionAscii(host_.folder() + L"r.txt", L"", records_.get()); }),
            writer("page of many lines, 4 samples each",
                   [this] { lvx::projection::writeProjectionHtml(host_.folder() + L"r.html", L"", records_.get()); }),
            writer("cells of many lines, 4 samples each",
                   [this] { lvx::projection::writeProjectionExcel(host_.folder() + L"r.xls", L"", records_.get()); }),
            writer("document of many lines, 4 samples each", [this] {
              const auto count = static_cast<std::int32_t>(records_.get().size());
              lvx::projection::tcentreRows rows{new lvx::projection::tcentreRow[static_cast<std::size_t>(count)], count,
                                                count};
              lvx::projection::writeProjectionXml(host_.folder() + L"r.xml", L"", records_.get(), rows);
            })};
  }

 private:
  void collect() {
    lvx::projection::collectSampleLines(drawing_->document, drawing_->database, L"", L"A",
                                        lvx::projection::GroupFilter::allGroups(), records_.get());
  }
  void project() { lvx::projection::projectSampleLines(drawing_->document, L"Ground", records_.get()); }

  std::shared_ptr<lvx::test::FakeSampleLineGroup> makeDrawing() {
    drawing_ = std::make_unique<FakeDrawing>();
    return drawing_->addAlignment(nullptr, L"A")->addGroup(L"G");
  }

  Job collection(const char* name, Order order) {
    return {name,
            [this, order](int size) {
              const auto group = makeDrawing();
              for (const double station : numbers(size, order))
                group->addLine(L"SL", station, {{station, 10.0}, {station, -10.0}});
              collect();
              require(records_.get().size() == size, "a sample line was lost");
              for (int i = 0; i < size; ++i)
                require(records_.get()[i]->station == i + 1, "sample lines aren't in order");
            },
            [this] { collect(); }};
  }

  Job vertices(const char* name, Order order) {
    return {name,
            [this, order](int size) {
              const auto line = makeDrawing()->addLine(L"SL", 0.0);
              for (const double offset : numbers(size, order))
                line->addVertex(lvx::host::HostArray<double>::of({0.0, -offset, 0.0}));
              collect();
              const auto& right = records_.get()[0]->rightVertices;
              require(right.count() == size + 1, "a vertex was lost");
              for (int i = 0; i <= size; ++i) require(right[i].third == i, "vertices aren't in order");
            },
            [this] { collect(); }};
  }

  /// Lines with one segment and `samples` + 1 samples on either side, collected and ready to be sampled.
  void makeLines(int lines, int samples) {
    const auto group = makeDrawing();
    for (int i = 0; i < lines; ++i) {
      const double station = 20.0 * i;
      group->addLine(L"SL" + std::to_wstring(i), station, {{station, 10.0}, {station, -10.0}});
    }
    drawing_->addSurface(L"Ground")->sample = [samples](const lvx::test::FakeSurface::Segment& s) {
      std::vector<double> triples;
      triples.reserve(3 * (static_cast<std::size_t>(samples) + 1));
      for (int i = 0; i <= samples; ++i) {
        const double part = static_cast<double>(i) / samples;
        triples.insert(triples.end(), {s.x1, s.y1 + (s.y2 - s.y1) * part, 250.0 + part});
      }
      return lvx::host::HostArray<double>::of(std::move(triples));
    };
    collect();
    project();
    const auto& offsets = records_.get()[0]->leftOffsets;
    require(offsets.count() == samples + 1 && offsets[0].first == -10.0 && offsets[samples].first == 0.0,
            "samples aren't in order");
  }

  Job writer(const char* name, std::function<void()> run) {
    return {name, [this](int size) { makeLines(size, 1); }, std::move(run)};
  }

  lvx::test::FakeHost host_{{.fixedMoment = 0}};
  std::unique_ptr<FakeDrawing> drawing_;
  OwnedList<tsl> records_;
};

constexpr const char* kUsage = "bench_projection [largest=100000] [rounds=3]";

}  // namespace

int main(int argc, char** argv) {
  int largest = 100000;
  int rounds = 3;
  for (int i = 1; i < argc; ++i) {
    largest = lvx::bench::valueOf(argv[i], "largest=", largest, kUsage);
    rounds = lvx::bench::valueOf(argv[i], "rounds=", rounds, kUsage);
  }
  const std::vector<int> sizes{std::max(100, largest / 10), std::max(100, largest / 3), std::max(100, largest)};
  lvx::bench::printMachine();
  std::printf("%-44s", "nanoseconds per item, best of rounds; items:");
  for (const int size : sizes) std::printf(" %9d", size);
  std::printf("   growth\n");
  Bench bench;
  for (const Job& job : bench.jobs()) measure(job, sizes, rounds);
  return 0;
}

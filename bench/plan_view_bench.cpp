// The plan of a large surface while a user moves over it: frames a second, and how long it takes until all is sharp.
//
//   QT_QPA_PLATFORM=offscreen bench_plan_view [triangles, in millions]...      default: 1 5
//
// Each size is gone over twice, the second time with contours.
//
// Frames of 1600 by 1000 pixels are drawn one after the other into an image, as a window draws them, while the worker
// draws tiles beside. At every stop the picture is first checked against one that was drawn in one go.
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>

#include "desktop/plan/plan_painter.h"
#include "desktop/plan/tile_worker.h"
#include "generator/scaled_drawing.h"
#include "landxml/reader.h"
#include "view/plan_scene.h"

namespace {

using namespace lvx;
using civil::Vec2;
using desktop::PlanPainter;

constexpr int kWidth = 1600;
constexpr int kHeight = 1000;

class Stopwatch {
 public:
  [[nodiscard]] double milliseconds() const {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);)
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  return "unknown";
}

double megabytes(std::size_t bytes) { return static_cast<double>(bytes) / (1 << 20); }

double megabytesAtPeak() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

/// Where a user goes: each leg takes its time and ends with a stop.
struct Leg {
  const char* name;
  double seconds;
  double toX;  ///< of the whole, 0 to 1
  double toY;
  double toScale;  ///< pixels a drawing unit; 0: all of it
};

constexpr Leg kPath[] = {
    {"all of it", 0.0, 0.5, 0.5, 0.0},      {"zoom in", 2.0, 0.3, 0.5, 2.0},     {"along the road", 4.0, 0.6, 0.5, 2.0},
    {"to triangles", 2.0, 0.62, 0.5, 20.0}, {"pan there", 3.0, 0.64, 0.5, 20.0}, {"back to all", 3.0, 0.5, 0.5, 0.0},
    {"in again", 2.0, 0.3, 0.5, 2.0},
};

class Bench {
 public:
  Bench(const civil::Drawing& drawing, bool hasContours)
      : scene_(std::make_shared<view::PlanScene>(drawing)),
        worker_([this] {
          const std::lock_guard lock(mutex_);
          ++tiles_;
          arrived_.notify_all();
        }),
        image_(kWidth, kHeight, QImage::Format_RGB32) {
    worker_.setScene(scene_);
    look_.contours = hasContours;
  }

  void run(double buildMilliseconds) {
    view::Viewport port(kWidth, kHeight);
    port.show(scene_->box());
    const view::Viewport all = port;
    const civil::Box box = scene_->box();
    std::printf("%-16s %8s %8s %8s %8s %8s %10s\n", "", "frames", "mean ms", "95%", "99%", "worst", "sharp ms");
    std::vector<double> frames;
    for (const Leg& leg : kPath) {
      const view::Viewport from = port;
      const double toScale = leg.toScale > 0.0 ? leg.toScale : all.scale();
      const Vec2 to = leg.toScale > 0.0
                          ? Vec2{box.minX + leg.toX * (box.maxX - box.minX), box.minY + leg.toY * (box.maxY - box.minY)}
                          : all.centre();
      std::vector<double> times;
      const Stopwatch watch;
      for (bool ends = false; !ends;) {
        const double part = leg.seconds > 0.0 ? std::min(1.0, watch.milliseconds() / 1000.0 / leg.seconds) : 1.0;
        ends = part >= 1.0;
        // Zooming goes evenly by factors, and moves as much as its scale lets see.
        port.setScale(from.scale() * std::pow(toScale / from.scale(), part));
        const double way = std::abs(toScale - from.scale()) < 1e-12 * toScale
                               ? part
                               : (1.0 / port.scale() - 1.0 / from.scale()) / (1.0 / toScale - 1.0 / from.scale());
        port.setCentre(
            {from.centre().x + way * (to.x - from.centre().x), from.centre().y + way * (to.y - from.centre().y)});
        const Stopwatch one;
        frame(port);
        times.push_back(one.milliseconds());
      }
      const Stopwatch stop;
      while (!frame(port)) waitForTile();
      const double sharp = stop.milliseconds();
      requireSame(port);
      report(leg.name, times, sharp);
      if (leg.seconds > 0.0) frames.insert(frames.end(), times.begin(), times.end());
    }
    report("all frames", frames, -1.0);
    double sum = 0.0;
    for (const double time : frames) sum += time;
    std::printf(
        "%.1f frames a second; scene built in %.0f ms; scene %.1f MB, tiles %.1f MB, peak of the process %.0f MB\n\n",
        1000.0 * static_cast<double>(frames.size()) / sum, buildMilliseconds, megabytes(scene_->bytes()),
        megabytes(worker_.cache().bytes()), megabytesAtPeak());
  }

 private:
  /// Whether it was sharp.
  bool frame(const view::Viewport& port) {
    {
      // Before it looks: a tile that comes meanwhile is no reason to wait.
      const std::lock_guard lock(mutex_);
      seen_ = tiles_;
    }
    PlanPainter::Result result;
    {
      QPainter painter(&image_);
      result =
          painter_.paint(painter, {.scene = *scene_, .viewport = port, .look = look_, .font = QApplication::font()},
                         worker_.cache(), PlanPainter::Tiles::AsThere);
    }
    worker_.makeRoom(result.wantedBytes + result.wantedBytes / 4);
    worker_.want(std::move(result.wanted));
    isUnfinished_ = result.isUnfinished;
    return result.isSharp && !result.isUnfinished;
  }

  void waitForTile() {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return isUnfinished_ || tiles_ != seen_; });
  }

  void requireSame(const view::Viewport& port) {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    PlanPainter plain;
    view::TileCache cache;
    QPainter painter(&image);
    plain.paint(painter, {.scene = *scene_, .viewport = port, .look = look_, .font = QApplication::font()}, cache,
                PlanPainter::Tiles::AllNow);
    painter.end();
    if (image == image_) return;
    image.save(QStringLiteral("plan-in-one-go.png"));
    image_.save(QStringLiteral("plan-by-and-by.png"));
    std::fprintf(stderr, "bench: the sharp frame isn't the one that is drawn in one go (see plan-*.png)\n");
    std::exit(1);
  }

  static void report(const char* name, std::vector<double> times, double sharp) {
    std::sort(times.begin(), times.end());
    double sum = 0.0;
    for (const double time : times) sum += time;
    const auto at = [&](double part) {
      return times[std::min(times.size() - 1, static_cast<std::size_t>(part * static_cast<double>(times.size())))];
    };
    std::printf("%-16s %8zu %8.1f %8.1f %8.1f %8.1f", name, times.size(), sum / static_cast<double>(times.size()),
                at(0.95), at(0.99), times.back());
    if (sharp >= 0.0) std::printf(" %10.0f", sharp);
    std::printf("\n");
  }

  std::shared_ptr<view::PlanScene> scene_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::size_t tiles_ = 0;
  std::size_t seen_ = 0;
  bool isUnfinished_ = false;
  desktop::TileWorker worker_;
  PlanPainter painter_;
  desktop::PlanLook look_;
  QImage image_;
};

civil::Drawing drawingOf(std::uint64_t triangles) {
  generator::TextOutput text;
  generator::DrawingSize size;
  size.triangles = triangles;
  size.points = 20'000;
  size.elements = 200;
  size.sampleLines = 400;
  generator::writeScaledDrawing(text, size);
  return landxml::readDrawingText(text.text(), "generated");
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  std::printf("compiler %s\nflags %s\nprocessor %s\n\n", LVX_COMPILER, LVX_FLAGS, processor().c_str());
  std::vector<double> sizes;
  for (int index = 1; index < argc; ++index) sizes.push_back(std::strtod(argv[index], nullptr));
  if (sizes.empty()) sizes = {1.0, 5.0};
  for (const double millions : sizes) {
    if (!(millions > 0.0) || millions > 100.0) {
      std::fprintf(stderr, "bench: millions of triangles, up to 100\n");
      return 2;
    }
    const civil::Drawing drawing = drawingOf(static_cast<std::uint64_t>(millions * 1e6));
    std::printf("%.3g million triangles, frames of %d by %d\n", millions, kWidth, kHeight);
    const Stopwatch build;
    { const view::PlanScene scene(drawing); }
    const double milliseconds = build.milliseconds();
    Bench(drawing, false).run(milliseconds);
    std::printf("the same with contours\n");
    Bench(drawing, true).run(milliseconds);
  }
  return 0;
}

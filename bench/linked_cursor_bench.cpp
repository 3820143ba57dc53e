// What a move of the mouse costs while plan, profile and section show one station: over the program's own window, 10 km of
// alignment, painted in software. Goal: below 16 ms a move, the pictures of all three included.
//
//   bench_linked_cursor [kilometres]...      default: 10
//
// The mouse runs along the alignment in the plan, then along the profile. Before timing, the station that the profile shows
// is checked against the one that the mouse is at.
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/main_window.h"
#include "desktop/shell/session.h"
#include "generator/scaled_drawing.h"
#include "generator/text_output.h"
#include "measuring.h"

namespace {

using namespace lvx;

constexpr int kMoves = 400;
constexpr double kGoal = 16.0;  // ms
constexpr double kElementLength = 48.0;

void moveTo(QWidget& widget, QPointF place) {
  QMouseEvent event(QEvent::MouseMove, place, widget.mapToGlobal(place), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(&widget, &event);
  // What the move wants painted is painted.
  QApplication::processEvents();
}

/// Of all threads of the process, milliseconds: what a machine that others use too would take alone.
double processorTime() { return static_cast<double>(std::clock()) * 1e3 / CLOCKS_PER_SEC; }

struct Times {
  std::vector<double> all;
  double processor = 0.0;
  /// Times `work`.
  template <class Work>
  void add(const Work& work) {
    const double before = processorTime();
    const bench::Stopwatch watch;
    work();
    all.push_back(watch.seconds() * 1e3);
    processor += processorTime() - before;
  }
  void print(const char* name) {
    std::sort(all.begin(), all.end());
    const auto at = [&](double share) {
      return all[static_cast<std::size_t>(share * static_cast<double>(all.size() - 1))];
    };
    std::printf(
        "  %-24s median %6.2f ms  99th percentile %6.2f ms  most %6.2f ms  processor %6.2f ms  goal below %.0f ms\n",
        name, at(0.5), at(0.99), all.back(), processor / static_cast<double>(all.size()), kGoal);
  }
};

void run(double kilometres, const QTemporaryDir& folder) {
  generator::DrawingSize size;
  size.elements = static_cast<std::uint32_t>(kilometres * 1000.0 / kElementLength);
  size.triangles = 1'000'000;
  size.sampleLines = static_cast<std::uint32_t>(kilometres * 50);
  size.verticalCurves = static_cast<std::uint32_t>(kilometres * 4);
  size.corridorSections = static_cast<std::uint32_t>(kilometres * 100);
  const std::string path = folder.filePath(QStringLiteral("road.xml")).toStdString();
  {
    generator::TextOutput out(path);
    generator::writeScaledDrawing(out, size);
    out.finish();
  }
  desktop::DesktopOptions options;
  options.choices.bin = LVX_BIN_DIR;
  options.settingsFile = folder.filePath(QStringLiteral("settings.ini"));
  options.scheme = desktop::Scheme::Light;
  options.drawing = desktop::DrawingSources(QString::fromStdString(path));
  desktop::MainWindow window(options);
  bool isThere = false;
  QObject::connect(&window, &desktop::MainWindow::drawingShown, &window, [&isThere] { isThere = true; });
  window.resize(1600, 1000);
  window.show();
  while (!isThere) QApplication::processEvents(QEventLoop::WaitForMoreEvents);

  const civil::Drawing& drawing = window.session().drawing()->drawing();
  const civil::AlignmentObject& road = *drawing.sites.at(0).alignments.at(0);
  auto& plan = window.plan();
  auto* const profile = window.findChild<desktop::ProfileView*>();
  auto* const section = window.findChild<desktop::SectionView*>();
  section->show(drawing, road.sampleLineGroups.at(0).lines.at(0).handle);
  std::printf("%.1f km of alignment, %zu profiles, %zu triangles, %zu sections\n", road.geometry.length() / 1000.0,
              road.profiles.size(), drawing.surfaces.at(0).surface.counts().triangles, section->stops().size());

  Times inPlan;
  for (int i = 0; i < kMoves; ++i) {
    const double station = road.geometry.startStation() + road.geometry.length() * (i + 0.5) / kMoves;
    const auto place = road.geometry.pointLocation(station, 5.0);
    if (!place) continue;
    const civil::Vec2 pixel = plan.viewport().toPixels(place->point);
    inPlan.add([&] { moveTo(plan, {pixel.x, pixel.y}); });
    const auto& cursor = profile->cursorLine();
    if (!cursor) {
      std::fprintf(stderr, "the profile shows no station at %f\n", station);
      std::exit(1);
    }
  }
  inPlan.print("mouse in the plan");

  auto* const canvas = profile->findChild<QWidget*>(QStringLiteral("canvas"));
  Times inProfile;
  for (int i = 0; i < kMoves; ++i) {
    const double station = road.geometry.startStation() + road.geometry.length() * (i + 0.5) / kMoves;
    const QPoint at = profile->pixelOf({station, 0.0});
    inProfile.add([&] { moveTo(*canvas, QPointF(at.x(), canvas->height() / 3.0)); });
  }
  inProfile.print("mouse in the profile");
  auto* const dock = window.findChild<QDockWidget*>(QStringLiteral("sectionDock"));
  dock->raise();
  QApplication::processEvents();
  Times nearest;
  for (int i = 0; i < kMoves; ++i) {
    const double station = road.geometry.startStation() + road.geometry.length() * ((i * 37) % kMoves + 0.5) / kMoves;
    nearest.add([&] {
      section->showNearest(drawing, road.handle, station);
      section->repaint();
    });
  }
  nearest.print("a section that follows");
  window.leaveNow();
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  bench::printMachine();
  std::vector<double> lengths;
  for (int i = 1; i < argc; ++i) {
    const double length = QString::fromLocal8Bit(argv[i]).toDouble();
    if (!(length > 0.0)) {
      std::fprintf(stderr, "usage: bench_linked_cursor [kilometres]...\n");
      return 2;
    }
    lengths.push_back(length);
  }
  if (lengths.empty()) lengths.push_back(10.0);
  for (const double length : lengths) {
    const QTemporaryDir folder;
    run(length, folder);
  }
  return 0;
}

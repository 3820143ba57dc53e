#include "desktop/shell/drawing_loader.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <chrono>
#include <exception>
#include <filesystem>
#include <new>
#include <utility>

#include "desktop/common/qt_text.h"
#include "landxml/project.h"
#include "view/plan_scene.h"

namespace lvx::desktop {

struct DrawingLoader::Outcome {
  LoadedDrawing drawing;
  LoadFailure failure;
  bool cancelled = false;
};

namespace {

QString adviceFor(const QString& path, quint64 line) {
  const QFileInfo file(path);
  if (!file.exists())
    return DrawingLoader::tr(
        "Check the name, and whether the folder or drive is there. A drawing that was moved can be found with Open.");
  if (file.isDir()) return DrawingLoader::tr("Choose a LandXML file in that folder instead.");
  if (!file.isFile()) return DrawingLoader::tr("Choose a LandXML file instead.");
  if (!file.isReadable()) return DrawingLoader::tr("Ask for the right to read the file, or open a copy of it.");
  if (line > 0)
    return DrawingLoader::tr(
        "Look at that line of the file; a file that was cut off has to be copied or exported again by the program that "
        "made it.");
  return DrawingLoader::tr("Export the drawing again as LandXML from the program that made it.");
}

QString fromFilePath(const std::string& path) { return QFile::decodeName(QByteArray::fromStdString(path)); }

std::vector<landxml::ProjectFile> projectFiles(const DrawingSources& sources) {
  std::vector<landxml::ProjectFile> files;
  for (const SourceFile& file : sources.files)
    files.push_back({QFile::encodeName(file.path).toStdString(), file.swapAxes});
  return files;
}

DrawingSources sourcesOf(const std::vector<landxml::ProjectFile>& files, bool convertUnits) {
  DrawingSources sources;
  for (const landxml::ProjectFile& file : files) sources.files.append({fromFilePath(file.path), file.swapAxes});
  sources.convertUnits = convertUnits;
  return sources;
}

/// Lets through one call in 50 ms.
class Throttle {
 public:
  /// Another step is told at once.
  bool isDue(const QString& step) {
    const auto now = std::chrono::steady_clock::now();
    if (step == step_ && now - last_ < std::chrono::milliseconds(50)) return false;
    last_ = now;
    step_ = step;
    return true;
  }

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
  QString step_;
};

}  // namespace

DrawingLoader::~DrawingLoader() { join(); }

void DrawingLoader::join() {
  cancel_ = true;
  if (thread_.joinable()) thread_.join();
  running_ = false;
}

void DrawingLoader::start(const DrawingSources& sources, FileOrder order) {
  join();
  cancel_ = false;
  running_ = true;
  sources_ = sources;
  thread_ = std::thread(&DrawingLoader::work, this, sources, order, ++run_);
}

void DrawingLoader::cancel() { cancel_ = true; }

void DrawingLoader::work(DrawingSources sources, FileOrder order, std::uint64_t run) {
  auto outcome = std::make_shared<Outcome>();
  Throttle throttle;
  const auto tell = [this, run, &throttle](const QString& step, const QString& path, quint64 done, quint64 total) {
    if (throttle.isDue(step))
      QMetaObject::invokeMethod(
          this,
          [this, run, step, path, done, total] {
            if (run == run_ && running_) Q_EMIT progressed(step, path, done, total);
          },
          Qt::QueuedConnection);
    return !cancel_.load();
  };
  LoadFailure& failure = outcome->failure;
  try {
    std::vector<landxml::ProjectFile> files = projectFiles(sources);
    if (order == FileOrder::AlignmentFirst) files = landxml::alignmentFirst(std::move(files), [&] { return !cancel_; });
    sources = sourcesOf(files, sources.convertUnits);
    failure.sources = sources;
    for (const SourceFile& file : sources.files) outcome->drawing.stamps.push_back(stampOf(file.path));
    landxml::ProjectOptions options;
    options.convertUnits = sources.convertUnits;
    options.progress = [&](const std::string& path, const landxml::Progress& progress) {
      // Behind the last byte its surfaces are made ready, which takes as long again.
      const bool isRead = progress.bytesTotal != 0 && progress.bytesDone >= progress.bytesTotal;
      return tell(isRead ? tr("Making surfaces ready") : tr("Reading"), fromFilePath(path), progress.bytesDone,
                  isRead ? 0 : progress.bytesTotal);
    };
    outcome->drawing.drawing = std::make_shared<runtime::OpenDrawing>(landxml::readProject(files, options));
    const QString first = sources.files.front().path;
    constexpr double kWhole = 1000.0;
    outcome->drawing.scene = std::make_shared<view::PlanScene>(outcome->drawing.drawing->drawing(), [&](double done) {
      return tell(tr("Preparing the view"), first, static_cast<quint64>(done * kWhole), static_cast<quint64>(kWhole));
    });
    outcome->drawing.sources = sources;
  } catch (const view::Cancelled&) {
    outcome->cancelled = true;
  } catch (const landxml::Cancelled&) {
    outcome->cancelled = true;
  } catch (const landxml::UnitMismatch& error) {
    failure.reason = toQt(error.reason());
    failure.path = fromFilePath(error.file());
    failure.isUnitMismatch = true;
    failure.unit = toQt(error.unit());
    failure.drawingUnit = toQt(error.drawingUnit());
  } catch (const landxml::ReadError& error) {
    failure.reason = toQt(error.description());
    failure.path = fromFilePath(error.file());
    failure.line = error.line();
  } catch (const std::bad_alloc&) {
    failure.reason = tr("There is not enough memory for this drawing.");
    failure.advice = tr("Close other programs, or split the drawing.");
  } catch (const std::exception& error) {
    failure.reason = toQt(std::string(error.what()));
  }
  QMetaObject::invokeMethod(
      this, [this, run, outcome] { finish(run, outcome); }, Qt::QueuedConnection);
}

void DrawingLoader::finish(std::uint64_t run, const std::shared_ptr<Outcome>& outcome) {
  if (run != run_ || !running_) return;
  if (thread_.joinable()) thread_.join();
  running_ = false;
  // A cancel that came too late still counts: the user doesn't want this drawing any more.
  if (outcome->cancelled || cancel_) {
    Q_EMIT cancelled();
    return;
  }
  if (outcome->failure.reason.isEmpty()) {
    Q_EMIT loaded(outcome->drawing);
    return;
  }
  LoadFailure& failure = outcome->failure;
  if (failure.path.isEmpty()) failure.path = sources_.files.front().path;
  if (failure.advice.isEmpty()) failure.advice = adviceFor(failure.path, failure.line);
  Q_EMIT failed(failure);
}

}  // namespace lvx::desktop

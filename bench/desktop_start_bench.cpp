// How long it takes from the start of lvxhost-desktop until a drawing stands on the screen, sharp.
//
//   bench_desktop_start [drawing] [times]      default: the example, 9
//
// Starts the real program again and again, with settings of its own, on the display that there is (without one:
// QT_QPA_PLATFORM=offscreen). What it prints itself once the picture is there ends the time.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "measuring.h"

namespace {

constexpr int kMostMilliseconds = 120'000;

/// Milliseconds of one start; -1 where the program didn't come so far.
qint64 timeOfStart(const QString& drawing) {
  const QTemporaryDir settings;
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LVXHOST_DESKTOP_TRACE_START"), QStringLiteral("1"));
  environment.insert(QStringLiteral("XDG_CONFIG_HOME"), settings.path());
  process.setProcessEnvironment(environment);
  process.setReadChannel(QProcess::StandardError);
  QElapsedTimer time;
  time.start();
  process.start(QStringLiteral(LVX_BIN_DIR "/lvxhost-desktop"), {drawing});
  qint64 passed = -1;
  QByteArray said;
  while (passed < 0 && process.waitForReadyRead(kMostMilliseconds)) {
    said += process.readAllStandardError();
    if (said.contains("on the screen")) passed = time.elapsed();
  }
  process.terminate();
  process.waitForFinished();
  if (passed < 0) std::fprintf(stderr, "%s\n", said.constData());
  return passed;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList words = QCoreApplication::arguments();
  const QString drawing = words.value(1, QStringLiteral(LVX_SOURCE_DIR "/examples/valley-road.xml"));
  const int times = std::max(words.value(2, QStringLiteral("9")).toInt(), 1);
  lvx::bench::printMachine();
  std::vector<qint64> starts;
  for (int run = 0; run < times; ++run) {
    const qint64 passed = timeOfStart(drawing);
    if (passed < 0) return 1;
    starts.push_back(passed);
  }
  std::sort(starts.begin(), starts.end());
  std::printf("%s\nstart to sharp picture: fastest %lld ms, median %lld ms, slowest %lld ms of %d\n",
              qUtf8Printable(drawing), static_cast<long long>(starts.front()),
              static_cast<long long>(starts[starts.size() / 2]), static_cast<long long>(starts.back()), times);
  return 0;
}

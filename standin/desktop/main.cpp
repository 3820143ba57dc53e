#include <QApplication>
#include <QCommandLineParser>
#include <QLocale>
#include <QOperatingSystemVersion>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/shell/desktop_options.h"
#include "desktop/shell/main_window.h"
#include "options/exit_codes.h"
#include "options/option_table.h"
#include "standin_platform/interruption.h"
#include "standin_platform/program_arguments.h"
#include "standin_platform/standard_streams.h"
#include "version/version.h"

namespace lvx::desktop {
namespace {

using enum options::ExitCode;

void say(const QString& sentence) { std::fprintf(stderr, "lvxhost-desktop: %s\n", sentence.toUtf8().constData()); }

/// Ends the program with a sentence and an exit code.
class Failure : public std::runtime_error {
 public:
  explicit Failure(const QString& sentence) : std::runtime_error(toUtf8(sentence)) {}
};

struct Started {
  DesktopOptions options;
  /// Help or version was asked for; its text.
  QString answer;
};

QString inQt(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

/// What the table of options says of this program, in the words of Qt's own parser.
void addOptions(QCommandLineParser& parser) {
  for (const options::OptionDescription* option : options::optionsOf(options::Command::Desktop)) {
    const QString help = inQt(option->help) + QLatin1Char('.');
    if (option->isArgument)
      parser.addPositionalArgument(inQt(option->name), help, QLatin1Char('[') + inQt(option->name) + QLatin1Char(']'));
    else if (option->isFlag())
      parser.addOption(QCommandLineOption(inQt(option->name), help));
    else
      parser.addOption(QCommandLineOption(inQt(option->name), help, inQt(option->valueName)));
  }
}

/// The options and the argument that were given, over what stands in `values`.
void applyGiven(const QCommandLineParser& parser, options::Options& values) {
  const QStringList drawings = parser.positionalArguments();
  if (drawings.size() > 1)
    throw Failure(
        QStringLiteral("one drawing can be opened, and %1 are named: %2. --with adds a file to it. See --help.")
            .arg(drawings.size())
            .arg(drawings.join(QStringLiteral(", "))));
  for (const options::OptionDescription* option : options::optionsOf(options::Command::Desktop)) {
    try {
      if (option->isArgument) {
        if (!drawings.isEmpty()) apply(*option, values, toUtf8(drawings.front()));
      } else if (option->isFlag()) {
        if (parser.isSet(inQt(option->name))) apply(*option, values, {});
      } else {
        // Of one that is given many times the last counts, or a list has all.
        for (const QString& value : parser.values(inQt(option->name))) apply(*option, values, toUtf8(value));
      }
    } catch (const std::invalid_argument& error) {
      throw Failure(QString::fromUtf8(error.what()) + QLatin1Char('.'));
    }
  }
}

/// The files that are opened at the start.
DrawingSources sourcesOf(const options::Options& values) {
  const auto& drawing = values.window.drawing;
  if (!drawing) {
    if (!values.files.with.empty() || !values.files.swapAxes.empty())
      throw Failure(QStringLiteral("--with and --swap-axes belong to a drawing, and none is named. See --help."));
    return {};
  }
  QStringList paths{QString::fromStdString(*drawing)};
  for (const std::string& path : values.files.with) paths << QString::fromStdString(path);
  DrawingSources sources(paths);
  sources.convertUnits = values.files.convertUnits;
  for (const std::string& path : values.files.swapAxes) {
    SourceFile* const file = sources.find(QString::fromStdString(path));
    if (file == nullptr)
      throw Failure(QStringLiteral("--swap-axes names '%1', which is none of the drawing's files: %2.")
                        .arg(QString::fromStdString(path), paths.join(QStringLiteral(", "))));
    file->swapAxes = true;
  }
  return sources;
}

Started parse(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral(
      "lvxhost-desktop opens LandXML drawings in windows, shows them, and runs the road reports on them.\n\n"
      "Example:\n"
      "  lvxhost-desktop examples/valley-road.xml\n"
      "      Reports > Profile projection, choose the alignment, its lines and the surface, name the\n"
      "      output file, OK; the console lists what was written. F1 explains each report."));
  const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help."));
  const QCommandLineOption version(QStringLiteral("version"), QStringLiteral("Show the version."));
  parser.addOptions({help, version});
  addOptions(parser);
  if (!parser.parse(arguments)) throw Failure(parser.errorText() + QStringLiteral(" See --help."));

  Started started;
  if (parser.isSet(help))
    // Asked before there is an application, whose name Qt would take.
    started.answer = parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("lvxhost-desktop"));
  if (parser.isSet(version)) started.answer = QStringLiteral("lvxhost-desktop %1\n").arg(inQt(version::text()));
  options::Options values;
  values.common.host.language = QLocale::system().language() == QLocale::German ? "de" : "en";
  applyGiven(parser, values);
  started.options.drawing = sourcesOf(values);
  started.options.choices = std::move(values.common.host);
  if (const auto& scheme = values.window.scheme) started.options.scheme = schemeOf(QString::fromStdString(*scheme));
  return started;
}

constexpr const char* kNoDisplayWords =
    "there is no display to show windows on. Start it in a graphical session, or name one in DISPLAY; lvxhost makes "
    "the same reports without windows.";

/// Qt ends a program that finds no display by an abort; its user gets a sentence in place of that.
void onMessageWhileStarting(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type != QtFatalMsg) return;
  say(QString::fromLatin1(kNoDisplayWords));
  std::fprintf(stderr, "(%s)\n", text.simplified().toUtf8().constData());
  std::fflush(stderr);
  std::_Exit(kNoDisplay);
}

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

/// Windows has a screen without a word about it.
bool isDisplayNamed() {
  return QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows || isSet("DISPLAY") ||
         isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

QStringList wordsOf(int argc, char** argv) {
  QStringList words;
  for (const std::string& word : standin_platform::programArguments(argc, argv)) words << toQt(word);
  return words;
}

int run(int argc, char** argv) {
  const auto start = std::chrono::steady_clock::now();
  Started started;
  try {
    started = parse(wordsOf(argc, argv));
  } catch (const Failure& failure) {
    say(QString::fromUtf8(failure.what()));
    return kUsage;
  }
  if (!started.answer.isEmpty()) {
    std::fputs(started.answer.toUtf8().constData(), stdout);
    return std::fflush(stdout) == 0 ? kDone : kUsage;
  }
  if (!isDisplayNamed()) {
    say(QString::fromLatin1(kNoDisplayWords));
    return kNoDisplay;
  }

  const QtMessageHandler former = qInstallMessageHandler(onMessageWhileStarting);
  int qtArguments = 1;  // its own options are ours to name
  QApplication application(qtArguments, argv);
  qInstallMessageHandler(former);
  standin_platform::turnSignalsOfWritingIntoErrors();
  // Qt takes the environment's locale; numbers stay as they are.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setApplicationName(QStringLiteral("lvxhost-desktop"));
  QApplication::setApplicationVersion(inQt(version::text()));
  QGuiApplication::setDesktopFileName(QStringLiteral("lvxhost-desktop"));
  try {
    MainWindow window(started.options);
    if (isSet("LVXHOST_DESKTOP_TRACE_START"))
      QObject::connect(&window, &MainWindow::drawingShown, &window, [start] {
        const auto passed = std::chrono::steady_clock::now() - start;
        std::fprintf(stderr, "lvxhost-desktop: the drawing is on the screen after %lld ms\n",
                     static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count()));
      });
    // Ends the program as by closing its window, without questions: whoever sends a signal answers none.
    const standin_platform::InterruptionListener listener(
        [&window] { QMetaObject::invokeMethod(&window, &MainWindow::leaveNow, Qt::QueuedConnection); });
    window.show();
    return QApplication::exec();
  } catch (const std::invalid_argument& error) {
    say(QString::fromUtf8(error.what()));
    return kUsage;
  }
}

}  // namespace
}  // namespace lvx::desktop

int main(int argc, char** argv) { return lvx::desktop::run(argc, argv); }

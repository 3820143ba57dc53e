#include "cli/book_commands.h"

#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "canvas/canvas_library.h"
#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/made_objects.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "options/option_table.h"
#include "runtime/host_choices.h"
#include "runtime/input_files.h"
#include "sheets/book_making.h"
#include "sheets/paper.h"
#include "sheets/profile_book.h"
#include "sheets/section_book.h"
#include "sheets/sheet_error.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/interruption.h"
#include "text/number_text.h"

namespace lvx::cli {

using standin_platform::isInterrupted;

namespace {

std::optional<double> stationOf(const std::optional<std::string>& given) {
  return given ? sheets::stationOf(*given) : std::nullopt;
}

sheets::SheetSettings settingsOf(const options::Options& options, double exaggeration, std::int64_t moment) {
  const options::BookOptions& book = options.book;
  sheets::SheetSettings settings;
  settings.paper = sheets::paperOf(book.paper, book.orientation == "portrait").value();
  if (book.scale) settings.scale = sheets::scaleOf(*book.scale);
  settings.exaggeration = book.exaggeration ? options::lengthOf(*book.exaggeration) : exaggeration;
  settings.perSheet = static_cast<std::size_t>(book.perSheet.value_or(0));
  settings.hasGrid = book.grid;
  settings.language = options.common.host.language;
  settings.date = sheets::dayText(moment);
  return settings;
}

std::int64_t momentOf(const options::Options& options) {
  const std::optional<std::int64_t> fixed = runtime::hostOptions(options.common.host).platform.fixedMoment;
  return fixed.value_or(static_cast<std::int64_t>(std::time(nullptr)));
}

[[noreturn]] void failWith(const sheets::SheetError& error) {
  if (error.problem() == sheets::SheetError::Problem::Stopped) throw runtime::Interrupted();
  // A call that an interruption broke off may have said something else.
  if (isInterrupted()) throw runtime::Interrupted();
  throw Failure(kNotWritten, "nothing was written: " + std::string(error.what()));
}

/// Throws Failure where the place for the book can't be one, before any work.
void requirePlace(const options::Options& options, const civil::Drawing& drawing) {
  const std::filesystem::path target = options.report.stem;
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error))
    throw Failure(kNotWritten, "nothing was written: " + (std::filesystem::exists(folder, error)
                                                              ? "'" + folder.string() + "' is no folder"
                                                              : "there is no folder '" + folder.string() + "'"));
  if (const std::error_code forbidden = standin_platform::whyNoNameOfFile(target))
    throw Failure(kNotWritten,
                  "nothing was written: '" + target.string() + "' can't be an output: " + forbidden.message());
  runtime::InputFiles inputs;
  addStandardInput(inputs, options);
  if (options.drawing != options::kStandardInput) inputs.add(drawing);
  if (const std::string reason = inputs.whyNoOutput(target.string()); !reason.empty())
    throw Failure(kNotWritten, "nothing was written: '" + target.string() + "' can't be an output: " + reason);
}

/// Whether the book may be written; what is kept is told.
bool mayWrite(const options::Options& options, const std::vector<std::filesystem::path>& files, ReportRun& run) {
  std::vector<std::string> standing;
  std::error_code error;
  for (const std::filesystem::path& file : files)
    if (std::filesystem::exists(std::filesystem::symlink_status(file, error))) standing.push_back(file.string());
  if (standing.empty()) return true;
  const std::string others =
      standing.size() > 1 ? " and " + text::countText(standing.size() - 1, "further sheet") : std::string();
  if (mayOverwrite(options.common.overwriteMode(),
                   standing.front() + others + (standing.size() > 1 ? " exist" : " exists") + ". Overwrite it?"))
    return true;
  for (const std::string& path : standing) run.kept.push_back(path);
  say("kept '" + standing.front() + "'" + others + ", which " + (standing.size() > 1 ? "exist" : "exists") +
          "; --overwrite replaces it",
      Severity::Error, standing.front());
  return false;
}

/// Plans a book and writes it. `plan` gets what measures texts, how the sheets look, and whom to tell how far it is.
template <class Plan>
ExitCode writePlanned(const options::Options& options, ReportRun& run, double exaggeration, const Plan& plan) {
  const bool quiet = options.common.quiet;
  const std::int64_t moment = momentOf(options);
  try {
    // Loaded in the copy of this process that needs it.
    std::optional<canvas::CanvasLibrary> library;
    const sheets::BookPlan made{
        .maker = [&]() -> canvas::FileMaker& { return library.emplace(options.common.host.bin).maker(); },
        .book =
            [&](canvas::TextMeasure& measure, const sheets::Progress& progress) {
              return plan(measure, settingsOf(options, exaggeration, moment), progress);
            }};
    std::optional<ProgressLine> line;
    line.emplace(options.common.progressMode(), "placing sections");
    const sheets::Progress progress = [&line](std::size_t done, std::size_t total) {
      line->update(done, total);
      return !isInterrupted();
    };
    sheets::BookFacts book;
    std::vector<std::filesystem::path> files;
    const auto begin = [&](const sheets::BookFacts& facts) {
      line.reset();
      book = facts;
      if (!quiet)
        for (const std::string& note : book.notes) say(note, Severity::Note);
      files = sheets::bookFiles(options.report.stem, book.sheets);
      if (!mayWrite(options, files, run)) return false;
      line.emplace(options.common.progressMode(), "drawing sheets");
      return true;
    };
    if (!sheets::makeBook(made, options.report.stem, sheets::momentText(moment),
                          {.planning = progress, .mayWrite = begin, .drawing = progress}))
      return kNotWritten;
    line.reset();
    if (!quiet)
      print(text::countText(book.sheets, "sheet") + ", " + sheets::paperText(book.paper) + ", " +
            sheets::scaleText(book.scale) + "\n");
    answer().set("book",
                 {{"sheets", book.sheets}, {"paper", {book.paper.width, book.paper.height}}, {"scale", book.scale}});
    for (const std::filesystem::path& file : files) {
      std::error_code error;
      const std::uintmax_t bytes = std::filesystem::file_size(file, error);
      printFile(file.string(), error ? 0 : bytes, quiet);
      run.written.push_back(file.string());
    }
    return kDone;
  } catch (const sheets::SheetError& error) {
    failWith(error);
  }
}

/// The drawing that a book is made of: what somebody has read already, or what is read now.
runtime::OpenDrawing& openedDrawing(const options::Options& options, ReportRun& run) {
  if (!run.drawing) run.drawing = std::make_shared<runtime::OpenDrawing>(loadDrawing(options, run.groundSearch));
  return *run.drawing;
}

/// Finds what the options name; where that fails, what the reader left out may be what was looked for.
template <class Find>
auto found(const options::Options& options, const civil::Drawing& drawing, const Find& find) {
  if (!options.common.quiet) tellDiagnostics(drawing);
  return find();
}

void requireRange(const options::Options& options) {
  const auto from = stationOf(options.book.from);
  const auto to = stationOf(options.book.to);
  if (from && to && *from > *to)
    throw Failure(kUsage, "--from " + *options.book.from + " lies behind --to " + *options.book.to);
}

}  // namespace

void requireBookName(const std::string& path) {
  const bool hasZero = path.find('\0') != std::string::npos;
  if (hasZero || !sheets::isBookName(path) || std::filesystem::path(path).stem().empty())
    throw Failure(
        kUsage,
        "--out needs the name of a file that ends with .pdf or .svg, such as 'out/sections.pdf', not '" + path + "'");
}

ExitCode runSections(const options::Options& options, ReportRun& run) {
  requireBookName(options.report.stem);
  requireRange(options);
  runtime::OpenDrawing& opened = openedDrawing(options, run);
  const civil::Drawing& drawing = opened.drawing();
  requirePlace(options, drawing);
  MadeForReport made(opened);
  const sheets::SectionChoice choice = found(options, drawing, [&] {
    const FoundAlignment alignment = findAlignment(drawing, options.report.alignment, options.report.site);
    sheets::SectionChoice chosen;
    for (const std::string& name : options.book.surfaces) chosen.surfaces.push_back(findSurface(drawing, name).handle);
    chosen.alignment = alignment.alignment;
    chosen.group = &groupFor(made, *alignment.alignment, options, "");
    chosen.from = stationOf(options.book.from);
    chosen.to = stationOf(options.book.to);
    return chosen;
  });
  const ExitCode code = writePlanned(
      options, run, 1.0,
      [&](canvas::TextMeasure& measure, sheets::SheetSettings settings, const sheets::Progress& progress) {
        return std::make_unique<sheets::SectionBook>(drawing, choice, std::move(settings), measure, progress);
      });
  return code;
}

ExitCode runProfile(const options::Options& options, ReportRun& run) {
  requireBookName(options.report.stem);
  requireRange(options);
  const civil::Drawing& drawing = openedDrawing(options, run).drawing();
  requirePlace(options, drawing);
  const sheets::ProfileChoice choice = found(options, drawing, [&] {
    const FoundAlignment alignment = findAlignment(drawing, options.report.alignment, options.report.site);
    sheets::ProfileChoice chosen;
    chosen.alignment = alignment.alignment;
    if (const auto& name = options.report.profile) chosen.design = &findProfile(*alignment.alignment, *name);
    if (const auto& name = options.report.groundProfile) chosen.ground = &findSurface(drawing, *name);
    chosen.from = stationOf(options.book.from);
    chosen.to = stationOf(options.book.to);
    return chosen;
  });
  constexpr double kExaggeration = 10.0;
  return writePlanned(
      options, run, kExaggeration,
      [&](canvas::TextMeasure& measure, sheets::SheetSettings settings, const sheets::Progress& progress) {
        return std::make_unique<sheets::ProfileBook>(drawing, choice, std::move(settings), measure, progress);
      });
}

}  // namespace lvx::cli

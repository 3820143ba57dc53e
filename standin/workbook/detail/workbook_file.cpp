#include "workbook/detail/workbook_file.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <xlsxwriter.h>

#include "framework/exceptions.h"
#include "platform/utf8.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/c_locale_scope.h"
#include "standin_platform/isolated_work.h"
#include "standin_platform/scratch_folder.h"
#include "workbook/detail/archive_check.h"
#include "workbook/detail/archive_writer.h"
#include "workbook/detail/sheet_cells.h"
#include "workbook/detail/sheet_text.h"

namespace lvx::workbook::detail {

namespace {

using framework::AutomationException;
using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;
using standin_platform::IsolatedOutcome;
using standin_platform::runIsolated;
using standin_platform::ScratchFolder;

constexpr const char* kCantWrite = "workbook: the file can't be written to its folder; the disk may be full";

/// The file can't be made, for a reason that is put together.
class NotSaved final : public AutomationException {
 public:
  explicit NotSaved(std::string words) : words_(std::move(words)) {}
  [[nodiscard]] const char* what() const noexcept override { return words_.c_str(); }

 private:
  std::string words_;
};

struct WorkbookDeleter {
  void operator()(lxw_workbook* book) const noexcept { lxw_workbook_free(book); }
};
using WorkbookHandle = std::unique_ptr<lxw_workbook, WorkbookDeleter>;

/// SOURCE_DATE_EPOCH, or the present where there is none; also for 0, which the library takes for the present.
std::time_t creationMoment() {
  const char* text = std::getenv("SOURCE_DATE_EPOCH");
  const std::string_view digits(text == nullptr ? "" : text);
  std::time_t moment = 0;
  const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), moment);
  const bool isGiven = error == std::errc() && rest == digits.data() + digits.size() && moment != 0;
  return isGiven ? moment : std::time(nullptr);
}

void check(lxw_error error) {
  if (error != LXW_NO_ERROR) throw AutomationException(kCantWrite);
}

/// The corners of all cells that show.
struct Bounds {
  CellPlace first{kRowLimit, static_cast<std::uint16_t>(kColumnLimit)};
  CellPlace last;
  [[nodiscard]] bool isEmpty() const { return first.row == kRowLimit; }
};

Bounds boundsOf(SheetCells& cells) {
  Bounds bounds;
  Row row;
  std::vector<ShownCell> shown;
  cells.rewind();
  for (std::uint32_t number = 0; cells.next(number, row);) {
    shownCells(row, shown);
    if (shown.empty()) continue;
    if (bounds.isEmpty()) bounds.first.row = number;
    bounds.last.row = number;
    bounds.first.column = std::min(bounds.first.column, shown.front().first);
    bounds.last.column = std::max(bounds.last.column, shown.back().first);
  }
  return bounds;
}

/// Builds a workbook by the library whose sheet is as large as `bounds` and holds their corners alone. Its temporary files lie
/// in `scratch`.
void buildFrame(const Bounds& bounds, bool hasThreeDecimals, const std::filesystem::path& archive, std::string scratch,
                std::time_t moment) {
  lxw_workbook_options options{LXW_TRUE, scratch.data(), LXW_FALSE};
  WorkbookHandle book(workbook_new_opt(archive.string().c_str(), &options));
  lxw_worksheet* sheet = book ? workbook_add_worksheet(book.get(), nullptr) : nullptr;
  lxw_format* threeDecimals = book ? workbook_add_format(book.get()) : nullptr;
  if (sheet == nullptr || threeDecimals == nullptr) throw std::bad_alloc();
  format_set_num_format(threeDecimals, "0.000");
  lxw_doc_properties properties{};
  properties.created = moment;
  check(workbook_set_properties(book.get(), &properties));
  if (!bounds.isEmpty())
    for (const CellPlace& corner : {bounds.first, bounds.last})
      check(worksheet_write_number(sheet, corner.row, corner.column, 1.0, hasThreeDecimals ? threeDecimals : nullptr));
  check(workbook_close(book.release()));
}

/// The text of all rows, in pieces.
class RowText {
 public:
  explicit RowText(SheetCells& cells) : cells_(cells) { cells_.rewind(); }
  bool appendPiece(std::string& out) {
    while (out.size() < SheetPacker::kPiece) {
      std::uint32_t number = 0;
      if (!cells_.next(number, row_)) return false;
      shownCells(row_, shown_);
      appendRow(number, shown_, out);
    }
    return true;
  }

 private:
  SheetCells& cells_;
  Row row_;
  std::vector<ShownCell> shown_;
};

/// Builds the file from its cells: the library makes all but the rows of the sheet, which cost it most. Temporary files lie in
/// `scratch`.
void build(SheetCells& cells, const std::filesystem::path& archive, const std::filesystem::path& scratch,
           std::time_t moment, unsigned threads) {
  const Bounds bounds = boundsOf(cells);
  const std::filesystem::path frame = scratch / "frame";
  buildFrame(bounds, cells.hasThreeDecimals(), frame, scratch.string(), moment);
  if (bounds.isEmpty()) {
    std::filesystem::copy_file(frame, archive, std::filesystem::copy_options::overwrite_existing);
    return;
  }
  // A cell takes up to 60 characters beside its text, a character of a text up to 7. Archives beyond 4 GB need another
  // format, which older readers refuse, so it is taken only then.
  const std::uint64_t mostBytes = 60 * cells.cells() + 7 * cells.textBytes();
  standin_platform::Crew crew(threads);
  RowText rows(cells);
  writeArchive(frame, archive, mostBytes > 0xF0000000U, crew,
               [&rows](std::string& piece) { return rows.appendPiece(piece); });
}

}  // namespace

struct WorkbookFile::State {
  SheetCells cells;
  std::string text;  // reused
};

WorkbookFile::WorkbookFile(unsigned threads) : state_(std::make_unique<State>()), threads_(threads) {}
WorkbookFile::~WorkbookFile() = default;

WorkbookFile::State& WorkbookFile::gathered() {
  if (!state_) throw AutomationException("workbook: it was saved and takes nothing more");
  return *state_;
}

void WorkbookFile::abandon() {
  state_.reset();
  formatOnly_.reset();
}

void WorkbookFile::writeText(CellPlace place, std::wstring_view text) {
  State& sheet = gathered();
  sheet.text.clear();
  appendCellText(text, sheet.text);
  sheet.cells.put(place, {sheet.text.empty() ? CellKind::Empty : CellKind::Text, false, 0.0, sheet.text});
}

void WorkbookFile::writeNumber(CellPlace place, std::wstring_view text) {
  State& sheet = gathered();
  if (formatOnly_ == place) formatOnly_.reset();
  if (const auto number = parseNumber(text)) {
    sheet.cells.put(place, {CellKind::Number, true, *number, {}});
    return;
  }
  sheet.text.clear();
  appendCellText(text, sheet.text);
  sheet.cells.put(place, {sheet.text.empty() ? CellKind::Empty : CellKind::Text, true, 0.0, sheet.text});
}

void WorkbookFile::setThreeDecimals(CellPlace place) {
  State& sheet = gathered();
  if (formatOnly_ && *formatOnly_ != place) sheet.cells.put(*formatOnly_, {CellKind::Kept, true, 0.0, {}});
  formatOnly_ = place;
}

std::uint64_t WorkbookFile::save(const framework::CString& path, const std::function<void()>& meanwhile) {
  SheetCells& gatheredCells = gathered().cells;
  if (formatOnly_) gatheredCells.put(*formatOnly_, {CellKind::Kept, true, 0.0, {}});
  formatOnly_.reset();
  const std::unique_ptr<State> state = std::move(state_);
  SheetCells& cells = state->cells;

  // The library prints numbers by the thread's locale, and a workbook knows only the point.
  const standin_platform::CLocaleScope pointAsDecimalSign;
  const std::filesystem::path target(platform::toUtf8(path));
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  std::optional<AtomicFile> file;
  std::optional<ScratchFolder> scratch;
  try {
    file.emplace(target, standin_platform::AtomicFilePolicy{.keepsTarget = false, .flushesToDisk = true});
    scratch.emplace(folder);
  } catch (const AtomicFileError&) {
    throw AutomationException("workbook: no file can be made in its folder");
  } catch (const std::system_error&) {
    throw AutomationException("workbook: no folder can be made in its folder");
  }
  const std::filesystem::path& archive = file->lend();
  cells.rewind();  // before the copy, which reads what is flushed here
  // The library takes memory for granted and crashes without it.
  const std::filesystem::path twin = scratch->path() / "twin";
  const std::time_t moment = creationMoment();
  const IsolatedOutcome outcome = runIsolated(
      [&] {
        build(cells, archive, scratch->path(), moment, threads_);
        // A second one, by which the archive gets all parts but the sheet as the library makes them.
        const Bounds corner = cells.hasThreeDecimals() ? Bounds{{0, 0}, {0, 0}} : Bounds{};
        buildFrame(corner, cells.hasThreeDecimals(), twin, scratch->path().string(), moment);
      },
      meanwhile);
  switch (outcome.end) {
    case IsolatedOutcome::End::Done:
      break;
    case IsolatedOutcome::End::Failed:
      throw NotSaved(outcome.words);
    case IsolatedOutcome::End::ShortMemory:
      throw NotSaved("workbook: not enough memory to write it");
    case IsolatedOutcome::End::Crashed:
      throw NotSaved("workbook: its writing broke off (" + outcome.words + "); memory may be short");
    case IsolatedOutcome::End::NotStarted:
      throw NotSaved("workbook: no process can be started to write it: " + outcome.words);
  }
  if (const std::string wrong = whatIsWrong(archive, cells, twin); !wrong.empty())
    throw NotSaved("workbook: " + wrong + " after the writing; the disk may be full or memory short");
  std::error_code error;
  const std::uint64_t bytes = std::filesystem::file_size(archive, error);
  if (error) throw AutomationException("workbook: the finished file can't be looked at");
  scratch.reset();
  try {
    file->commit();
  } catch (const AtomicFileError&) {
    throw AutomationException("workbook: the file can't take its name");
  }
  return bytes;
}

}  // namespace lvx::workbook::detail

#include "workbook/detail/workbook_file.h"

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

#include <xlsxwriter.h>

#include "framework/exceptions.h"
#include "platform/utf8.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/c_locale_scope.h"
#include "standin_platform/isolated_work.h"
#include "standin_platform/scratch_folder.h"
#include "workbook/detail/archive_check.h"
#include "workbook/detail/sheet_cells.h"

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

void writeRow(lxw_worksheet* sheet, std::uint32_t number, const Row& row, lxw_format* threeDecimals,
              std::string& text) {
  row.forEach([&](std::uint16_t column, const CellValue& value) {
    lxw_format* format = value.threeDecimals ? threeDecimals : nullptr;
    switch (value.kind) {
      case CellKind::Number:
        check(worksheet_write_number(sheet, number, column, value.number, format));
        break;
      case CellKind::Text:
        text.assign(value.text);
        check(worksheet_write_string(sheet, number, column, text.c_str(), format));
        break;
      case CellKind::Kept:  // no row gives it out
      case CellKind::Empty:
        if (format != nullptr) check(worksheet_write_blank(sheet, number, column, format));
        break;
    }
  });
}

/// Builds the file from rewound cells. Its temporary files lie in `scratch`.
void build(SheetCells& cells, const std::filesystem::path& archive, std::string scratch, std::time_t moment) {
  // A cell takes up to 60 characters beside its text, a character of a text up to 7. Archives beyond 4 GB need another
  // format, which older readers refuse, so it is taken only then.
  const std::uint64_t mostBytes = 60 * cells.cells() + 7 * cells.textBytes();
  lxw_workbook_options options{LXW_TRUE, scratch.data(),
                               static_cast<std::uint8_t>(mostBytes > 0xF0000000U ? LXW_TRUE : LXW_FALSE)};
  WorkbookHandle book(workbook_new_opt(archive.string().c_str(), &options));
  lxw_worksheet* sheet = book ? workbook_add_worksheet(book.get(), nullptr) : nullptr;
  lxw_format* threeDecimals = book ? workbook_add_format(book.get()) : nullptr;
  if (sheet == nullptr || threeDecimals == nullptr) throw std::bad_alloc();
  format_set_num_format(threeDecimals, "0.000");
  lxw_doc_properties properties{};
  properties.created = moment;
  check(workbook_set_properties(book.get(), &properties));

  std::string text;
  Row row;
  for (std::uint32_t number = 0; cells.next(number, row);) writeRow(sheet, number, row, threeDecimals, text);
  check(workbook_close(book.release()));
}

/// A cell or none, by which a workbook gets all parts but the sheet as one of `cells` does.
SheetCells cellsOfTwin(const SheetCells& cells) {
  SheetCells twin;
  if (cells.hasThreeDecimals()) twin.put({0, 0}, {CellKind::Number, true, 1.0, {}});
  return twin;
}

}  // namespace

struct WorkbookFile::State {
  SheetCells cells;
  std::string text;  // reused
};

WorkbookFile::WorkbookFile() : state_(std::make_unique<State>()) {}
WorkbookFile::~WorkbookFile() = default;

WorkbookFile::State& WorkbookFile::gathered() {
  if (!state_) throw AutomationException("workbook: it was saved and takes nothing more");
  return *state_;
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
  cells.rewind();
  // The library takes memory for granted and crashes without it.
  const std::filesystem::path twin = scratch->path() / "twin";
  const std::time_t moment = creationMoment();
  const IsolatedOutcome outcome = runIsolated(
      [&] {
        build(cells, archive, scratch->path().string(), moment);
        SheetCells ofTwin = cellsOfTwin(cells);
        ofTwin.rewind();
        build(ofTwin, twin, scratch->path().string(), moment);
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

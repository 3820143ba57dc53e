#include "workbook/detail/workbook_file.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <minizip/unzip.h>
#include <xlsxwriter.h>

#include "framework/exceptions.h"
#include "platform/posix/posix_platform.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/c_locale_scope.h"
#include "standin_platform/temporary_stream.h"
#include "workbook/detail/row_log.h"

namespace lvx::workbook::detail {

namespace {

using framework::AutomationException;
using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;

constexpr const char* kCantWrite = "workbook: the file can't be written to its folder; the disk may be full";

struct WorkbookDeleter {
  void operator()(lxw_workbook* book) const noexcept { lxw_workbook_free(book); }
};
using WorkbookHandle = std::unique_ptr<lxw_workbook, WorkbookDeleter>;

/// SOURCE_DATE_EPOCH, or 0 for the present.
std::time_t creationMoment() {
  const char* text = std::getenv("SOURCE_DATE_EPOCH");
  if (text == nullptr) return 0;
  const std::string_view digits(text);
  std::time_t moment = 0;
  const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), moment);
  return error == std::errc() && rest == digits.data() + digits.size() ? moment : 0;
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

/// The library doesn't look whether its temporary files took all that it wrote. Its rows lie in one; the archive must
/// hold them whole.
bool holdsAllRows(const std::filesystem::path& archive, std::uint64_t rowBytes) {
  const auto close = [](void* zip) { unzClose(zip); };
  const std::unique_ptr<void, decltype(close)> zip(unzOpen64(archive.c_str()), close);
  unz_file_info64 info{};
  return zip && unzLocateFile(zip.get(), "xl/worksheets/sheet1.xml", 1) == UNZ_OK &&
         unzGetCurrentFileInfo64(zip.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0) == UNZ_OK &&
         info.uncompressed_size > rowBytes + std::string_view("<sheetData></sheetData></worksheet>").size();
}

}  // namespace

/// Cells of the current row gather in `row`; a cell of a later row sends it to the log. Only `save` knows where the
/// workbook goes and hands the rows to the library, whose constant-memory mode takes them in ascending order only: a cell
/// of an earlier row waits in `late` and is put into its row then.
struct WorkbookFile::State {
  RowLog log;
  Row row;
  std::uint32_t rowNumber = 0;
  std::map<std::uint32_t, std::vector<std::pair<std::uint16_t, std::pair<CellValue, std::string>>>> late;
  std::uint64_t lateBytes = 0;
  std::string text;  // reused

  void put(CellPlace place, CellValue value) {
    if (place.row < rowNumber) {
      late[place.row].emplace_back(place.column, std::pair(value, std::string(value.text)));
      lateBytes += value.text.size();
      return;
    }
    if (place.row > rowNumber) {
      if (!row.empty()) log.append(rowNumber, row);
      row.clear();
      rowNumber = place.row;
    }
    row.put(place.column, value);
  }

  /// Calls use(number, row) for every row that has a cell, ascending.
  template <class Use>
  void replay(Use use) {
    if (!row.empty()) log.append(rowNumber, row);
    log.rewind();
    Row passedOver;  // of a row that only late cells have
    const auto addLate = [](const auto& cells, Row& to) {
      for (const auto& [column, cell] : cells) {
        CellValue value = cell.first;
        value.text = cell.second;
        to.put(column, value);
      }
    };
    auto waiting = late.begin();
    const auto useBefore = [&](std::uint32_t end) {
      for (; waiting != late.end() && waiting->first < end; ++waiting) {
        passedOver.clear();
        addLate(waiting->second, passedOver);
        use(waiting->first, passedOver);
      }
    };
    for (std::uint32_t number = 0; log.next(number, row);) {
      useBefore(number);
      if (waiting != late.end() && waiting->first == number) {
        addLate(waiting->second, row);
        ++waiting;
      }
      use(number, row);
    }
    useBefore(kRowLimit);
  }
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
  sheet.put(place, {sheet.text.empty() ? CellKind::Empty : CellKind::Text, false, 0.0, sheet.text});
}

void WorkbookFile::writeNumber(CellPlace place, std::wstring_view text) {
  State& sheet = gathered();
  if (formatOnly_ == place) formatOnly_.reset();
  if (const auto number = parseNumber(text)) {
    sheet.put(place, {CellKind::Number, true, *number, {}});
    return;
  }
  sheet.text.clear();
  appendCellText(text, sheet.text);
  sheet.put(place, {sheet.text.empty() ? CellKind::Empty : CellKind::Text, true, 0.0, sheet.text});
}

void WorkbookFile::setThreeDecimals(CellPlace place) {
  State& sheet = gathered();
  if (formatOnly_ && *formatOnly_ != place) sheet.put(*formatOnly_, {CellKind::Kept, true, 0.0, {}});
  formatOnly_ = place;
}

void WorkbookFile::save(const framework::CString& path) {
  State& cells = gathered();
  if (formatOnly_) cells.put(*formatOnly_, {CellKind::Kept, true, 0.0, {}});
  formatOnly_.reset();
  std::unique_ptr<State> state = std::move(state_);

  // The library prints numbers by the thread's locale, and a workbook knows only the point.
  const standin_platform::CLocaleScope pointAsDecimalSign;
  const std::filesystem::path target(platform::toUtf8(path));
  std::optional<AtomicFile> file;
  try {
    file.emplace(target, standin_platform::AtomicFilePolicy{.keepsTarget = false});
  } catch (const AtomicFileError&) {
    throw AutomationException("workbook: no file can be made in its folder");
  }
  const std::filesystem::path archive = file->lend();
  // The library's temporary files lie in the same folder: a disk that is too full for them is too full for the archive,
  // whose writing is checked.
  std::string folder = target.has_parent_path() ? target.parent_path().string() : ".";
  // A cell takes up to 60 characters beside its text, a character of a text up to 7. Archives beyond 4 GB need another
  // format, which older readers refuse, so it is taken only then.
  const std::uint64_t mostBytes = 60 * state->log.cells() + 7 * (state->log.textBytes() + state->lateBytes);
  lxw_workbook_options options{LXW_TRUE, folder.data(),
                               static_cast<std::uint8_t>(mostBytes > 0xF0000000U ? LXW_TRUE : LXW_FALSE)};
  WorkbookHandle book(workbook_new_opt(archive.c_str(), &options));
  lxw_worksheet* sheet = book ? workbook_add_worksheet(book.get(), nullptr) : nullptr;
  lxw_format* threeDecimals = book ? workbook_add_format(book.get()) : nullptr;
  if (sheet == nullptr || threeDecimals == nullptr) throw AutomationException(kCantWrite);
  format_set_num_format(threeDecimals, "0.000");
  lxw_doc_properties properties{};
  properties.created = creationMoment();
  check(workbook_set_properties(book.get(), &properties));

  std::string text;
  state->replay([&](std::uint32_t number, const Row& row) { writeRow(sheet, number, row, threeDecimals, text); });
  state.reset();

  lxw_worksheet_write_single_row(sheet);  // the last row still waits in the library
  if (std::fflush(sheet->optimize_tmpfile) != 0 || std::ferror(sheet->optimize_tmpfile) != 0)
    throw AutomationException(kCantWrite);
  const auto rowBytes = standin_platform::placeIn(sheet->optimize_tmpfile);
  check(workbook_close(book.release()));
  if (!holdsAllRows(archive, rowBytes)) throw AutomationException(kCantWrite);
  try {
    file->commit();
  } catch (const AtomicFileError&) {
    throw AutomationException("workbook: the file can't take its name");
  }
}

}  // namespace lvx::workbook::detail

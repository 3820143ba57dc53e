#include "workbook/workbook_server.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "framework/exceptions.h"
#include "host/excel_operations.h"
#include "workbook/detail/cell_text.h"
#include "workbook/detail/workbook_file.h"

namespace lvx::workbook {

namespace {

namespace excel = host::excel;
using framework::AutomationException;
using host::AutomationArguments;
using host::AutomationObject;
using host::AutomationValue;
using host::DispatchId;

constexpr std::wstring_view kThreeDecimals = L"0,000";

class TooLong final : public AutomationException {
 public:
  explicit TooLong(std::string words) : words_(std::move(words)) {}
  [[nodiscard]] const char* what() const noexcept override { return words_.c_str(); }

 private:
  std::string words_;
};

/// An object without operations; each class adds its own.
class ServerObject : public AutomationObject {
 public:
  AutomationValue get(DispatchId, AutomationArguments) override { fail(); }
  void put(DispatchId, const AutomationValue&) override { fail(); }
  AutomationValue call(DispatchId, AutomationArguments) override { fail(); }

 protected:
  static void require(bool holds, const char* reason) {
    if (!holds) throw AutomationException(reason);
  }
  static void requireOperation(DispatchId asked, DispatchId known, AutomationArguments arguments, std::size_t count) {
    if (asked != known) fail();
    require(arguments.size() == count, "workbook: an operation with too many or too few arguments");
  }

 private:
  [[noreturn]] static void fail() { throw AutomationException("workbook: an object hasn't got that operation"); }
};

using ObserverRef = std::shared_ptr<WorkbookObserver>;

struct Settings {
  ObserverRef observer;
  unsigned threads = 0;
};

/// What a workbook's objects share.
struct Book {
  explicit Book(const Settings& settings) : file(settings.threads), observer(settings.observer) {}
  void beforeWriting() const {
    if (observer) observer->beforeWriting();
  }
  /// True where the row is below the sheet, or another one was: the workbook can't be then, and keeps nothing.
  bool isTooLong(detail::CellPlace place) {
    if (place.row < detail::kRowLimit) return rows > 0;
    if (rows == 0) file.abandon();
    rows = std::max(rows, std::uint64_t{place.row} + 1);
    return true;
  }

  detail::WorkbookFile file;
  ObserverRef observer;
  std::uint64_t rows = 0;  ///< that the sheet would need, where it hasn't got them
};
using BookRef = std::shared_ptr<Book>;

class Range final : public ServerObject {
 public:
  Range(BookRef book, detail::CellPlace place) : book_(std::move(book)), place_(place) {}
  /// Becomes the range of another cell.
  void moveTo(detail::CellPlace place) {
    place_ = place;
    threeDecimals_ = false;
  }

  void put(DispatchId property, const AutomationValue& value) override {
    switch (property) {
      case excel::kRangeValue:
        book_->beforeWriting();
        if (book_->isTooLong(place_)) break;
        if (threeDecimals_)
          book_->file.writeNumber(place_, value.text());
        else
          book_->file.writeText(place_, value.text());
        break;
      case excel::kRangeNumberFormatLocal:
        require(value.text() == kThreeDecimals, "workbook: a number format other than three decimals");
        threeDecimals_ = true;
        if (!book_->isTooLong(place_)) book_->file.setThreeDecimals(place_);
        break;
      default:
        ServerObject::put(property, value);
    }
  }

 private:
  BookRef book_;
  detail::CellPlace place_;
  bool threeDecimals_ = false;
};

class Worksheet final : public ServerObject {
 public:
  explicit Worksheet(BookRef book) : book_(std::move(book)) {}

  AutomationValue get(DispatchId property, AutomationArguments arguments) override {
    requireOperation(property, excel::kWorksheetRange, arguments, 2);
    const framework::CString& name = arguments[0].text();
    require(arguments[1].text() == name, "workbook: a range of more than one cell");
    const auto place = detail::parseCellName(name);
    require(place.has_value(), "workbook: a cell outside the sheet's 16384 columns");
    return AutomationValue::ofObject(rangeAt(*place));
  }

  AutomationValue call(DispatchId method, AutomationArguments arguments) override {
    requireOperation(method, excel::kWorksheetSaveAs, arguments, host::kSaveAsArguments);
    for (const AutomationValue& argument : arguments.subspan(1))
      require(argument.isMissing(), "workbook: saving in another form than the default one");
    save(arguments[0].text());
    return {};
  }

 private:
  /// Callers hold a cell's range until they have the next one's. So two objects serve all cells; more are made for who
  /// keeps more.
  std::shared_ptr<Range> rangeAt(detail::CellPlace place) {
    for (std::shared_ptr<Range>& range : ranges_) {
      if (!range) return range = std::make_shared<Range>(book_, place);
      if (range.use_count() == 1) {
        range->moveTo(place);
        return range;
      }
    }
    return std::make_shared<Range>(book_, place);
  }

  void save(const framework::CString& path) {
    book_->beforeWriting();
    std::uint64_t bytes = 0;
    try {
      if (book_->observer) book_->observer->beforeSaving(path);
      if (const std::uint64_t rows = std::exchange(book_->rows, 0); rows > 0) {
        const std::string reason = "workbook: the report needs " + std::to_string(rows) +
                                   " rows, and a sheet ends at row " + std::to_string(detail::kRowLimit) +
                                   "; leave the workbook out, or report less at a time";
        if (!book_->observer) throw TooLong(reason);
        book_->observer->notSaved(path, reason.c_str());
        return;
      }
      bytes = book_->file.save(path, [this] {
        if (book_->observer) book_->observer->whileSaving();
      });
    } catch (const AutomationException& failure) {
      if (book_->observer) book_->observer->notSaved(path, failure.what());
      throw;
    } catch (const std::bad_alloc&) {
      constexpr const char* kShortMemory = "workbook: not enough memory to write it";
      if (book_->observer) book_->observer->notSaved(path, kShortMemory);
      throw AutomationException(kShortMemory);
    }
    if (book_->observer) book_->observer->saved(path, bytes);
  }

  BookRef book_;
  std::array<std::shared_ptr<Range>, 2> ranges_;
};

class Worksheets final : public ServerObject {
 public:
  explicit Worksheets(BookRef book) : sheet_(std::make_shared<Worksheet>(std::move(book))) {}

  AutomationValue get(DispatchId property, AutomationArguments arguments) override {
    requireOperation(property, excel::kWorksheetsItem, arguments, 1);
    require(arguments[0].integer() == 1, "workbook: there is one worksheet");
    return AutomationValue::ofObject(sheet_);
  }

 private:
  std::shared_ptr<Worksheet> sheet_;
};

class Workbook final : public ServerObject {
 public:
  explicit Workbook(BookRef book) : sheets_(std::make_shared<Worksheets>(std::move(book))) {}

  AutomationValue get(DispatchId property, AutomationArguments arguments) override {
    requireOperation(property, excel::kWorkbookWorksheets, arguments, 0);
    return AutomationValue::ofObject(sheets_);
  }

 private:
  std::shared_ptr<Worksheets> sheets_;
};

class Workbooks final : public ServerObject {
 public:
  explicit Workbooks(Settings settings) : settings_(std::move(settings)) {}

  AutomationValue call(DispatchId method, AutomationArguments arguments) override {
    requireOperation(method, excel::kWorkbooksAdd, arguments, 1);
    require(arguments[0].isMissing(), "workbook: a template other than the default one");
    return AutomationValue::ofObject(std::make_shared<Workbook>(std::make_shared<Book>(settings_)));
  }

 private:
  Settings settings_;
};

class Application final : public ServerObject {
 public:
  explicit Application(Settings settings) : books_(std::make_shared<Workbooks>(std::move(settings))) {}

  AutomationValue get(DispatchId property, AutomationArguments arguments) override {
    requireOperation(property, excel::kApplicationWorkbooks, arguments, 0);
    requireRunning();
    return AutomationValue::ofObject(books_);
  }

  AutomationValue call(DispatchId method, AutomationArguments arguments) override {
    requireOperation(method, excel::kApplicationQuit, arguments, 0);
    requireRunning();
    books_.reset();
    return {};
  }

 private:
  void requireRunning() const { require(books_ != nullptr, "workbook: the application has quit"); }

  std::shared_ptr<Workbooks> books_;
};

}  // namespace

host::Ref<AutomationObject> startWorkbookServer(std::unique_ptr<WorkbookObserver> observer, unsigned threads) {
  return std::make_shared<Application>(Settings{std::move(observer), threads});
}

}  // namespace lvx::workbook

#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "framework/exceptions.h"
#include "host/sheet.h"

namespace lvx::test {

using framework::CString;

/// What happened to a sheet, in order. It outlives the sheet, which belongs to the driver.
///
///     auto record = std::make_shared<SheetRecord>();
///     host.setSheetFactory([record] { return std::make_unique<RecordingSheet>(record); });
///     writeReport(...);
///     EXPECT_EQ(record->texts.at(L"A1"), L"...");
///     EXPECT_EQ(record->finishedAs, L"out/road.xls");
struct SheetRecord {
  struct Write {
    CString cell;
    CString text;
    bool number = false;  ///< by writeNumberCell
    bool operator==(const Write&) const = default;
  };
  std::vector<Write> writes;
  /// The last text of each cell.
  std::map<CString, CString> texts;
  int starts = 0;
  std::optional<CString> finishedAs;
  /// Sheets destroyed without finish.
  int givenUp = 0;

  // What the test asks to fail.
  bool failStart = false;
  std::size_t failAtWrite = std::numeric_limits<std::size_t>::max();  ///< index in `writes` of the one that raises
  bool failFinish = false;
};

/// A sheet that keeps nothing but its record.
class RecordingSheet final : public host::Sheet {
 public:
  explicit RecordingSheet(std::shared_ptr<SheetRecord> record) : record_(std::move(record)) {}
  ~RecordingSheet() override {
    if (!finished_) ++record_->givenUp;
  }

  [[nodiscard]] bool start() override {
    ++record_->starts;
    return !record_->failStart;
  }
  void writeCell(const CString& cellName, const CString& text) override { write({cellName, text, false}); }
  void writeNumberCell(const CString& cellName, const CString& text) override { write({cellName, text, true}); }
  void finish(const CString& path) override {
    if (record_->failFinish) throw framework::AutomationException("recording sheet: told to fail at the end");
    record_->finishedAs = path;
    finished_ = true;
  }

 private:
  void write(SheetRecord::Write what) {
    if (record_->writes.size() == record_->failAtWrite)
      throw framework::AutomationException("recording sheet: told to fail at this cell");
    record_->texts[what.cell] = what.text;
    record_->writes.push_back(std::move(what));
  }

  std::shared_ptr<SheetRecord> record_;
  bool finished_ = false;
};

}  // namespace lvx::test

#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/automation.h"

namespace lvx::test {

using framework::CString;

/// What happened to a spreadsheet program, in order. It outlives the program's objects, which belong to the driver.
///
///     auto record = std::make_shared<ExcelRecord>();
///     host.setAutomationFactory(recordedBy(record));
///     writeReport(...);
///     EXPECT_EQ(record->texts.at(L"A1"), L"...");
///     EXPECT_EQ(record->finishedAs, L"out/road.xls");
struct ExcelRecord {
  // ---- what came to the sheet
  struct Write {
    CString cell;
    CString text;
    bool number = false;  ///< the range had got the format of three decimals
    bool operator==(const Write&) const = default;
  };
  std::vector<Write> writes;
  /// The last text of each cell.
  std::map<CString, CString> texts;
  /// The path of the saved workbook of a program that was told to quit.
  std::optional<CString> finishedAs;
  /// Programs whose references were all released without Quit.
  int givenUp = 0;

  // ---- call by call
  /// A line for the start, each call and each release:
  ///     start app
  ///     app.Workbooks -> books
  ///     books.Add(missing) -> book
  ///     range.Value = "text"
  ///     release range
  std::vector<std::string> calls;
  /// Objects that somebody holds.
  int liveObjects = 0;
  /// Told of each line of a call before the call does anything.
  std::function<void(const std::string& line)> onCall;

  // ---- what the test asks to fail
  static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
  bool failStart = false;
  std::size_t failAtCall = kNever;   ///< number of the automation call that raises, the first being 0
  std::size_t failAtWrite = kNever;  ///< index in `writes` of the one that raises
  bool failFinish = false;           ///< the saving raises

  std::size_t callCount = 0;
};

/// Starts programs that keep nothing but the record; no other program can be started. An operation that the program
/// hasn't got, an argument of another kind than the operation's, and any call after Quit throw std::logic_error, so that
/// the test fails there.
[[nodiscard]] std::function<host::Ref<host::AutomationObject>(const CString& programId)> recordedBy(
    std::shared_ptr<ExcelRecord> record);

}  // namespace lvx::test

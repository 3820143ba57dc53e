#pragma once

#include <memory>

#include "host/automation.h"
#include "workbook/workbook_server.h"

namespace lvx::runtime {

/// A spreadsheet program with an observer beside it: every call goes through to the program, in the module's order and
/// with its arguments, and the observer hears of cells and of the saving as it does from a workbook server.
///
/// The program is another process with a working folder of its own, so the path that it saves under is made a whole one.
/// A saving counts as such where a file stands there afterwards; what the program itself says of a failure is what the
/// observer hears and what goes on to the module.
[[nodiscard]] host::Ref<host::AutomationObject> observeSpreadsheet(
    host::Ref<host::AutomationObject> application, std::unique_ptr<workbook::WorkbookObserver> observer);

}  // namespace lvx::runtime

#pragma once

#include "framework/text.h"
#include "host/automation.h"

/// Other programs worked by the system's own automation. All of one thread, which has opened an AutomationScope.
///
///     const AutomationScope scope;
///     host::Ref<host::AutomationObject> app = createAutomationObject(L"Excel.Application");
///     if (app) app->call(host::excel::kApplicationQuit, {});
///
/// - Arguments cross in the reverse of their order and with the neutral locale. A text is a BSTR, an integer VT_I2, a
///   missing argument VT_ERROR with DISP_E_PARAMNOTFOUND.
/// - Of results an object, a text and an integer of 16 bits come back; whatever else there is comes back empty.
/// - A call that fails raises framework::AutomationException. Its words are the server's own where it gave some, else the
///   system's for the error, with the error's number behind them; UTF-8.
/// - Each object counts as one reference of the server's, given back when the last Ref goes.
/// - An argument that is an object has to come from here too.
namespace lvx::native {

using framework::CString;

/// Keeps the system's automation open on this thread for as long as it lives. A thread that has it open already, in
/// whatever mode, may open it again. Does nothing on a system without automation.
class AutomationScope {
 public:
  AutomationScope();
  AutomationScope(const AutomationScope&) = delete;
  AutomationScope& operator=(const AutomationScope&) = delete;
  ~AutomationScope();

 private:
  [[maybe_unused]] bool isOpen_ = false;  // where the system has no such programs, nobody asks
};

/// True where programs can be worked from outside on this system at all.
[[nodiscard]] bool hasAutomation();
/// True where a program of that identifier is registered; it may fail to start all the same.
[[nodiscard]] bool isAutomationProgram(const CString& programId);
/// Starts a program and gives its application object; empty where none of that identifier is registered, where it can't be
/// started, and where it isn't worked by dispatch identifiers. May take as long as the program needs to start.
[[nodiscard]] host::Ref<host::AutomationObject> createAutomationObject(const CString& programId);

}  // namespace lvx::native

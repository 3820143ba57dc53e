#pragma once

#include "framework/module_state.h"
#include "host/automation.h"
#include "host/roadway_model.h"
#include "host/run_time.h"
#include "host/user_interface.h"

namespace lvx::platform {
class Platform;
}

namespace lvx::host {

class DialogRunner;

/// What the automation look-up of a running application gives: whether it worked at all, and the object.
struct ActiveApplication {
  bool found = false;
  Ref<VantorApplication> application;
};

/// Everything that the module asks of the process that loaded it. One object per process, reached through vnrxHost();
/// it outlives every module.
class Host {
 public:
  Host() = default;
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  virtual ~Host() = default;

  [[nodiscard]] virtual RunTime& runTime() = 0;
  /// Not asked where the host has no windows.
  [[nodiscard]] virtual UserInterface& userInterface() = 0;
  [[nodiscard]] virtual DialogRunner& dialogs() = 0;
  [[nodiscard]] virtual platform::Platform& platform() = 0;
  [[nodiscard]] virtual framework::ModuleState& moduleState() = 0;
  /// Starts a program of that identifier for automation and gives its application object; empty where it can't be started.
  [[nodiscard]] virtual Ref<AutomationObject> createAutomationObject(const CString& programId) = 0;
  /// The running application of a program identifier.
  [[nodiscard]] virtual ActiveApplication activeApplication(const CString& programId) = 0;
  /// False where the host has neither boxes nor dialogs for a module: on a system with windows of its own the module
  /// brings them then, over the host's main window.
  [[nodiscard]] virtual bool hasWindows() const { return true; }
};

}  // namespace lvx::host

/// The one accessor that the loading process exports. Never null while a module is loaded.
extern "C" lvx::host::Host* vnrxHost();

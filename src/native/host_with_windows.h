#pragma once

#include "host/host.h"
#include "native/window_dialog.h"
#include "native/window_interface.h"

namespace lvx::native {

/// A host as its module sees it: where the host itself has no windows for what the module asks of the user
/// (host::Host::hasWindows()), dialogs, message boxes, the file box and help are those of the system, over the host's main
/// window. All else the host answers.
///
///     HostWithWindows seen(L"LVX_MirelReport");
///     host::Host* host = seen.over(processHost);     // processHost itself where it has windows
class HostWithWindows final : public host::Host {
 public:
  /// `title` is that of message boxes.
  explicit HostWithWindows(CString title) : interface_(*this, std::move(title)) {}

  /// Stands before `host` from here on where that has no windows of its own; null stays null. Free of cost: every look for
  /// the host may pass here.
  [[nodiscard]] host::Host* over(host::Host* host);

  [[nodiscard]] host::RunTime& runTime() override { return host_->runTime(); }
  [[nodiscard]] host::UserInterface& userInterface() override { return interface_; }
  [[nodiscard]] host::DialogRunner& dialogs() override { return dialogs_; }
  [[nodiscard]] platform::Platform& platform() override { return host_->platform(); }
  [[nodiscard]] framework::ModuleState& moduleState() override { return host_->moduleState(); }
  [[nodiscard]] host::Ref<host::AutomationObject> createAutomationObject(const CString& programId) override {
    return host_->createAutomationObject(programId);
  }
  [[nodiscard]] host::ActiveApplication activeApplication(const CString& programId) override {
    return host_->activeApplication(programId);
  }

 private:
  /// The host may get its main window, or another one, at any time, so it is asked for at each box.
  class Interface final : public host::UserInterface {
   public:
    Interface(HostWithWindows& owner, CString title) : owner_(owner), title_(std::move(title)) {}
    host::BoxAnswer messageBox(const CString& text, host::BoxButtons buttons, host::BoxIcon icon) override {
      return now().messageBox(text, buttons, icon);
    }
    [[nodiscard]] std::optional<CString> saveFileBox(const CString& filter, std::uint32_t flags) override {
      return now().saveFileBox(filter, flags);
    }
    void showHelp(const CString& topic) override { now().showHelp(topic); }
    [[nodiscard]] std::uint32_t buttonFaceColour() override { return now().buttonFaceColour(); }

   private:
    [[nodiscard]] WindowInterface now() const { return {owner_.runTime().vnsw_mainWnd(), title_}; }

    HostWithWindows& owner_;
    CString title_;
  };

  host::Host* host_ = nullptr;
  Interface interface_;
  WindowDialogs dialogs_;
};

}  // namespace lvx::native

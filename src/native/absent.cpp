#include <stdexcept>

#include "native/automation_client.h"
#include "native/window_dialog.h"
#include "native/window_interface.h"

// On a system without any of this every question is answered so.
namespace lvx::native {

AutomationScope::AutomationScope() = default;
AutomationScope::~AutomationScope() = default;

bool hasAutomation() { return false; }
bool isAutomationProgram(const CString&) { return false; }
host::Ref<host::AutomationObject> createAutomationObject(const CString&) { return nullptr; }

bool hasWindows() { return false; }

struct WindowDialog::Window {};

WindowDialog::WindowDialog(host::DialogBehaviour&, void*) {}
WindowDialog::~WindowDialog() = default;
void WindowDialog::open() { throw std::logic_error("this system has no windows for dialogs"); }
int WindowDialog::runModal() {
  open();
  return host::kIdCancel;
}
std::optional<int> WindowDialog::closedWith() const { return std::nullopt; }
CString WindowDialog::title() const { return {}; }
CString WindowDialog::tip(int) const { return {}; }
std::string_view WindowDialog::picture(int) const { return {}; }
void* WindowDialog::handle() const { return nullptr; }
void WindowDialog::userSelects(int, int) {}
void WindowDialog::userTypes(int, const CString&) {}
void WindowDialog::userTicks(int, bool) {}
void WindowDialog::userClicks(int) {}
void WindowDialog::userCloses() {}
void WindowDialog::userPresses(int) {}
void WindowDialog::settle() {}
void WindowDialog::setTitle(const CString&) {}
void WindowDialog::setText(int, const CString&) {}
CString WindowDialog::text(int) const { return {}; }
void WindowDialog::enable(int, bool) {}
bool WindowDialog::isEnabled(int) const { return false; }
void WindowDialog::emptyList(int) {}
void WindowDialog::insertRow(int, int, const CString&) {}
int WindowDialog::rowCount(int) const { return 0; }
CString WindowDialog::rowText(int, int) const { return {}; }
void WindowDialog::select(int, int) {}
int WindowDialog::selection(int) const { return kNone; }
void WindowDialog::tick(int, bool) {}
bool WindowDialog::isTicked(int) const { return false; }
void WindowDialog::setPicture(int, const host::PictureBits&) {}
void WindowDialog::setTip(int, const CString&) {}
void WindowDialog::end(int) {}

host::BoxAnswer WindowInterface::messageBox(const CString&, host::BoxButtons buttons, host::BoxIcon) {
  if (buttons == host::BoxButtons::YesNo) return host::BoxAnswer::No;
  return buttons == host::BoxButtons::Ok ? host::BoxAnswer::Ok : host::BoxAnswer::Cancel;
}
std::optional<CString> WindowInterface::saveFileBox(const CString&, std::uint32_t) { return std::nullopt; }
void WindowInterface::showHelp(const CString&) {}
std::uint32_t WindowInterface::buttonFaceColour() { return 0x00F0F0F0; }

}  // namespace lvx::native

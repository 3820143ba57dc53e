#include "script/window_opener.h"

#include <algorithm>

#include "native/window_dialog.h"

namespace lvx::script {

namespace {

using framework::CString;
using host::ControlKind;
using windowless::Control;
using windowless::Refusal;

/// A window with the rules of a dialog without one for what a user can do.
class WorkedWindow final : public windowless::WorkedDialog {
 public:
  explicit WorkedWindow(host::DialogBehaviour& behaviour)
      : made_(behaviour.dialogTemplate()), window_(behaviour, nullptr) {
    window_.open();
  }

  [[nodiscard]] CString title() const override { return window_.title(); }
  [[nodiscard]] std::vector<const Control*> controls() const override {
    read_.clear();
    read_.reserve(made_.controls.size());
    for (const host::ControlTemplate& made : made_.controls) read_.push_back(read(made));
    std::vector<const Control*> all;
    for (const Control& control : read_) all.push_back(&control);
    return all;
  }
  [[nodiscard]] std::optional<int> closedWith() const override { return window_.closedWith(); }

  Refusal userSelects(int id, int row) override {
    if (const Refusal refusal = refusalFor(id, {ControlKind::DropDownList}); refusal != Refusal::None) return refusal;
    if (row < 0 || row >= window_.rowCount(id)) return Refusal::NoSuchRow;
    window_.userSelects(id, row);
    return Refusal::None;
  }
  Refusal userSelects(int id, const CString& text) override {
    const host::ControlTemplate* made = made_.find(id);
    if (made == nullptr) return Refusal::NoSuchControl;
    int row = 0;
    while (row < window_.rowCount(id) && window_.rowText(id, row) != text) ++row;
    if (made->kind == ControlKind::DropDownList && row == window_.rowCount(id)) return Refusal::NoSuchRow;
    return userSelects(id, row);
  }
  Refusal userTypes(int id, const CString& text) override {
    if (const Refusal refusal = refusalFor(id, {ControlKind::EditBox}); refusal != Refusal::None) return refusal;
    window_.userTypes(id, text);
    return Refusal::None;
  }
  Refusal userTicks(int id, bool on) override {
    if (const Refusal refusal = refusalFor(id, {ControlKind::CheckBox}); refusal != Refusal::None) return refusal;
    window_.userTicks(id, on);
    return Refusal::None;
  }
  Refusal userClicks(int id) override {
    const std::initializer_list<ControlKind> buttons{ControlKind::PushButton, ControlKind::DefaultButton,
                                                     ControlKind::PictureButton};
    if (const Refusal refusal = refusalFor(id, buttons); refusal != Refusal::None) return refusal;
    window_.userClicks(id);
    return Refusal::None;
  }
  void userCloses() override { window_.userCloses(); }

 private:
  [[nodiscard]] Refusal refusalFor(int id, std::initializer_list<ControlKind> kinds) const {
    const host::ControlTemplate* made = made_.find(id);
    if (made == nullptr) return Refusal::NoSuchControl;
    if (std::find(kinds.begin(), kinds.end(), made->kind) == kinds.end()) return Refusal::WrongKind;
    return window_.isEnabled(id) ? Refusal::None : Refusal::Disabled;
  }

  [[nodiscard]] Control read(const host::ControlTemplate& made) const {
    Control control;
    control.made = &made;
    control.text = window_.text(made.id);
    control.enabled = window_.isEnabled(made.id);
    control.ticked = window_.isTicked(made.id);
    for (int row = 0; row < window_.rowCount(made.id); ++row) control.rows.push_back(window_.rowText(made.id, row));
    control.row = window_.selection(made.id);
    control.picture = window_.picture(made.id);
    control.tip = window_.tip(made.id);
    return control;
  }

  const host::DialogTemplate& made_;
  native::WindowDialog window_;
  mutable std::vector<Control> read_;
};

}  // namespace

bool canOpenWindows() { return native::hasWindows(); }

DialogOpener windowOpener() {
  return [](host::DialogBehaviour& behaviour) { return std::make_unique<WorkedWindow>(behaviour); };
}

}  // namespace lvx::script

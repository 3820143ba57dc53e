#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "host/dialog_window.h"
#include "host/picture_bits.h"
#include "windowless/worked_dialog.h"

namespace lvx::windowless {

/// The state of a dialog's controls and what a user can do to them, without a window: the scripted front end, the
/// command line and the tests work dialogs through it. It follows the rules of a real window: a disabled control takes
/// nothing, selecting a row raises the change event even where it was selected already, typing raises one event for the
/// new text.
class DialogState final : public host::DialogWindow, public WorkedDialog {
 public:
  using Control = windowless::Control;

  /// Opens `behaviour`: builds the controls from its template and lets it fill them.
  explicit DialogState(host::DialogBehaviour& behaviour);

  // ---- what the user sees
  [[nodiscard]] CString title() const override { return title_; }
  [[nodiscard]] const Control* find(int id) const;
  [[nodiscard]] std::vector<const Control*> controls() const override;
  [[nodiscard]] std::optional<int> closedWith() const override { return closedWith_; }

  // ---- what the user does
  Refusal userSelects(int id, int row) override;
  Refusal userSelects(int id, const CString& text) override;
  Refusal userTypes(int id, const CString& text) override;
  Refusal userTicks(int id, bool on) override;
  Refusal userClicks(int id) override;
  void userCloses() override;

  // ---- what the dialog does
  void setTitle(const CString& title) override { title_ = title; }
  void setText(int id, const CString& text) override;
  [[nodiscard]] CString text(int id) const override;
  void enable(int id, bool enabled) override;
  [[nodiscard]] bool isEnabled(int id) const override;
  void emptyList(int id) override;
  void insertRow(int id, int position, const CString& text) override;
  [[nodiscard]] int rowCount(int id) const override;
  [[nodiscard]] CString rowText(int id, int row) const override;
  void select(int id, int row) override;
  [[nodiscard]] int selection(int id) const override;
  void tick(int id, bool ticked) override;
  [[nodiscard]] bool isTicked(int id) const override;
  void setPicture(int id, const host::PictureBits& picture) override;
  void setTip(int id, const CString& text) override;
  void end(int code) override { closedWith_ = code; }

 private:
  [[nodiscard]] Control* mutableFind(int id);
  [[nodiscard]] Refusal refusalFor(const Control* control, bool kindFits) const;

  host::DialogBehaviour& behaviour_;
  CString title_;
  std::map<int, Control> controls_;
  std::optional<int> closedWith_;
  bool opening_ = true;
};

}  // namespace lvx::windowless

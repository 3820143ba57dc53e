#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "host/dialog_window.h"
#include "host/picture_bits.h"

namespace lvx::windowless {

using framework::CString;

/// Why a user can't do what was asked of a dialog.
enum class Refusal : std::uint8_t { None, NoSuchControl, WrongKind, Disabled, NoSuchRow };

/// The state of a dialog's controls and what a user can do to them, without a window: the scripted front end, the
/// command line and the tests work dialogs through it. It follows the rules of a real window: a disabled control takes
/// nothing, selecting a row raises the change event even where it was selected already, typing raises one event for the
/// new text.
class DialogState final : public host::DialogWindow {
 public:
  struct Control {
    const host::ControlTemplate* made = nullptr;
    CString text;
    bool enabled = true;
    bool ticked = false;
    std::vector<CString> rows;
    int row = kNone;
    std::string_view picture;
    CString tip;
  };

  /// Opens `behaviour`: builds the controls from its template and lets it fill them.
  explicit DialogState(host::DialogBehaviour& behaviour);

  // ---- what the user sees
  [[nodiscard]] const CString& title() const { return title_; }
  [[nodiscard]] const Control* find(int id) const;
  /// The controls in the template's order.
  [[nodiscard]] std::vector<const Control*> controls() const;
  /// The code with which the dialog closed, once it did.
  [[nodiscard]] std::optional<int> closedWith() const { return closedWith_; }

  // ---- what the user does; each answers why it couldn't be done
  Refusal userSelects(int id, int row);
  /// The first row of exactly that text.
  Refusal userSelects(int id, const CString& text);
  Refusal userTypes(int id, const CString& text);
  Refusal userTicks(int id, bool on);
  Refusal userClicks(int id);
  /// Escape or the close mark.
  void userCloses();

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

#pragma once

#include <QDialog>
#include <QPalette>
#include <QRect>
#include <cstdint>
#include <exception>
#include <map>
#include <optional>
#include <vector>

#include "host/dialog_window.h"

class QFont;
class QGroupBox;
class QShortcut;

namespace lvx::desktop {

/// Pixels of 4 dialog units across and of 8 down: the average width of the alphabet's letters in a font, not rounded, so
/// that a dialog has the same proportions at any scaling of the screen; and its height in whole pixels, so that a line of
/// text has room in a control of 8 units wherever that stands.
struct DialogBaseUnits {
  double width = 0.0;
  double height = 0.0;
};
[[nodiscard]] DialogBaseUnits dialogBaseUnits(const QFont& font);
/// Pixels of a rectangle; edges at the same dialog unit fall on the same pixel.
[[nodiscard]] QRect pixelsOf(const host::DialogUnits& rectangle, const DialogBaseUnits& units);
/// The dialog's font; "MS Shell Dlg" is whatever the desktop shows its windows in.
[[nodiscard]] QFont fontOf(const host::DialogTemplate& made);

/// The colour of dialogs under a palette, as modules ask for it: 0x00BBGGRR.
[[nodiscard]] std::uint32_t faceColour(const QPalette& palette);

/// The window of any dialog of a module, drawn from its template: it knows controls, not dialogs. Of a fixed size, with the
/// controls at their dialog units whatever the language; a caption that is too long ends in dots and shows whole in a tip.
/// It keeps to the rules of windowless::DialogState. One object is one opening.
///
///     TemplateDialog window(behaviour, parent);
///     int code = window.runModal();
///
/// Object names for whoever looks for a widget: the template's name for the window, "control" with the number behind it
/// for each control.
class TemplateDialog final : public QDialog, public host::DialogWindow {
  Q_OBJECT

 public:
  /// Builds the window with the template's texts. Modal to `parent`'s windows, or to all windows where that is null.
  explicit TemplateDialog(host::DialogBehaviour& behaviour, QWidget* parent = nullptr);

  /// Lets the behaviour fill the window, shows it and gives the code with which it closed. Rethrows what the behaviour
  /// raised in any of its events, after the window closed: nothing ever passes through the event loop. Ends without showing
  /// anything while modal windows are refused.
  int runModal();

  // ---- what the behaviour does
  void setTitle(const host::CString& title) override;
  void setText(int id, const host::CString& text) override;
  [[nodiscard]] host::CString text(int id) const override;
  void enable(int id, bool enabled) override;
  [[nodiscard]] bool isEnabled(int id) const override;
  void emptyList(int id) override;
  void insertRow(int id, int position, const host::CString& text) override;
  [[nodiscard]] int rowCount(int id) const override;
  [[nodiscard]] host::CString rowText(int id, int row) const override;
  void select(int id, int row) override;
  [[nodiscard]] int selection(int id) const override;
  void tick(int id, bool ticked) override;
  [[nodiscard]] bool isTicked(int id) const override;
  void setPicture(int id, const host::PictureBits& picture) override;
  void setTip(int id, const host::CString& text) override;
  void end(int code) override;

  using QDialog::isEnabled;

  /// Escape, the close mark, and the program's end: all arrive at the behaviour as Cancel.
  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Control {
    const host::ControlTemplate* made = nullptr;
    QWidget* widget = nullptr;
    /// As the behaviour set it; the widget may show less. An edit box holds its own.
    host::CString text;
    bool isCut = false;
    QShortcut* accessKey = nullptr;
  };

  [[nodiscard]] const Control* find(int id) const;
  [[nodiscard]] Control* find(int id);
  /// The widget where the control is of that kind, else null.
  template <class Widget>
  [[nodiscard]] Widget* widgetOf(int id) const;

  [[nodiscard]] QWidget* makeWidget(const host::ControlTemplate& made);
  void showCaption(Control& control);
  void setAccessKey(Control& control, const QString& caption);
  /// Hands the focus to the control that stands next behind `control` and takes it.
  void focusBehind(const QWidget* control);
  void focusFirst();
  /// Tells screen readers what a list, a box or a picture button is for: the label of its row, else its group.
  void nameControls();
  /// Puts labels of one line at the height of the texts that they stand before.
  void alignLabels();
  /// The label in the row of a control, left of it; null where there is none.
  [[nodiscard]] const Control* labelOf(const Control& field) const;
  [[nodiscard]] QString tipFor(const Control& control) const;

  /// Answers an event of the user's; afterwards, where the dialog is over, the window closes.
  template <class Event>
  void dispatch(Event event);
  /// Keeps what the event raises for runModal().
  template <class Event>
  void runEvent(Event event);
  /// Cancel, and the end whatever the behaviour makes of it.
  void cancelForGood();
  void closeWhenOver();
  [[nodiscard]] bool isOver() const { return closedWith_.has_value() || failure_ != nullptr; }

  host::DialogBehaviour& behaviour_;
  DialogBaseUnits units_;
  std::vector<Control> controls_;      // in the template's order
  std::map<int, std::size_t> places_;  // of the numbers, in controls_
  std::optional<int> closedWith_;
  std::exception_ptr failure_;
  bool opening_ = true;
  int runningEvents_ = 0;
};

}  // namespace lvx::desktop

#pragma once

#include <cstdint>
#include <string_view>

#include "framework/text.h"
#include "host/dialog_controls.h"
#include "host/dialog_template.h"

namespace lvx::host {

using framework::CString;

struct PictureBits;

/// The window of an open dialog, as its behaviour sees it: numbered controls that can be read and changed. Front ends:
/// the scripted one of the command line, the desktop's, a recording double in tests.
///
/// A number that the template doesn't have is ignored on writing and reads as empty. Changes made through this
/// interface raise no events but one: setText on an edit box tells the behaviour that its text changed, as if the user
/// had typed. While the dialog opens not even that.
class DialogWindow {
 public:
  /// What a drop-down list's `selection` is where nothing is selected.
  static constexpr int kNone = -1;

  DialogWindow() = default;
  DialogWindow(const DialogWindow&) = delete;
  DialogWindow& operator=(const DialogWindow&) = delete;
  virtual ~DialogWindow() = default;

  virtual void setTitle(const CString& title) = 0;
  /// Caption of a button, label, group or check box; content of an edit box.
  virtual void setText(int id, const CString& text) = 0;
  [[nodiscard]] virtual CString text(int id) const = 0;
  virtual void enable(int id, bool enabled) = 0;
  [[nodiscard]] virtual bool isEnabled(int id) const = 0;

  // ---- drop-down lists
  virtual void emptyList(int id) = 0;
  /// Inserts at `position`, from 0 to the number of rows.
  virtual void insertRow(int id, int position, const CString& text) = 0;
  [[nodiscard]] virtual int rowCount(int id) const = 0;
  /// Raises framework::InvalidArgumentException for a row that isn't there.
  [[nodiscard]] virtual CString rowText(int id, int row) const = 0;
  /// A row that isn't there takes the selection away.
  virtual void select(int id, int row) = 0;
  [[nodiscard]] virtual int selection(int id) const = 0;

  // ---- check boxes
  virtual void tick(int id, bool ticked) = 0;
  [[nodiscard]] virtual bool isTicked(int id) const = 0;

  // ---- pictures and tips
  /// Puts a picture on a button or static control; the bits are copied.
  virtual void setPicture(int id, const PictureBits& picture) = 0;
  /// The tip that shows while the mouse rests on a control.
  virtual void setTip(int id, const CString& text) = 0;

  /// Closes the dialog with a code, once the running event is over.
  virtual void end(int code) = 0;
};

/// What a dialog does: it fills its window when that opens and answers what the user does in it. Free of any toolkit.
/// An exception from any of these closes the window and leaves DialogRunner::runModal.
class DialogBehaviour {
 public:
  DialogBehaviour() = default;
  DialogBehaviour(const DialogBehaviour&) = delete;
  DialogBehaviour& operator=(const DialogBehaviour&) = delete;
  virtual ~DialogBehaviour() = default;

  [[nodiscard]] virtual const DialogTemplate& dialogTemplate() const = 0;
  /// The window stands, with the template's texts; nothing of an earlier opening is left in it.
  virtual void onOpening(DialogWindow& window) = 0;
  /// A button. Cancel, Escape and the close mark arrive as kIdCancel.
  virtual void onClick(DialogWindow& window, int id) = 0;
  virtual void onSelectionChanged(DialogWindow& window, int id) = 0;
  virtual void onTextChanged(DialogWindow& window, int id) = 0;
};

/// Runs dialogs; the front end of the host.
class DialogRunner {
 public:
  DialogRunner() = default;
  DialogRunner(const DialogRunner&) = delete;
  DialogRunner& operator=(const DialogRunner&) = delete;
  virtual ~DialogRunner() = default;

  /// Opens a window for `dialog` over `parent` (the host's main window) and gives the code with which it closed.
  virtual int runModal(DialogBehaviour& dialog, void* parent) = 0;
};

}  // namespace lvx::host

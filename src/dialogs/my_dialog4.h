#pragma once

#include "dialogs/dialog_window.h"

namespace lvx::host {
class Host;
}

namespace lvx::dialogs {

/// The small question that the GLS report asks before it adds sections to the drawing. Closes with 1 for yes and 2 for
/// no; 6 and 7 close it too, should a front end send them.
class CMyDialog4 final : public DialogBehaviour {
 public:
  explicit CMyDialog4(host::Host& host) : host_(host) {}

  [[nodiscard]] const DialogTemplate& dialogTemplate() const override;
  void onOpening(DialogWindow& window) override;
  void onClick(DialogWindow& window, int id) override;
  void onSelectionChanged(DialogWindow&, int) override {}
  void onTextChanged(DialogWindow&, int) override {}

  static constexpr int kIdStatic = -1;

 private:
  host::Host& host_;
};

}  // namespace lvx::dialogs

#pragma once

#include "host/dialog_window.h"

namespace lvx::host {
class Host;
}

namespace lvx::gls {

/// The small question that the GLS report asks before it adds sections to the drawing. Closes with 1 for yes and 2 for
/// no; 6 and 7 close it too, should a front end send them.
class CMyDialog4 final : public host::DialogBehaviour {
 public:
  explicit CMyDialog4(host::Host& host) : host_(host) {}

  [[nodiscard]] const host::DialogTemplate& dialogTemplate() const override;
  void onOpening(host::DialogWindow& window) override;
  void onClick(host::DialogWindow& window, int id) override;
  void onSelectionChanged(host::DialogWindow&, int) override {}
  void onTextChanged(host::DialogWindow&, int) override {}

 private:
  host::Host& host_;
};

}  // namespace lvx::gls

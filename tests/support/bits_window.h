#pragma once

#include <map>

#include "host/dialog_window.h"
#include "host/picture_bits.h"

namespace lvx::host {

/// Keeps the bits that reach a window.
class BitsWindow final : public DialogWindow {
 public:
  std::map<int, PictureBits> pictures;
  void setPicture(int id, const PictureBits& picture) override { pictures[id] = picture; }
  void setTitle(const CString&) override {}
  void setText(int, const CString&) override {}
  [[nodiscard]] CString text(int) const override { return {}; }
  void enable(int, bool) override {}
  [[nodiscard]] bool isEnabled(int) const override { return false; }
  void emptyList(int) override {}
  void insertRow(int, int, const CString&) override {}
  [[nodiscard]] int rowCount(int) const override { return 0; }
  [[nodiscard]] CString rowText(int, int) const override { return {}; }
  void select(int, int) override {}
  [[nodiscard]] int selection(int) const override { return kNone; }
  void tick(int, bool) override {}
  [[nodiscard]] bool isTicked(int) const override { return false; }
  void setTip(int, const CString&) override {}
  void end(int) override {}
};

}  // namespace lvx::host

#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "civil/drawing.h"

namespace lvx::view {

/// Which objects of a drawing aren't shown in plan: those that are drawn, of groups the members.
class Visibility {
 public:
  /// O(log hidden).
  [[nodiscard]] bool isHidden(civil::Handle handle) const;
  [[nodiscard]] bool hidesAny() const { return !hidden_.empty(); }
  /// Ascending.
  [[nodiscard]] const std::vector<civil::Handle>& hidden() const { return hidden_; }

  /// Both O(hidden + n log n) for n handles in any order, twice or not; false: nothing changed.
  bool hide(std::span<const civil::Handle> handles);
  bool show(std::span<const civil::Handle> handles);
  bool showAll();

 private:
  std::vector<civil::Handle> hidden_;
};

/// Of several objects together.
enum class Shown : std::uint8_t { None, Some, All };

/// O(n log hidden); of no objects: All.
[[nodiscard]] Shown shownOf(const Visibility& visibility, std::span<const civil::Handle> handles);

}  // namespace lvx::view

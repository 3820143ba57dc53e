#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "civil/drawing.h"

namespace lvx::desktop {

/// What a user has selected so far, in the order of adding; what is removed and added again goes to the end.
class PlanSelection {
 public:
  /// What is selected already keeps its place.
  void add(std::span<const civil::Handle> handles);
  void remove(std::span<const civil::Handle> handles);
  void clear();
  [[nodiscard]] bool has(civil::Handle handle) const { return places_.contains(handle); }
  [[nodiscard]] std::size_t size() const { return places_.size(); }
  [[nodiscard]] std::vector<civil::Handle> handles() const;

 private:
  // Slots in the order of adding, 0 where something was removed; so that windows over a million points stay cheap.
  std::vector<civil::Handle> slots_;
  std::unordered_map<civil::Handle, std::size_t> places_;
};

}  // namespace lvx::desktop

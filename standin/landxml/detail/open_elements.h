#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "landxml/detail/input.h"

namespace lvx::landxml::detail {

/// The elements that are open at a place of the document, outermost first, with their names in one text.
class OpenElements {
 public:
  enum class Role : std::uint8_t { Other, Surface, Definition };

  [[nodiscard]] bool isEmpty() const { return open_.empty(); }
  [[nodiscard]] std::size_t depth() const { return open_.size(); }
  /// Of the innermost one; not where none is open. The name is valid until the next push or pop.
  [[nodiscard]] std::string_view name() const { return std::string_view(names_).substr(open_.back().nameStart); }
  /// `Other` where none is open.
  [[nodiscard]] Role role() const { return open_.empty() ? Role::Other : open_.back().role; }
  /// The number that was given with it.
  [[nodiscard]] std::size_t span() const { return open_.back().span; }

  /// Throws ReadError at the 201st level; `in` tells the place. `span` counts from 1; 0 for none.
  void push(std::string_view name, Input& in, Role role = Role::Other, std::size_t span = 0) {
    if (open_.size() >= kDeepest) {
      fail("elements are nested deeper than " + std::to_string(kDeepest) + " levels", in.file(), in.line());
    }
    open_.push_back({names_.size(), role, span});
    names_ += name;
  }
  void pop() {
    names_.resize(open_.back().nameStart);
    open_.pop_back();
  }

 private:
  static constexpr std::size_t kDeepest = 200;
  struct Open {
    std::size_t nameStart = 0;  // in names_
    Role role = Role::Other;
    std::size_t span = 0;
  };
  std::string names_;
  std::vector<Open> open_;
};

}  // namespace lvx::landxml::detail

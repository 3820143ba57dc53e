#pragma once

#include <cstddef>
#include <unordered_map>
#include <unordered_set>

#include "landxml/detail/document.h"
#include "landxml/detail/trace.h"

namespace lvx::landxml::detail {

/// Where the objects of a file stand in it, and which of them have their handles there, or will have.
class ObjectPlaces {
 public:
  /// `trace` outlives it.
  explicit ObjectPlaces(const Trace& trace);

  [[nodiscard]] Node nodeOf(civil::Handle handle) const;
  /// 0 where no object stands there.
  [[nodiscard]] civil::Handle handleOf(Node node) const;
  /// Whether the file holds the handle, or will.
  [[nodiscard]] bool isGiven(civil::Handle handle) const { return given_.count(handle) > 0; }
  void setGiven(civil::Handle handle) { given_.insert(handle); }
  /// Takes note that an element goes, with all in it: nothing may be written there any more.
  void setRemoved(Node node) { removed_.insert(node.place()); }
  [[nodiscard]] bool isRemoved(Node node) const;

 private:
  std::unordered_map<civil::Handle, Node> nodes_;
  std::unordered_map<std::ptrdiff_t, civil::Handle> handles_;
  std::unordered_set<civil::Handle> given_;
  std::unordered_set<std::ptrdiff_t> removed_;
};

}  // namespace lvx::landxml::detail

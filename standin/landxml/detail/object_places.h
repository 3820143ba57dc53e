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

  [[nodiscard]] pugi::xml_node nodeOf(civil::Handle handle) const;
  /// 0 where no object stands there.
  [[nodiscard]] civil::Handle handleOf(pugi::xml_node node) const;
  /// Whether the file holds the handle, or will.
  [[nodiscard]] bool isGiven(civil::Handle handle) const { return given_.count(handle) > 0; }
  void setGiven(civil::Handle handle) { given_.insert(handle); }
  /// Takes note that an element goes, with all in it: nothing may be written there any more.
  void setRemoved(pugi::xml_node node) { removed_.insert(node.offset_debug()); }
  [[nodiscard]] bool isRemoved(pugi::xml_node node) const;

 private:
  std::unordered_map<civil::Handle, pugi::xml_node> nodes_;
  std::unordered_map<std::ptrdiff_t, civil::Handle> handles_;
  std::unordered_set<civil::Handle> given_;
  std::unordered_set<std::ptrdiff_t> removed_;
};

}  // namespace lvx::landxml::detail

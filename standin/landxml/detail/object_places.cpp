#include "landxml/detail/object_places.h"

namespace lvx::landxml::detail {

ObjectPlaces::ObjectPlaces(const Trace& trace) {
  for (const ObjectTrace& object : trace.objects) {
    nodes_.emplace(object.handle, object.node);
    handles_.emplace(object.node.offset_debug(), object.handle);
    if (object.isGiven) given_.insert(object.handle);
  }
}

pugi::xml_node ObjectPlaces::nodeOf(civil::Handle handle) const {
  const auto found = nodes_.find(handle);
  return found == nodes_.end() ? pugi::xml_node() : found->second;
}

civil::Handle ObjectPlaces::handleOf(pugi::xml_node node) const {
  const auto found = handles_.find(node.offset_debug());
  return found == handles_.end() ? 0 : found->second;
}

bool ObjectPlaces::isRemoved(pugi::xml_node node) const {
  if (removed_.empty()) return false;
  for (; node; node = node.parent()) {
    if (removed_.count(node.offset_debug()) > 0) return true;
  }
  return false;
}

}  // namespace lvx::landxml::detail

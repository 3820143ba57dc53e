#include "landxml/detail/object_places.h"

namespace lvx::landxml::detail {

ObjectPlaces::ObjectPlaces(const Trace& trace) {
  for (const ObjectTrace& object : trace.objects) {
    nodes_.emplace(object.handle, object.node);
    handles_.emplace(object.node.place(), object.handle);
    if (object.isGiven) given_.insert(object.handle);
  }
}

Node ObjectPlaces::nodeOf(civil::Handle handle) const {
  const auto found = nodes_.find(handle);
  return found == nodes_.end() ? Node() : found->second;
}

civil::Handle ObjectPlaces::handleOf(Node node) const {
  const auto found = handles_.find(node.place());
  return found == handles_.end() ? 0 : found->second;
}

bool ObjectPlaces::isRemoved(Node node) const {
  if (removed_.empty()) return false;
  for (; node; node = node.parent()) {
    if (removed_.count(node.place()) > 0) return true;
  }
  return false;
}

}  // namespace lvx::landxml::detail

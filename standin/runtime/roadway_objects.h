#pragma once

#include <memory>

#include "host/roadway_model.h"
#include "runtime/open_drawing.h"

/// The roadway side of the object model: the application as its automation look-up gives it, and the corridors of the
/// drawing that is open in it.
///
///     auto roadway = std::dynamic_pointer_cast<host::QmtRoadwayApplication>(
///         makeApplication(active)->interfaceObject(host::kRoadwayProgramId));
///     roadway->activeDocument()->corridors()->item(0)->rebuild();
namespace lvx::runtime {

/// The drawing that is open in the host, changed by the host as it opens and closes one.
struct ActiveDrawing {
  std::weak_ptr<OpenDrawing> drawing;
};

/// The application. It and what it hands out up to the roadway document hold no drawing, since modules keep them for as
/// long as they are loaded: a document whose drawing was closed has no corridors.
[[nodiscard]] host::Ref<host::VantorApplication> makeApplication(std::shared_ptr<const ActiveDrawing> active);

}  // namespace lvx::runtime

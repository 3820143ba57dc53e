#pragma once

#include "framework/text.h"
#include "host/model.h"

namespace lvx::host {

class Host;
class QmtRoadwayApplication;
class QmtRoadwayDocument;

/// Reaches the corridor side of the model through the host's automation interface and keeps application and document
/// for the whole module, which so stay referenced as long as it is loaded. 1 on success; otherwise 0 after a box with
/// the stop icon: `errorText` with " (3)" where the host's application isn't found, " (2)" where it gives nothing, "
/// (1)" where it has no roadway application.
int connectRoadway(Host& host, const CString& errorText);

/// Gives both references up: 0 where there was no connection, else 1. Unloading the module does it.
int disconnectRoadway();

/// The connected document, or an empty reference.
[[nodiscard]] Ref<QmtRoadwayDocument> roadwayDocument();

}  // namespace lvx::host

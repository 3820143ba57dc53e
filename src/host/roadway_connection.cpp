#include "host/roadway_connection.h"

#include "host/host.h"

namespace lvx::host {

namespace {

constexpr std::int16_t kAutomationTrue = -1;

struct Connection {
  Ref<QmtRoadwayApplication> application;
  Ref<QmtRoadwayDocument> document;
};

/// Built when first asked for, so that whoever gives it up at unload can see to it that it is built first and destroyed
/// last.
Connection& connection() {
  static Connection one;
  return one;
}

int failed(Host& host, const CString& errorText, const wchar_t* step) {
  host.userInterface().messageBox(errorText + step, BoxButtons::Ok, BoxIcon::Stop);
  return 0;
}

}  // namespace

int connectRoadway(Host& host, const CString& errorText) {
  const ActiveApplication active = host.activeApplication(kApplicationProgramId);
  if (!active.found) return failed(host, errorText, L" (3)");
  if (!active.application) return failed(host, errorText, L" (2)");
  active.application->setFlag(kAutomationTrue);
  auto roadway =
      std::dynamic_pointer_cast<QmtRoadwayApplication>(active.application->interfaceObject(kRoadwayProgramId));
  if (!roadway) return failed(host, errorText, L" (1)");
  connection().application = std::move(roadway);
  connection().document = connection().application->activeDocument();
  return 1;
}

int disconnectRoadway() {
  if (!connection().application) return 0;
  connection().document.reset();
  connection().application.reset();
  return 1;
}

Ref<QmtRoadwayDocument> roadwayDocument() { return connection().document; }

}  // namespace lvx::host

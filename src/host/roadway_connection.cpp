#include "host/roadway_connection.h"

#include "host/host.h"

namespace lvx::host {

namespace {

constexpr const wchar_t* kApplicationId = L"Vantor.Application.24";
constexpr const wchar_t* kRoadwayId = L"QmtXUiRoadway.QmtRoadwayApplication.13.6";
constexpr std::int16_t kAutomationTrue = -1;

Ref<QmtRoadwayApplication> roadwayApplicationReference;
Ref<QmtRoadwayDocument> roadwayDocumentReference;

int failed(Host& host, const CString& errorText, const wchar_t* step) {
  host.userInterface().messageBox(errorText + step, BoxButtons::Ok, BoxIcon::Stop);
  return 0;
}

}  // namespace

int connectRoadway(Host& host, const CString& errorText) {
  const ActiveApplication active = host.activeApplication(kApplicationId);
  if (!active.found) return failed(host, errorText, L" (3)");
  if (!active.application) return failed(host, errorText, L" (2)");
  active.application->setFlag(kAutomationTrue);
  auto roadway = std::dynamic_pointer_cast<QmtRoadwayApplication>(active.application->interfaceObject(kRoadwayId));
  if (!roadway) return failed(host, errorText, L" (1)");
  roadwayApplicationReference = std::move(roadway);
  roadwayDocumentReference = roadwayApplicationReference->activeDocument();
  return 1;
}

int disconnectRoadway() {
  if (!roadwayApplicationReference) return 0;
  roadwayDocumentReference.reset();
  roadwayApplicationReference.reset();
  return 1;
}

Ref<QmtRoadwayDocument> roadwayDocument() { return roadwayDocumentReference; }

}  // namespace lvx::host

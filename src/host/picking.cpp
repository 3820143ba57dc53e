#include "host/picking.h"

#include "host/host.h"
#include "host/site_tree.h"

namespace lvx::host {

DocumentLock::DocumentLock(Host& host) : host_(host) {
  VnApDocManager* manager = host.runTime().vnDocManagerPtr();
  if (manager == nullptr) return;
  document_ = manager->currentDocument();
  if (document_ != nullptr) manager->lockDocument(document_, kLockForPick, nullptr, nullptr, true);
}

DocumentLock::~DocumentLock() {
  if (document_ == nullptr) return;
  if (VnApDocManager* manager = host_.runTime().vnDocManagerPtr()) manager->unlockDocument(document_);
}

void pickEntity(Host& host, const EntityPick& pick, const std::function<void(const CString& handle)>& picked) {
  RunTime& runTime = host.runTime();
  const DocumentLock lock(host);
  if (!lock) return;
  for (;;) {
    runTime.vnutPrintf(L"\n");
    EntityName entity;
    PickPoint point;
    if (runTime.vnedEntSel(pick.prompt, entity, point) != kNormal) return;
    VnDbObjectId id;
    if (runTime.vndbGetObjectId(id, entity) != kSuccess) continue;
    VnDbObject* object = nullptr;
    if (runTime.vndbOpenObject(object, id, 0, false) != kSuccess) continue;
    const CString classTag = object->isA()->classTag();
    object->close();
    if (classTag != pick.wantedClass) {
      host.userInterface().messageBox(pick.wrongClassText, BoxButtons::Ok, BoxIcon::Stop);
      continue;
    }
    picked(handleText(host, id));
    return;
  }
}

}  // namespace lvx::host

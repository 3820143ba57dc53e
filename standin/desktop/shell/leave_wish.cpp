#include "desktop/shell/leave_wish.h"

namespace lvx::desktop {

void LeaveWish::follow() {
  if (isThere_) QMetaObject::invokeMethod(this, &LeaveWish::due, Qt::QueuedConnection);
}

}  // namespace lvx::desktop

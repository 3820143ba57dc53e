#include "standin_platform/detail/quiet_thread.h"

#include <utility>

namespace lvx::standin_platform::detail {

// Ctrl-C comes on a thread that the system makes for it.
std::thread startQuietThread(std::function<void()> work) { return std::thread(std::move(work)); }

}  // namespace lvx::standin_platform::detail

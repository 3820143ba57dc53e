#include "native/host_with_windows.h"

namespace lvx::native {

host::Host* HostWithWindows::over(host::Host* host) {
  host_ = host;
  return host == nullptr || host->hasWindows() ? host : this;
}

}  // namespace lvx::native

#include "runtime/host_accessor.h"

#include <utility>

namespace lvx::runtime {

namespace {
host::Host* currentHost = nullptr;
}

host::Host* setCurrentHost(host::Host* host) noexcept { return std::exchange(currentHost, host); }

}  // namespace lvx::runtime

extern "C" __attribute__((visibility("default"))) lvx::host::Host* vnrxHost() { return lvx::runtime::currentHost; }

#include "accessor/host_accessor.h"

#include <utility>

namespace lvx::accessor {

namespace {
host::Host* currentHost = nullptr;
}

host::Host* setCurrentHost(host::Host* host) noexcept { return std::exchange(currentHost, host); }

}  // namespace lvx::accessor

extern "C" __attribute__((visibility("default"))) lvx::host::Host* vnrxHost() { return lvx::accessor::currentHost; }

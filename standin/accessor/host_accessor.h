#pragma once

#include "host/host.h"

namespace lvx::accessor {

/// Puts `host` behind vnrxHost() and gives the one that stood there before; null takes it away.
host::Host* setCurrentHost(host::Host* host) noexcept;

}  // namespace lvx::accessor

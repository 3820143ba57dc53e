#pragma once

#include <memory>

#include "options/options.h"
#include "runtime/standin_host.h"

namespace lvx::cli {

/// The host that the options and SOURCE_DATE_EPOCH ask for; `inputs` are what the command reads beside them. Throws
/// Failure (kUsage) for an unknown code page, a message file that isn't there and an epoch that is no number of seconds.
[[nodiscard]] std::unique_ptr<runtime::StandinHost> makeHost(runtime::FrontEnd& frontEnd,
                                                             const options::CommonOptions& options,
                                                             const runtime::InputFiles& inputs = {});

}  // namespace lvx::cli

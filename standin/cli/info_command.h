#pragma once

#include <string>

#include "civil/drawing.h"
#include "cli/exit_codes.h"
#include "cli/options.h"

namespace lvx::cli {

/// What a drawing holds, for people.
[[nodiscard]] std::string infoText(const civil::Drawing& drawing);
/// The same for programs; members are only ever added.
[[nodiscard]] std::string infoJson(const civil::Drawing& drawing);

[[nodiscard]] ExitCode runInfo(const CommonOptions& common, const InfoOptions& options);

}  // namespace lvx::cli

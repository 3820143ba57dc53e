#pragma once

#include <string>

#include "civil/drawing.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// What a drawing holds, for people.
[[nodiscard]] std::string infoText(const civil::Drawing& drawing);
/// The same for programs; members are only ever added.
[[nodiscard]] std::string infoJson(const civil::Drawing& drawing);

[[nodiscard]] options::ExitCode runInfo(const options::Options& options);

}  // namespace lvx::cli

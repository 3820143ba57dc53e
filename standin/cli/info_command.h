#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "civil/drawing.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// Says what a drawing holds, for people: piece by piece, since of a large drawing that is a long text.
void tellInfo(const civil::Drawing& drawing, const std::function<void(std::string_view)>& tell);
/// The same for programs, into the answer of the command.
void answerInfo(const civil::Drawing& drawing);

[[nodiscard]] options::ExitCode runInfo(const options::Options& options);

}  // namespace lvx::cli

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// All profiles of an alignment in the order of the file: ProfAlign as design, ProfSurf as ground.
[[nodiscard]] std::vector<civil::ProfileObject> readProfiles(Context& context, Node alignment,
                                                             const std::string& speaker);

}  // namespace lvx::landxml::detail

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// All profiles of an alignment in the order of the file: ProfAlign as design, ProfSurf as ground. With each the handle
/// that the file gives it, by which other objects refer to it.
struct ReadProfiles {
  std::vector<civil::ProfileObject> profiles;
  std::vector<std::optional<civil::Handle>> givenHandles;
};
[[nodiscard]] ReadProfiles readProfiles(Context& context, Node alignment, const std::string& speaker);

}  // namespace lvx::landxml::detail

#pragma once

#include <optional>
#include <string_view>

#include "civil/drawing.h"

namespace lvx::runtime {

/// The first object of a class ("QMT_ALIGNMENT") and a name, in the drawing's order: alignments outside any site first.
[[nodiscard]] std::optional<civil::Handle> findByName(const civil::Drawing& drawing, std::string_view classTag,
                                                      std::string_view name);
/// The first point of a number.
[[nodiscard]] std::optional<civil::Handle> findPoint(const civil::Drawing& drawing, std::int32_t number);

}  // namespace lvx::runtime

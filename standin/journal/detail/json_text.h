#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "journal/journal.h"

/// Members that journal and summary have in common.
namespace lvx::journal::detail {

using Json = nlohmann::ordered_json;

/// "line" to "diagnostics".
[[nodiscard]] Json jobJson(const JobRecord& record);
/// Throws nlohmann::json::exception where a member is missing or of another kind.
[[nodiscard]] JobRecord jobOf(const Json& json);

/// Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string textOf(const Json& json, int indent);

/// To the millisecond.
[[nodiscard]] double roundedSeconds(double seconds);

}  // namespace lvx::journal::detail

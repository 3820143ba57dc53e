#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "properties/table.h"

namespace lvx::properties {

/// A text report as the table that it is.
struct ReportTable {
  /// As the report has them; empty for the profile projection, which has none and whose columns have terms.
  std::vector<std::string> headings;
  Table table;
};

/// The rows of a text report: of the points report its lines by the widths of their heads; of the GLS report what stands
/// between its bars, those with a distance too; of the profile projection a row for each point, with the name and the
/// station of its sample line in front. Columns of numbers and of stations are such, so that they sort; a word in one of
/// them ("n/a") stays a word. `text` is UTF-8, lines end with LF or CR LF.
///
/// Where a text is wider than its column and pushes the others to the right, what stands before it and behind it keeps its
/// columns and the rest stands in the first of those between. Empty for any other text. O(n), about twice the text in
/// memory.
[[nodiscard]] std::optional<ReportTable> reportTableOf(std::string_view text);

}  // namespace lvx::properties

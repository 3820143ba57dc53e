#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "doubles/fake_host.h"
#include "gls/gls_records.h"

namespace lvx::gls {

/// 2026-03-12 07:08:09 UTC: every field of the header but the year begins with a nought.
inline constexpr std::int64_t kGoldenMoment = 1773299289;

/// A golden case as its `case.json` has it. All cases share
///
///     { "about": "what it shows",
///       "release": "R24.3",                                     default
///       "messages": "en" | {"301": "GLS", ...} }                a language of the tree, or texts; absent: no file
///
/// and each names either the rows of its report (fillReport) or the drawing that it comes from.
class GoldenCase {
 public:
  /// Reads tests/golden/gls/<name>/case.json; throws what the JSON reader throws.
  explicit GoldenCase(std::string name);

  [[nodiscard]] const nlohmann::json& content() const { return content_; }
  [[nodiscard]] CString release() const;
  void useMessages(test::FakeHost& host) const;
  /// The name of one of its files for test::matchesGolden.
  [[nodiscard]] std::string file(const std::string& name) const { return "gls/" + name_ + "/" + name; }

 private:
  std::string name_;
  nlohmann::json content_;
};

/// Fills an empty report with the rows of a case:
///
///     "rows": [{"name": "BC1", "station": 20, "curve": [0, 0], "tangent": 10, "profile": 10, "notes": "Rise 1.00%",
///               "section": [-2.5, -2.5, 3, 3, -0.1, -0.1, 9.9, 9.9], "element": [1, 300, 80, 16.977]},
///              {"distance": 20}],                   a row with a distance is a distance row
///     "elementEnds": [2],                           rows that close a horizontal element
///     "intersections": [2]                          rows of intersection points
///
/// Without "curve" a row lies outside the vertical curves, without "section" no corridor reaches it (its values stand in
/// the order of the columns), without "element" it shows none.
void fillReport(const nlohmann::json& whole, tglsReport& report);

[[nodiscard]] CString wideText(const nlohmann::json& text);

}  // namespace lvx::gls

#pragma once

#include <array>

#include "gls/gls_records.h"

namespace lvx::gls::detail {

/// The words in the table's cells, looked up once for a report and not once for a cell.
class CellWords {
 public:
  CellWords();
  /// Stands in place of a number where no corridor reaches the row.
  [[nodiscard]] const CString& noCorridor() const { return noCorridor_; }
  /// The word for a tglsRow::horType; empty where there is none.
  [[nodiscard]] const CString& element(std::int32_t horType) const;

 private:
  CString noCorridor_;
  CString none_;
  std::array<CString, 4> elements_;
};

/// Whether the row shows a horizontal element at all, and one that has a radius or parameter and an angle.
[[nodiscard]] inline bool showsElement(const tglsRow& row) { return row.horType != kNoElement; }
[[nodiscard]] inline bool showsCurvedElement(const tglsRow& row) { return row.horType > 0; }

/// True where `curveX` says that the row lies outside every vertical curve, within 0.000001.
[[nodiscard]] bool isNearlyOutsideCurves(const tglsRow& row);

}  // namespace lvx::gls::detail

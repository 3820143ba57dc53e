#pragma once

#include <list>
#include <map>
#include <memory>
#include <vector>

#include "gls/gls_records.h"

namespace lvx::gls {

/// The station rows of a report while labels are added to them: a label joins the row at its station or gets a row of
/// its own.
///
///     StationRows rows(report);
///     rows.addStationLabel(L"SL1", 120.0);
///     rows.finish();                       // report.rows holds the new rows too
///
/// The rule of a label: from the top it goes to the first row whose station, plus the tolerance, it doesn't exceed. It
/// joins that row where their stations differ by less than the tolerance, else its own row goes in front of that one. A
/// label past every row is dropped: nothing stands behind the closing row. Stations in any order and numbers that are
/// none follow the rule to the letter; every label costs log n.
class StationRows {
 public:
  /// Drawing units.
  static constexpr double kTolerance = 0.0001;

  /// Takes up the rows that `report` holds, which has to outlive this object.
  explicit StationRows(tglsReport& report);

  /// The first label of a row stays in front; later ones follow behind ", ".
  void addStationLabel(const CString& label, double station);

  /// Puts all rows into the report. Without it the report keeps the rows that it had.
  void finish();

 private:
  using Rows = std::list<tglsRow*>;

  tglsReport& report_;
  Rows rows_;
  std::vector<std::unique_ptr<tglsRow>> added_;
  /// The rows at which a label can stop, by the last station that stops there: those that reach further than every row
  /// above them.
  std::map<double, Rows::iterator> stops_;
};

}  // namespace lvx::gls

#pragma once

#include "gls/corridor_records.h"
#include "gls/gls_records.h"
#include "plain_gls/gls_case.h"

/// The GLS computation in the plain words of its rules: walks from the top, insertion one by one, every element looked
/// at for every row. Slow on purpose and built without the module's own helpers; the module's results are held against
/// these on random input.
namespace lvx::gls::plain {

void addStationLabel(const CString& label, double station, tglsReport& report);

/// Reads the case's corridors; the user's answer is the one of the case.
void readCorridorData(GlsCase& made, CorridorList& corridors, tglsReport& report);

void collectGlsRows(GlsCase& made, tglsReport& report);

}  // namespace lvx::gls::plain

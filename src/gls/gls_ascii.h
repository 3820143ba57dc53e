#pragma once

#include "gls/gls_records.h"

namespace lvx::gls {

/// Writes the report as fixed text: the header, then one wide table drawn with `/ \ - + |`, a text line for each row and
/// a rule line under it. Every line ends in CR LF.
///
/// The columns of names and of notes are as wide as their longest text. Numbers are set to the right and cut to their
/// column; names, notes and the cells of the horizontal elements are centred and never cut, so that a long one moves the
/// bars behind it. The notes are ruled only under intersection points and the element columns only where an element
/// ends, so that the design of one tangent and of one element stand in an open block.
///
/// Each line passes through services::writeNarrow. A percent sign at the end of a row's notes reaches the file as it is;
/// any other percent sign starts a conversion: of "5.25% ,Fall" the sign and its blank go, the comma stays, and the bars
/// behind it move to the left. Readers of these tables split them at the bars.
///
/// `fileName` is the full name with ".txt"; `alignmentText` isn't used. True when written, false where the file couldn't
/// be opened, without a word.
bool writeGlsAscii(const CString& fileName, const CString& alignmentText, const tglsReport& report);

}  // namespace lvx::gls

#pragma once

#include "gls/gls_records.h"

namespace lvx::gls {

/// Writes the report as one page: the header table, then one table. The notes of a tangent and the four cells of a
/// horizontal element stand in tall cells over all rows of their block, a line for each row, so that their texts stand
/// beside the rows that they belong to. Nothing is escaped: names and messages may carry tags of their own.
///
/// The page is one text for services::writeNarrow, so a percent sign anywhere in it starts a conversion and a letter
/// beyond the report's code page ends the page there. A percent sign at the end of a row's notes is written as a
/// character reference.
///
/// `fileName` is the full name with ".html"; `alignmentText` isn't used. True when written, false where the file
/// couldn't be opened, without a word. Raises framework::InvalidArgumentException where a break row lies beyond the rows.
bool writeGlsHtml(const CString& fileName, const CString& alignmentText, const tglsReport& report);

}  // namespace lvx::gls

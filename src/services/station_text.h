#pragma once

#include "framework/text.h"

namespace lvx::services {

using framework::CString;

/// A station as kilometres, plus sign and metres with three decimals: 1234.5 gives "1+234.500". Below zero both
/// separators are minus signs: -1234.5 gives "-1-234.500", the look that road designers' templates expect. Rounded to the
/// millimetre before it is split. Values beyond the range of 32-bit kilometres and values that are no number give a
/// defined text without undefined conversions.
[[nodiscard]] CString stationText(double value);

}  // namespace lvx::services

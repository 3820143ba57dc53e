#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

#include "framework/text.h"

namespace lvx::services {

using framework::CString;

/// One argument of a format step.
using FormatArgument = std::variant<std::int64_t, double, CString>;

/// Formats by the conversion grammar of the Microsoft C runtime, the same on every C library:
/// flags `-+ #0`, width, precision, `*`, size prefixes `h l ll L w I I32 I64 z t j`, types `c C d i o u x X e E f F g G a
/// A s S n p Z`, `%%`. An unknown conversion prints its last character alone (`% R` gives `R`), a `%` that ends the text
/// nothing. A conversion without an argument of a fitting kind prints as if for zero; `n` stores nothing. Safe for any
/// text: widths and precisions are capped at kLargestField.
///
///     formatText(L"%02d.%02d.%04d", {3, 11, 2026})  // "03.11.2026"
[[nodiscard]] CString formatText(std::wstring_view format, std::initializer_list<FormatArgument> arguments);
/// The same over narrow bytes, as the file step sees them.
[[nodiscard]] std::string formatNarrowText(std::string_view format);

inline constexpr int kLargestField = 65536;

/// "%.3f" of a length or coordinate: three decimals, decimal point, no grouping.
[[nodiscard]] CString lengthText(double value);
/// "%.*f" of a value.
[[nodiscard]] CString fixedText(double value, int decimals);

}  // namespace lvx::services

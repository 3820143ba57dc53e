#pragma once

#include <string>

namespace lvx::cairo {

/// Cairo numbers what it draws through the life of a process and writes these numbers into SVG; here they begin at 1 in
/// each file, so that the same sheet is the same bytes.
void renumberSurfaces(std::string& svg);

}  // namespace lvx::cairo

#pragma once

#include <cstdint>
#include <string_view>

#include "generator/text_output.h"

/// The pieces of LandXML that both kinds of generated drawings write.
namespace lvx::generator {

/// XML declaration, root, units, coordinate system; `sites` are written by the caller inside `Project`.
void writeHead(TextOutput& out, std::string_view project, std::string_view coordinateSystem);
void writeApplicationAndDictionary(TextOutput& out);
void writeProperty(TextOutput& out, std::string_view label, std::string_view value);
void writeHandleProperty(TextOutput& out, std::uint64_t handle);
/// `<Feature code=… source="lvx">` with the handle as its only property, closed.
void writeHandleFeature(TextOutput& out, std::string_view indent, std::string_view code, std::uint64_t handle);
/// Stations as 1+020 or 1+128.40 when not whole.
void writeStationName(TextOutput& out, double station);

}  // namespace lvx::generator

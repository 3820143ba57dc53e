#include "generator/drawing_text.h"

#include <cmath>

namespace lvx::generator {

void writeHead(TextOutput& out, std::string_view project, std::string_view coordinateSystem) {
  out << R"(<?xml version="1.0" encoding="UTF-8"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" )"
      << R"(xsi:schemaLocation="http://www.landxml.org/schema/LandXML-1.2 )"
      << R"(http://www.landxml.org/schema/LandXML-1.2/LandXML-1.2.xsd" date="2026-03-02" time="08:00:00" )"
      << R"(version="1.2" language="English" readOnly="false">
  <Units><Metric areaUnit="squareMeter" linearUnit="meter" volumeUnit="cubicMeter" temperatureUnit="celsius" )"
      << R"(pressureUnit="milliBars" angularUnit="decimal degrees" directionUnit="decimal degrees"/></Units>
  <CoordinateSystem name=")"
      << coordinateSystem << "\"/>\n  <Project name=\"" << project << "\">\n";
}

void writeApplicationAndDictionary(TextOutput& out) {
  out << "  <Application name=\"lvx-make-drawing\" version=\"1\"/>\n"
         "  <FeatureDictionary name=\"lvx\" version=\"1\"/>\n";
}

void writeProperty(TextOutput& out, std::string_view label, std::string_view value) {
  out << "<Property label=\"" << label << "\" value=\"" << value << "\"/>";
}

void writeHandleProperty(TextOutput& out, std::uint64_t handle) {
  out << "<Property label=\"handle\" value=\"";
  out.hexadecimal(handle) << "\"/>";
}

void writeHandleFeature(TextOutput& out, std::string_view indent, std::string_view code, std::uint64_t handle) {
  out << indent << "<Feature code=\"" << code << "\" source=\"lvx\">";
  writeHandleProperty(out, handle);
  out << "</Feature>\n";
}

void writeStationName(TextOutput& out, double station) {
  const double kilometre = std::floor(station / 1000.0 + 1e-9);
  const double rest = std::floor((station - 1000.0 * kilometre) * 100.0 + 0.5) / 100.0;
  const auto whole = static_cast<int>(rest);
  out.integer(static_cast<int>(kilometre)) << '+';
  out.integer(whole / 100).integer(whole / 10 % 10).integer(whole % 10);
  const auto hundredths = static_cast<int>((rest - whole) * 100.0 + 0.5);
  if (hundredths != 0) (out << '.').integer(hundredths / 10).integer(hundredths % 10);
}

}  // namespace lvx::generator

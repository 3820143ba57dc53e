#pragma once

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"

namespace lvx::landxml::testing {

/// A drawing in metres around `content`.
inline std::string metric(const std::string& content, const std::string& angularUnit = "decimal degrees") {
  return "<LandXML version=\"1.2\"><Units><Metric linearUnit=\"meter\" angularUnit=\"" + angularUnit + "\"/></Units>" +
         content + "</LandXML>";
}

/// The same, as a file that we saved.
inline std::string ours(const std::string& content) {
  return metric("<FeatureDictionary name=\"lvx\" version=\"1\"/>" + content);
}

inline civil::Drawing read(const std::string& text) { return readDrawingText(text, "road.xml"); }

/// One alignment "A" from station 0 around `content`.
inline std::string alignment(const std::string& content) {
  return "<Alignments><Alignment name=\"A\" length=\"0\" staStart=\"0\">" + content + "</Alignment></Alignments>";
}

/// An alignment due north from 0,0 over 100 with more inside.
inline std::string northward(const std::string& content) {
  return alignment("<CoordGeom><Line><Start>0 0</Start><End>100 0</End></Line></CoordGeom>" + content);
}

inline std::string tin(const std::string& points, const std::string& faces) {
  return metric("<Surfaces><Surface name=\"T\"><Definition surfType=\"TIN\"><Pnts>" + points + "</Pnts><Faces>" +
                faces + "</Faces></Definition></Surface></Surfaces>");
}

inline std::string diagnosticsOf(const civil::Drawing& drawing) {
  std::string all;
  for (const auto& diagnostic : drawing.diagnostics)
    all += std::to_string(diagnostic.line) + ": " + diagnostic.text + "\n";
  return all;
}

/// Text of the error with which reading ends; empty where it doesn't.
inline std::string errorOf(const std::string& text) {
  try {
    (void)read(text);
  } catch (const ReadError& error) {
    return error.what();
  }
  return {};
}

}  // namespace lvx::landxml::testing

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "civil/element.h"
#include "landxml/detail/context.h"
#include "landxml/detail/document.h"

namespace lvx::landxml::detail {

/// Thrown where an element can't be evaluated; ends the alignment, not the drawing.
struct Unusable {
  pugi::xml_node where;
  std::string text;
  /// A transition of a law that isn't known: what stands before it is sound.
  bool keepsWhatStands = false;
};

/// An element of an alignment with the place in the file that it came from.
struct Piece {
  civil::Element element;
  pugi::xml_node where;
  /// "Spiral 3": the third element of the alignment.
  std::string label;
  /// Continues a polyline, whose corners are its shape and no fault.
  bool isPolyline = false;
};

/// Reads one alignment's elements: one by one where CoordGeom gives them (geometry_reader.cpp), or fitted between the
/// intersection points where the file has those alone (intersection_reader.cpp).
class GeometryReader {
 public:
  GeometryReader(Context& context, const std::string& speaker) : context_(context), speaker_(speaker) {}

  std::vector<civil::Element> read(pugi::xml_node alignment);
  /// The transition before which the alignment ends, since its law isn't known; empty where it doesn't.
  [[nodiscard]] const std::optional<Unusable>& endsBefore() const { return endsBefore_; }
  /// The AlignPIs that the elements were computed from; empty where the file gives them.
  [[nodiscard]] pugi::xml_node intersections() const { return intersections_; }

 private:
  // CoordGeom
  void readCoordGeom(pugi::xml_node geometry);
  void readLine(pugi::xml_node node);
  void readCurve(pugi::xml_node node);
  void readSpiral(pugi::xml_node node);
  void readIrregularLine(pugi::xml_node node);
  void readChain(pugi::xml_node node);
  void addPolyline(pugi::xml_node node, const std::vector<civil::Vec2>& points);
  void add(pugi::xml_node node, const civil::Element& element, bool isPolyline = false);

  // AlignPIs
  struct Corner;
  void readIntersections(pugi::xml_node intersections);
  Corner readCorner(pugi::xml_node node, const std::string& label);
  void shapeCorner(Corner& corner, double deflection, civil::Turn turn);

  std::vector<civil::Element> checked();

  civil::Vec2 point(pugi::xml_node node, const char* name);
  std::optional<civil::Vec2> pointIfPlaced(pugi::xml_node node, const char* name);
  std::optional<double> radius(pugi::xml_node node, const char* name);
  std::optional<civil::Turn> rotation(pugi::xml_node node);
  double spiralLength(pugi::xml_node node, civil::ElementKind law, std::optional<double> startRadius,
                      std::optional<double> endRadius);
  civil::ElementKind spiralLaw(pugi::xml_node node);
  [[noreturn]] void refuse(pugi::xml_node node, const std::string& why) const {
    throw Unusable{node, label_ + ": " + why};
  }
  [[nodiscard]] std::string speaker() const { return speaker_ + ": " + label_; }

  Context& context_;
  std::string speaker_;
  std::string label_;
  std::vector<Piece> pieces_;
  std::optional<Unusable> endsBefore_;
  pugi::xml_node intersections_;
};

}  // namespace lvx::landxml::detail

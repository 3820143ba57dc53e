#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "civil/element_list.h"
#include "landxml/detail/context.h"
#include "landxml/detail/document.h"

namespace lvx::landxml::detail {

/// Thrown where an element can't be evaluated; ends the alignment, not the drawing.
struct Unusable {
  Node where;
  std::string text;
  /// A transition of a law that isn't known: what stands before it is sound.
  bool keepsWhatStands = false;
};

/// Where elements of an alignment came from: one, or the lines of a polyline, whose corners are its shape and no fault.
struct ElementSource {
  /// Place in the file.
  std::size_t place = 0;
  /// Index of the first element.
  std::uint32_t first = 0;
  /// "Spiral 3": the third element of the alignment.
  std::uint32_t number : 31 = 0;
  /// The line to an intersection point.
  std::uint32_t isTangent : 1 = 0;
};

/// Reads one alignment's elements: one by one where CoordGeom gives them (geometry_reader.cpp), or fitted between the
/// intersection points where the file has those alone (intersection_reader.cpp).
class GeometryReader {
 public:
  GeometryReader(Context& context, const std::string& speaker) : context_(context), speaker_(speaker) {}

  civil::ElementList read(Node alignment);
  /// The transition before which the alignment ends, since its law isn't known; empty where it doesn't.
  [[nodiscard]] const std::optional<Unusable>& endsBefore() const { return endsBefore_; }
  /// The AlignPIs that the elements were computed from; empty where the file gives them.
  [[nodiscard]] Node intersections() const { return intersections_; }

 private:
  // CoordGeom
  void readCoordGeom(Node geometry);
  void readLine(Node node);
  void readCurve(Node node);
  void readSpiral(Node node);
  void readIrregularLine(Node node);
  void readChain(Node node);
  void addPolyline(Node node, std::vector<civil::Vec2> points);
  void add(Node node, const civil::Element& element);
  void label(std::string_view name, std::size_t number);

  // AlignPIs
  struct Corner;
  void readIntersections(Node intersections);
  Corner readCorner(Node node, const std::string& label);
  void shapeCorner(Corner& corner, double deflection, civil::Turn turn);

  void keep(Node node, const civil::Element& element, bool isTangent = false);
  void addSource(Node node, bool isTangent = false);
  void check();
  [[nodiscard]] std::string labelOf(const ElementSource& source) const;

  civil::Vec2 point(Node node, const char* name);
  std::optional<civil::Vec2> pointIfPlaced(Node node, const char* name);
  std::optional<double> radius(Node node, const char* name);
  std::optional<civil::Turn> rotation(Node node);
  double spiralLength(Node node, civil::ElementKind law, std::optional<double> startRadius,
                      std::optional<double> endRadius);
  civil::ElementKind spiralLaw(Node node);
  [[noreturn]] void refuse(Node node, const std::string& why) const { throw Unusable{node, label_ + ": " + why}; }
  [[nodiscard]] std::string speaker() const { return speaker_ + ": " + label_; }

  Context& context_;
  std::string speaker_;
  std::string label_;
  std::size_t number_ = 0;  // in label_
  civil::ElementList elements_;
  std::vector<ElementSource> sources_;
  std::optional<Unusable> endsBefore_;
  Node intersections_;
};

}  // namespace lvx::landxml::detail

#include <algorithm>
#include <cmath>
#include <vector>

#include "landxml/detail/element_reader.h"
#include "landxml/detail/tree.h"

/// Alignments given by intersection points alone: the tangents between them, rounded off by spirals and arcs.
namespace lvx::landxml::detail {

using civil::Element;
using civil::ElementKind;
using civil::Turn;
using civil::Vec2;

/// What rounds off one intersection point.
struct GeometryReader::Corner {
  Node where;
  std::string label;
  Vec2 point;
  struct Spiral {
    ElementKind law = ElementKind::Clothoid;
    double length = 0.0;
    std::optional<double> startRadius;
    std::optional<double> endRadius;
  };
  std::optional<Spiral> inSpiral;
  std::optional<Spiral> connectingSpiral;
  std::optional<Spiral> outSpiral;
  std::optional<double> radius1;
  std::optional<double> radius2;
  std::optional<double> length1;
  std::optional<Turn> statedTurn;
  /// Why the alignment ends before this corner's curve; empty where it goes on.
  std::optional<Unusable> unusable;
  /// Placed at the origin, heading east, until the tangents are known.
  std::vector<Element> elements;
  double tangentIn = 0.0;
  double tangentOut = 0.0;
};

GeometryReader::Corner GeometryReader::readCorner(Node node, const std::string& label) {
  Corner corner;
  corner.where = node;
  corner.label = label;
  corner.point = point(node, "PI");
  const auto spiral = [&](const char* name) -> std::optional<Corner::Spiral> {
    const Node element = child(child(node, name), "Spiral");
    if (!element) return std::nullopt;
    Corner::Spiral result{spiralLaw(element), 0.0, radius(element, "radiusStart"), radius(element, "radiusEnd")};
    result.length = spiralLength(element, result.law, result.startRadius, result.endRadius);
    if (!corner.statedTurn) corner.statedTurn = rotation(element);
    if (result.length == 0.0) return std::nullopt;
    return result;
  };
  const auto curve = [&](const char* name, std::optional<double>& r) {
    const Node element = child(child(node, name), "Curve");
    if (!element) return element;
    r = radius(element, "radius");
    if (!corner.statedTurn) corner.statedTurn = rotation(element);
    return element;
  };
  corner.inSpiral = spiral("InSpiral");
  if (const auto element = curve("Curve1", corner.radius1); element && corner.radius1) {
    corner.length1 = context_.number(element, "length", speaker());
    if (const auto delta = attribute(element, "delta"); !corner.length1 && !delta.empty()) {
      if (const auto angle = context_.angle(delta)) corner.length1 = std::abs(*angle) * *corner.radius1;
    }
  }
  corner.connectingSpiral = spiral("ConnSpiral");
  curve("Curve2", corner.radius2);
  corner.outSpiral = spiral("OutSpiral");
  if (!corner.radius1 && corner.inSpiral) corner.radius1 = corner.inSpiral->endRadius;
  if (!corner.radius1 && corner.outSpiral) corner.radius1 = corner.outSpiral->startRadius;
  return corner;
}

/// The corner's elements one behind the other from the origin, heading east, and the tangent lengths that they need.
void GeometryReader::shapeCorner(Corner& corner, double deflection, Turn turn) {
  const double side = turn == Turn::Left ? 1.0 : -1.0;
  const double r1 = *corner.radius1;
  const double r2 = corner.radius2.value_or(r1);
  const auto turned = [](double length, double startCurvature, double endCurvature) {
    return length * (startCurvature + endCurvature) / 2.0;
  };
  const auto curvature = [](std::optional<double> r) { return r ? 1.0 / *r : 0.0; };

  struct Part {
    double length;
    double startCurvature;
    double endCurvature;
  };
  std::optional<Part> in;
  std::optional<Part> connecting;
  std::optional<Part> out;
  double spiralTurn = 0.0;
  if (corner.inSpiral) {
    // The inner end fits the arc; the radius stands there in most files, and nowhere else in some.
    in = Part{corner.inSpiral->length, curvature(corner.inSpiral->startRadius), 1.0 / r1};
    spiralTurn += turned(in->length, in->startCurvature, in->endCurvature);
  }
  if (corner.connectingSpiral) {
    connecting = Part{corner.connectingSpiral->length, 1.0 / r1, 1.0 / r2};
    spiralTurn += turned(connecting->length, connecting->startCurvature, connecting->endCurvature);
  }
  if (corner.outSpiral) {
    out = Part{corner.outSpiral->length, 1.0 / r2, curvature(corner.outSpiral->endRadius)};
    spiralTurn += turned(out->length, out->startCurvature, out->endCurvature);
  }
  const double arcTurn = deflection - spiralTurn;
  // A spiral that ends straight where the arc should begin says nothing that can be built.
  if (arcTurn < -1e-6) refuse(corner.where, "its spirals turn farther than its tangents do");
  double arc1 = std::max(0.0, arcTurn) * r1;
  double arc2 = 0.0;
  if (corner.radius2) {
    if (!corner.length1) refuse(corner.where, "has two curves and no length or delta of the first");
    arc1 = *corner.length1;
    arc2 = (arcTurn - arc1 / r1) * r2;
    if (arc1 < 0.0 || arc2 < -1e-6 * r2) refuse(corner.where, "its first curve turns farther than its tangents do");
    arc2 = std::max(0.0, arc2);
  }

  civil::Pose pose;
  const auto append = [&](ElementKind kind, const Part& part) {
    if (part.length <= 1e-9) return;
    Element element;
    element.kind = kind;
    element.start = pose.point;
    element.direction = pose.direction;
    element.length = part.length;
    element.startCurvature = side * part.startCurvature;
    element.endCurvature = side * part.endCurvature;
    if (civil::isTransition(kind) && part.startCurvature == part.endCurvature) element.kind = ElementKind::Arc;
    pose = element.endPose();
    element.givenEnd = pose.point;
    corner.elements.push_back(element);
  };
  if (in) append(corner.inSpiral->law, *in);
  append(ElementKind::Arc, {arc1, 1.0 / r1, 1.0 / r1});
  if (connecting) append(corner.connectingSpiral->law, *connecting);
  append(ElementKind::Arc, {arc2, 1.0 / r2, 1.0 / r2});
  if (out) append(corner.outSpiral->law, *out);

  // The end lies on the outgoing tangent, which leaves the intersection point at the deflection angle.
  corner.tangentOut = side * pose.point.y / std::sin(deflection);
  corner.tangentIn = pose.point.x - corner.tangentOut * std::cos(deflection);
}

void GeometryReader::readIntersections(Node intersections) {
  std::vector<Corner> corners;
  eachChild(intersections, "AlignPI", [&](Node node) {
    label("AlignPI", corners.size() + 1);
    if (!corners.empty() && corners.back().unusable) return;
    try {
      corners.push_back(readCorner(node, label_));
    } catch (const Unusable& unusable) {
      if (!unusable.keepsWhatStands) throw;
      // Its place tells how the curve before it turns.
      Corner corner;
      corner.where = node;
      corner.label = label_;
      corner.point = point(node, "PI");
      corner.unusable = unusable;
      corners.push_back(std::move(corner));
    }
  });
  if (corners.empty()) return;
  endsBefore_ = corners.back().unusable;
  if (endsBefore_ && corners.size() == 1) return;
  if (corners.size() < 2) {
    label_ = corners.front().label;
    refuse(corners.front().where, "one intersection point makes no alignment");
  }

  const auto headingTo = [&](std::size_t i) {
    const Vec2 way = corners[i].point - corners[i - 1].point;
    if (civil::length(way) == 0.0) {
      label_ = corners[i].label;
      refuse(corners[i].where, "lies on the intersection point before it");
    }
    return std::atan2(way.y, way.x);
  };
  for (std::size_t i = 1; i < corners.size() && !corners[i].unusable; ++i) {
    Corner& corner = corners[i];
    const double heading = headingTo(i);
    double tangent = civil::length(corner.point - corners[i - 1].point) - corners[i - 1].tangentOut;
    Vec2 from = corners[i - 1].point + corners[i - 1].tangentOut * civil::unit(heading);
    const bool isLast = i + 1 == corners.size();
    label("AlignPI", i + 1);
    if (!isLast && corner.radius1) {
      const double change = std::remainder(headingTo(i + 1) - heading, civil::kTwoPi);
      label_ = corner.label;
      const Turn turn = change > 0.0 ? Turn::Left : Turn::Right;
      constexpr double kStraight = 1e-9;
      if (std::abs(change) > civil::kPi - 1e-6) refuse(corner.where, "its tangents run back on themselves");
      if (corner.statedTurn && *corner.statedTurn != turn && std::abs(change) > 1e-6) {
        context_.warn(corner.where, speaker() + ": rot is against the turn of its tangents, which holds");
      }
      if (std::abs(change) > kStraight) shapeCorner(corner, std::abs(change), turn);
    }
    tangent -= corner.tangentIn;
    if (tangent > context_.millimetre()) {
      keep(corner.where, civil::makeLine(from, from + tangent * civil::unit(heading)), true);
    } else if (tangent < -context_.millimetre()) {
      context_.warn(corner.where, speaker() + ": its curve overlaps the one before it by " + shownNumber(-tangent) +
                                      "; both are kept");
    }
    // From the origin to the tangent point.
    const Vec2 origin = corner.point - corner.tangentIn * civil::unit(heading);
    const auto placed = [&](Vec2 p) {
      const Vec2 u = civil::unit(heading);
      return Vec2{origin.x + p.x * u.x - p.y * u.y, origin.y + p.x * u.y + p.y * u.x};
    };
    for (Element element : corner.elements) {
      element.start = placed(element.start);
      element.givenEnd = placed(element.givenEnd);
      element.direction += heading;
      keep(corner.where, element);
    }
  }
}

}  // namespace lvx::landxml::detail

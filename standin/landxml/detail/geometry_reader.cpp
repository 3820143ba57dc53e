#include "landxml/detail/geometry_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <utility>
#include <vector>

#include "landxml/detail/name_list.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::Element;
using civil::ElementKind;
using civil::Turn;
using civil::Vec2;

namespace {

/// Thrown where an element can't be evaluated; ends the alignment, not the drawing.
struct Unusable {
  pugi::xml_node where;
  std::string text;
  /// A transition of a law that isn't known: what stands before it is sound.
  bool keepsWhatStands = false;
};

/// Of a spiral whose kind of transition is known; empty for others.
std::optional<ElementKind> lawNamed(std::string_view spiType) {
  constexpr std::array<std::pair<std::string_view, ElementKind>, 6> kLaws{{
      {"clothoid", ElementKind::Clothoid},
      {"bloss", ElementKind::Bloss},
      {"cosine", ElementKind::Cosine},
      {"biquadratic", ElementKind::Biquadratic},
      {"biquadraticparabola", ElementKind::Biquadratic},
      {"sinusoid", ElementKind::Sinusoid},
  }};
  for (const auto& [name, law] : kLaws)
    if (name == spiType) return law;
  return std::nullopt;
}

struct Piece {
  Element element;
  pugi::xml_node where;
  /// "Spiral 3": the third element of the alignment.
  std::string label;
  /// Continues a polyline, whose corners are its shape and no fault.
  bool isPolyline = false;
};

std::string lower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

class GeometryReader {
 public:
  GeometryReader(Context& context, const std::string& speaker) : context_(context), speaker_(speaker) {}

  std::vector<Element> read(pugi::xml_node alignment);
  /// The transition before which the alignment ends, since its law isn't known; empty where it doesn't.
  [[nodiscard]] const std::optional<Unusable>& endsBefore() const { return endsBefore_; }

 private:
  // CoordGeom
  void readCoordGeom(pugi::xml_node geometry);
  void readLine(pugi::xml_node node);
  void readCurve(pugi::xml_node node);
  void readSpiral(pugi::xml_node node);
  void readIrregularLine(pugi::xml_node node);
  void readChain(pugi::xml_node node);
  void addPolyline(pugi::xml_node node, const std::vector<Vec2>& points);
  void add(pugi::xml_node node, const Element& element, bool isPolyline = false);

  // AlignPIs
  struct Corner;
  void readIntersections(pugi::xml_node intersections);
  Corner readCorner(pugi::xml_node node, const std::string& label);
  void shapeCorner(Corner& corner, double deflection, Turn turn);

  std::vector<Element> checked();

  Vec2 point(pugi::xml_node node, const char* name);
  std::optional<Vec2> pointIfPlaced(pugi::xml_node node, const char* name);
  std::optional<double> radius(pugi::xml_node node, const char* name);
  std::optional<Turn> rotation(pugi::xml_node node);
  double spiralLength(pugi::xml_node node, ElementKind law, std::optional<double> startRadius,
                      std::optional<double> endRadius);
  ElementKind spiralLaw(pugi::xml_node node);
  [[noreturn]] void refuse(pugi::xml_node node, const std::string& why) const {
    throw Unusable{node, label_ + ": " + why};
  }
  [[nodiscard]] std::string speaker() const { return speaker_ + ": " + label_; }

  Context& context_;
  std::string speaker_;
  std::string label_;
  std::vector<Piece> pieces_;
  std::optional<Unusable> endsBefore_;
};

Vec2 GeometryReader::point(pugi::xml_node node, const char* name) {
  const PlacedPoint placed = context_.place(child(node, name));
  if (!placed.isPlaced()) refuse(node, std::string(name) + " " + placed.problem);
  return placed.plan;
}

std::optional<Vec2> GeometryReader::pointIfPlaced(pugi::xml_node node, const char* name) {
  const pugi::xml_node element = child(node, name);
  if (!element) return std::nullopt;
  const PlacedPoint placed = context_.place(element);
  return placed.isPlaced() ? std::optional(placed.plan) : std::nullopt;
}

/// Empty for straight, which programs write as INF, Infinity, 0, nothing, of either sign.
std::optional<double> GeometryReader::radius(pugi::xml_node node, const char* name) {
  std::string value = lower(attribute(node, name));
  if (!value.empty() && (value[0] == '-' || value[0] == '+')) value.erase(0, 1);
  if (value.empty() || value == "inf" || value == "infinity") return std::nullopt;
  double result = 0.0;
  if (!readSingleNumber(value, result)) {
    refuse(node, std::string(name) + " '" + shown(attribute(node, name)) + "' is not a number");
  }
  return result == 0.0 ? std::nullopt : std::optional(std::abs(result));
}

std::optional<Turn> GeometryReader::rotation(pugi::xml_node node) {
  const std::string rot = lower(attribute(node, "rot"));
  if (rot == "cw") return Turn::Right;
  if (rot == "ccw") return Turn::Left;
  if (!rot.empty()) context_.warn(node, speaker() + ": rot '" + shown(rot) + "' is neither cw nor ccw");
  return std::nullopt;
}

ElementKind GeometryReader::spiralLaw(pugi::xml_node node) {
  const std::string_view type = attribute(node, "spiType");
  if (type.empty()) {
    context_.warn(node, speaker() + ": has no spiType; a clothoid is assumed");
    return ElementKind::Clothoid;
  }
  if (const auto law = lawNamed(lower(type))) return *law;
  throw Unusable{node, label_ + ": spiType " + shown(type) + " can't be evaluated", true};
}

double GeometryReader::spiralLength(pugi::xml_node node, ElementKind law, std::optional<double> startRadius,
                                    std::optional<double> endRadius) {
  if (const auto length = context_.number(node, "length", speaker()); length && *length >= 0.0) return *length;
  // Only a clothoid has a parameter that tells its length.
  if (law != ElementKind::Clothoid) refuse(node, "has no length");
  const auto parameter = context_.number(node, "constant", speaker());
  const double bend = std::abs((startRadius ? 1.0 / *startRadius : 0.0) - (endRadius ? 1.0 / *endRadius : 0.0));
  if (!parameter || *parameter == 0.0 || bend == 0.0) refuse(node, "has no length");
  return *parameter * *parameter * bend;
}

void GeometryReader::add(pugi::xml_node node, const Element& element, bool isPolyline) {
  if (!std::isfinite(element.length) || !std::isfinite(element.direction) || element.length > kLargestNumber) {
    refuse(node, "its numbers give no shape");
  }
  if (element.length <= 0.0) {
    context_.note(node, speaker() + ": has no length and is passed over");
    return;
  }
  pieces_.push_back({element, node, label_, isPolyline});
}

void GeometryReader::readLine(pugi::xml_node node) {
  add(node, civil::makeLine(point(node, "Start"), point(node, "End")));
}

void GeometryReader::readCurve(pugi::xml_node node) {
  const Vec2 start = point(node, "Start");
  const Vec2 end = point(node, "End");
  const std::optional<Vec2> corner = pointIfPlaced(node, "PI");
  std::optional<Turn> turn = rotation(node);
  const auto givenLength = context_.number(node, "length", speaker());
  if (!turn && corner) {
    turn = civil::cross(*corner - start, end - start) > 0.0 ? Turn::Left : Turn::Right;
    context_.warn(node, speaker() + ": rot is taken from its points");
  }
  if (!turn) refuse(node, "rot is missing");
  const double side = *turn == Turn::Left ? 1.0 : -1.0;

  std::optional<Vec2> center = pointIfPlaced(node, "Center");
  if (!center) {
    // Without a centre the arc hangs on its radius: the centre lies square to the middle of the chord.
    if (const auto element = child(node, "Center")) {
      const auto placed = context_.place(element);
      if (!text(element).empty() || !attribute(element, "pntRef").empty()) refuse(node, "Center " + placed.problem);
    }
    const Vec2 chord = end - start;
    const double half = civil::length(chord) / 2.0;
    const auto r = radius(node, "radius");
    if (!r || half == 0.0 || *r < half * (1.0 - 1e-9)) refuse(node, "has neither a Center nor a radius that fits");
    const bool large = givenLength && *givenLength > civil::kPi * *r;
    const double rise = std::sqrt(std::max(0.0, *r * *r - half * half)) * (large ? -1.0 : 1.0);
    const Vec2 normal{-chord.y / (2.0 * half), chord.x / (2.0 * half)};
    center = start + 0.5 * chord + (side * rise) * normal;
    context_.warn(node, speaker() + ": has no Center; it is computed from the radius");
  }
  const double r = civil::length(start - *center);
  if (r == 0.0) {
    if (start == end) {
      context_.note(node, speaker() + ": has no length and is passed over");
      return;
    }
    refuse(node, "its Start lies on its Center");
  }
  const double miss = std::abs(civil::length(end - *center) - r);
  Element arc = civil::makeArc(start, *center, end, *turn);
  const double circle = civil::kTwoPi * r;
  const double tiny = 1e-6 * r;
  const bool saysWhole = givenLength && *givenLength > circle / 2.0;
  if (arc.length < tiny && saysWhole) {
    // A closed circle: its start is its end.
    arc.kind = ElementKind::Arc;
    arc.start = start;
    arc.givenEnd = end;
    arc.direction = std::atan2(start.y - center->y, start.x - center->x) + side * civil::kPi / 2.0;
    arc.startCurvature = arc.endCurvature = side / r;
    arc.length = circle;
  } else if (arc.length > circle - tiny && givenLength && !saysWhole) {
    // Rounding put the end of an arc of no length before its start.
    arc.length = 0.0;
  }
  add(node, arc);
  if (miss > context_.millimetre()) {
    context_.warn(node, speaker() + ": Start and End lie " + shownNumber(miss) + " apart in distance from the Center");
  }
}

void GeometryReader::readSpiral(pugi::xml_node node) {
  const ElementKind law = spiralLaw(node);
  const Vec2 start = point(node, "Start");
  const Vec2 end = point(node, "End");
  std::optional<Vec2> corner = pointIfPlaced(node, "PI");
  if (corner && civil::length(*corner - start) <= context_.millimetre()) corner.reset();
  const auto startRadius = radius(node, "radiusStart");
  const auto endRadius = radius(node, "radiusEnd");
  std::optional<Turn> turn = rotation(node);
  const double length = spiralLength(node, law, startRadius, endRadius);
  if (!turn && (startRadius || endRadius)) {
    if (!corner) refuse(node, "rot is missing");
    turn = civil::cross(*corner - start, end - start) > 0.0 ? Turn::Left : Turn::Right;
    context_.warn(node, speaker() + ": rot is taken from its points");
  }
  if (length == 0.0) {
    context_.note(node, speaker() + ": has no length and is passed over");
    return;
  }
  if (length / std::min(startRadius.value_or(INFINITY), endRadius.value_or(INFINITY)) > 1000.0) {
    refuse(node, "its length and radii give a curl, not a road");
  }
  add(node, civil::makeTransition(law, start, corner, end, length, startRadius, endRadius, turn.value_or(Turn::Left)));
}

void GeometryReader::addPolyline(pugi::xml_node node, const std::vector<Vec2>& points) {
  bool isFirst = true;
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    if (points[i] == points[i + 1]) continue;
    add(node, civil::makeLine(points[i], points[i + 1]), !isFirst);
    isFirst = false;
  }
  if (isFirst) context_.note(node, speaker() + ": has no length and is passed over");
}

void GeometryReader::readIrregularLine(pugi::xml_node node) {
  pugi::xml_node list = child(node, "PntList2D");
  std::size_t step = 2;
  if (!list) {
    list = child(node, "PntList3D");
    step = 3;
  }
  std::vector<Vec2> points;
  if (list) {
    const NumberList numbers = readNumbers(text(list));
    if (!numbers.problem.empty()) refuse(list, numbers.problem);
    if (numbers.signRepaired) {
      context_.warn(list, speaker() + ": a sign stood apart from its number; they were put together");
    }
    if (numbers.values.size() % step != 0) {
      refuse(list, "its list holds " + std::to_string(numbers.values.size()) + " numbers, no multiple of " +
                       std::to_string(step));
    }
    for (std::size_t i = 0; i < numbers.values.size(); i += step) {
      points.push_back(context_.plan(numbers.values[i], numbers.values[i + 1]));
    }
  }
  // The list repeats both ends; where it doesn't, they belong to the line all the same.
  const auto start = pointIfPlaced(node, "Start");
  const auto end = pointIfPlaced(node, "End");
  const double same = context_.millimetre();
  if (start && (points.empty() || civil::length(points.front() - *start) > same)) points.insert(points.begin(), *start);
  if (end && (points.empty() || civil::length(points.back() - *end) > same)) points.push_back(*end);
  if (points.size() < 2) refuse(node, "has fewer than two points");
  addPolyline(node, points);
}

void GeometryReader::readChain(pugi::xml_node node) {
  const std::string names = text(node);
  std::vector<Vec2> points;
  const auto unknown = eachKnownName(
      names, [&](const std::string& name) { return static_cast<bool>(context_.pointNamed(name)); },
      [&](const std::string& name) {
        const PlacedPoint placed = context_.placeByName(name);
        if (!placed.isPlaced()) refuse(node, "point '" + shown(name) + "' " + placed.problem);
        points.push_back(placed.plan);
      });
  if (unknown) refuse(node, "the point '" + shown(*unknown) + "' isn't in the file");
  if (points.size() < 2) refuse(node, "has fewer than two points");
  addPolyline(node, points);
}

void GeometryReader::readCoordGeom(pugi::xml_node geometry) {
  std::size_t count = 0;
  eachElement(geometry, [&](pugi::xml_node node) {
    const std::string name(localName(node));
    if (name == "Feature") return;
    label_ = name + " " + std::to_string(++count);
    if (name == "Line")
      readLine(node);
    else if (name == "Curve")
      readCurve(node);
    else if (name == "Spiral")
      readSpiral(node);
    else if (name == "IrregularLine")
      readIrregularLine(node);
    else if (name == "Chain")
      readChain(node);
    else
      refuse(node, "isn't an element of an alignment that is known");
  });
}

// ---------------------------------------------------------------- the PI method

/// What rounds off one intersection point.
struct GeometryReader::Corner {
  pugi::xml_node where;
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

GeometryReader::Corner GeometryReader::readCorner(pugi::xml_node node, const std::string& label) {
  Corner corner;
  corner.where = node;
  corner.label = label;
  corner.point = point(node, "PI");
  const auto spiral = [&](const char* name) -> std::optional<Corner::Spiral> {
    const pugi::xml_node element = child(child(node, name), "Spiral");
    if (!element) return std::nullopt;
    Corner::Spiral result{spiralLaw(element), 0.0, radius(element, "radiusStart"), radius(element, "radiusEnd")};
    result.length = spiralLength(element, result.law, result.startRadius, result.endRadius);
    if (!corner.statedTurn) corner.statedTurn = rotation(element);
    if (result.length == 0.0) return std::nullopt;
    return result;
  };
  const auto curve = [&](const char* name, std::optional<double>& r) {
    const pugi::xml_node element = child(child(node, name), "Curve");
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

void GeometryReader::readIntersections(pugi::xml_node intersections) {
  std::vector<Corner> corners;
  eachChild(intersections, "AlignPI", [&](pugi::xml_node node) {
    label_ = "AlignPI " + std::to_string(corners.size() + 1);
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
    label_ = corner.label;
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
      pieces_.push_back({civil::makeLine(from, from + tangent * civil::unit(heading)), corner.where,
                         "tangent to " + corner.label, false});
    } else if (tangent < -context_.millimetre()) {
      context_.warn(corner.where, speaker() + ": its curve overlaps the one before it by " + shownNumber(-tangent));
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
      pieces_.push_back({element, corner.where, corner.label, false});
    }
  }
}

// ---------------------------------------------------------------- both

std::vector<Element> GeometryReader::checked() {
  constexpr double kKink = 0.1 * civil::kPi / 180.0;
  std::vector<Element> elements;
  elements.reserve(pieces_.size());
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    const Piece& piece = pieces_[i];
    elements.push_back(piece.element);
    const civil::Pose end = piece.element.endPose();
    if (!std::isfinite(end.point.x) || !std::isfinite(end.point.y)) {
      throw Unusable{piece.where, piece.label + ": its numbers give no shape"};
    }
    if (i + 1 == pieces_.size()) {
      const double miss = civil::length(end.point - piece.element.givenEnd);
      if (miss > context_.millimetre()) {
        context_.warn(piece.where,
                      speaker_ + ": " + piece.label + ": its end misses the given End by " + shownNumber(miss));
      }
      continue;
    }
    const Piece& next = pieces_[i + 1];
    const double miss = civil::length(end.point - next.element.start);
    if (miss > context_.millimetre()) {
      context_.warn(next.where,
                    speaker_ + ": " + next.label + ": starts " + shownNumber(miss) + " off the end of " + piece.label);
    }
    const double kink = std::abs(std::remainder(next.element.direction - end.direction, civil::kTwoPi));
    if (kink > kKink && !next.isPolyline) {
      context_.warn(next.where, speaker_ + ": " + next.label + ": turns by " + shownNumber(kink * 180.0 / civil::kPi) +
                                    " degrees against the end of " + piece.label);
    }
  }
  return elements;
}

std::vector<Element> GeometryReader::read(pugi::xml_node alignment) {
  bool isRead = false;
  eachChild(alignment, "CoordGeom", [&](pugi::xml_node geometry) {
    if (isRead) {
      context_.warn(geometry, speaker_ + ": has a second CoordGeom, which isn't read");
      return;
    }
    try {
      readCoordGeom(geometry);
    } catch (const Unusable& unusable) {
      if (!unusable.keepsWhatStands) throw;
      endsBefore_ = unusable;
    }
    isRead = !pieces_.empty() || endsBefore_.has_value();
  });
  if (!isRead)
    eachChild(alignment, "AlignPIs", [&](pugi::xml_node node) {
      if (pieces_.empty()) readIntersections(node);
    });
  return checked();
}

/// A table of elements that knows one kind of transition shows the others as that one, which its readers should know.
void noteTransitions(Context& context, pugi::xml_node where, const std::string& speaker,
                     const civil::Alignment& geometry) {
  std::string counts;
  for (const ElementKind law :
       {ElementKind::Bloss, ElementKind::Cosine, ElementKind::Biquadratic, ElementKind::Sinusoid}) {
    const auto elements = geometry.elements();
    const auto count =
        std::count_if(elements.begin(), elements.end(), [&](const Element& element) { return element.kind == law; });
    if (count > 0) counts += (counts.empty() ? "" : ", ") + std::to_string(count) + " " + civil::kindName(law);
  }
  if (counts.empty()) return;
  context.note(where, speaker + ": has transitions that are no clothoids (" + counts +
                          "); the GLS report shows them as clothoids of the same radii and lengths");
}

}  // namespace

std::optional<civil::Alignment> readGeometry(Context& context, pugi::xml_node alignment, const std::string& speaker,
                                             double startStation) {
  try {
    GeometryReader reader(context, speaker);
    civil::Alignment geometry(startStation, reader.read(alignment));
    noteTransitions(context, alignment, speaker, geometry);
    if (const auto& unusable = reader.endsBefore()) {
      context.error(unusable->where, speaker + ": " + unusable->text + "; " +
                                         (geometry.isEmpty() ? "nothing of the alignment stands before it"
                                                             : "the alignment ends there, at station " +
                                                                   shownNumber(geometry.endStation())));
    } else if (geometry.isEmpty()) {
      context.warn(alignment, speaker + ": has no geometry");
    } else if (const auto stated = context.number(alignment, "length", speaker);
               stated && std::abs(*stated - geometry.length()) > 10.0 * context.millimetre()) {
      context.note(alignment, speaker + ": its length is stated as " + shownNumber(*stated) +
                                  ", its elements add up to " + shownNumber(geometry.length()) + ", which holds");
    }
    return geometry;
  } catch (const Unusable& unusable) {
    context.error(unusable.where, speaker + ": " + unusable.text + "; the alignment is left out");
    return std::nullopt;
  }
}

}  // namespace lvx::landxml::detail

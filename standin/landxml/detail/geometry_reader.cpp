#include "landxml/detail/geometry_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <utility>
#include <vector>

#include "landxml/detail/element_reader.h"
#include "landxml/detail/name_list.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::Element;
using civil::ElementKind;
using civil::Turn;
using civil::Vec2;

namespace {

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

std::string lower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

}  // namespace

Vec2 GeometryReader::point(Node node, const char* name) {
  const PlacedPoint placed = context_.place(child(node, name));
  if (!placed.isPlaced()) refuse(node, std::string(name) + " " + placed.problem);
  return placed.plan;
}

std::optional<Vec2> GeometryReader::pointIfPlaced(Node node, const char* name) {
  const Node element = child(node, name);
  if (!element) return std::nullopt;
  const PlacedPoint placed = context_.place(element);
  return placed.isPlaced() ? std::optional(placed.plan) : std::nullopt;
}

/// Empty for straight, which programs write as INF, Infinity, 0, nothing, of either sign.
std::optional<double> GeometryReader::radius(Node node, const char* name) {
  std::string value = lower(attribute(node, name));
  if (!value.empty() && (value[0] == '-' || value[0] == '+')) value.erase(0, 1);
  if (value.empty() || value == "inf" || value == "infinity") return std::nullopt;
  double result = 0.0;
  if (!readSingleNumber(value, result)) {
    refuse(node, std::string(name) + " '" + shown(attribute(node, name)) + "' is not a number");
  }
  return result == 0.0 ? std::nullopt : std::optional(std::abs(result));
}

std::optional<Turn> GeometryReader::rotation(Node node) {
  const std::string rot = lower(attribute(node, "rot"));
  if (rot == "cw") return Turn::Right;
  if (rot == "ccw") return Turn::Left;
  if (!rot.empty())
    context_.warn(node, speaker() + ": rot '" + shown(rot) + "' is neither cw nor ccw; taken as missing");
  return std::nullopt;
}

ElementKind GeometryReader::spiralLaw(Node node) {
  const std::string_view type = attribute(node, "spiType");
  if (type.empty()) {
    context_.warn(node, speaker() + ": has no spiType; a clothoid is assumed");
    return ElementKind::Clothoid;
  }
  if (const auto law = lawNamed(lower(type))) return *law;
  throw Unusable{node, label_ + ": spiType " + shown(type) + " can't be evaluated", true};
}

double GeometryReader::spiralLength(Node node, ElementKind law, std::optional<double> startRadius,
                                    std::optional<double> endRadius) {
  if (const auto length = context_.number(node, "length", speaker()); length && *length >= 0.0) return *length;
  // Only a clothoid has a parameter that tells its length.
  if (law != ElementKind::Clothoid) refuse(node, "has no length");
  const auto parameter = context_.number(node, "constant", speaker());
  const double bend = std::abs((startRadius ? 1.0 / *startRadius : 0.0) - (endRadius ? 1.0 / *endRadius : 0.0));
  if (!parameter || *parameter == 0.0 || bend == 0.0) refuse(node, "has no length");
  return *parameter * *parameter * bend;
}

void GeometryReader::label(std::string_view name, std::size_t number) {
  number_ = number;
  label_ = std::string(name) + " " + std::to_string(number);
}

/// What `label_` was when the element was kept.
std::string GeometryReader::labelOf(const ElementSource& source) const {
  const Node node = context_.nodeAt(source.place);
  return (source.isTangent != 0 ? "tangent to " : "") + std::string(localName(node)) + " " +
         std::to_string(source.number);
}

void GeometryReader::addSource(Node node, bool isTangent) {
  sources_.push_back({static_cast<std::size_t>(node.place()), static_cast<std::uint32_t>(elements_.size()),
                      static_cast<std::uint32_t>(number_) & 0x7FFFFFFFU, isTangent ? 1U : 0U});
}

void GeometryReader::keep(Node node, const Element& element, bool isTangent) {
  addSource(node, isTangent);
  elements_.add(element);
}

void GeometryReader::add(Node node, const Element& element) {
  if (!std::isfinite(element.length) || !std::isfinite(element.direction) || element.length > kLargestNumber) {
    refuse(node, "its numbers give no shape");
  }
  if (element.length <= 0.0) {
    context_.note(node, speaker() + ": has no length and is passed over");
    return;
  }
  keep(node, element);
}

void GeometryReader::readLine(Node node) { add(node, civil::makeLine(point(node, "Start"), point(node, "End"))); }

void GeometryReader::readCurve(Node node) {
  const Vec2 start = point(node, "Start");
  const Vec2 end = point(node, "End");
  const std::optional<Vec2> corner = pointIfPlaced(node, "PI");
  std::optional<Turn> turn = rotation(node);
  const auto givenLength =
      context_.number(node, "length", speaker(), {"the curve is kept without it", civil::Severity::Warning});
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
    context_.warn(node, speaker() + ": Start and End lie " + shownNumber(miss) +
                            " apart in distance from the Center; the curve is kept, with the radius of its Start");
  }
}

void GeometryReader::readSpiral(Node node) {
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

void GeometryReader::addPolyline(Node node, std::vector<Vec2> points) {
  points.erase(std::unique(points.begin(), points.end()), points.end());
  if (points.size() < 2) {
    context_.note(node, speaker() + ": has no length and is passed over");
    return;
  }
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    const Vec2 way = points[i + 1] - points[i];
    if (std::abs(way.x) + std::abs(way.y) > kLargestNumber && civil::length(way) > kLargestNumber)
      refuse(node, "its numbers give no shape");
  }
  addSource(node);
  elements_.addPolyline(std::move(points));
}

void GeometryReader::readIrregularLine(Node node) {
  Node list = child(node, "PntList2D");
  std::size_t step = 2;
  if (!list) {
    list = child(node, "PntList3D");
    step = 3;
  }
  std::vector<Vec2> points;
  if (list) {
    points.reserve(countWords(list) / step + 2);
    std::size_t count = 0;
    double first = 0.0;
    const NumberList numbers = readNumbersOf(list, [&](double value) {
      const std::size_t place = count++ % step;
      if (place == 0) first = value;
      if (place == 1) points.push_back(context_.plan(first, value));
    });
    if (!numbers.problem.empty()) refuse(list, numbers.problem);
    if (numbers.repairedSigns > 0) context_.warn(list, speaker() + ": " + repairedSignsText(numbers));
    if (count % step != 0) {
      refuse(list, "its list holds " + std::to_string(count) + " numbers, no multiple of " + std::to_string(step));
    }
  }
  // The list repeats both ends; where it doesn't, they belong to the line all the same.
  const auto start = pointIfPlaced(node, "Start");
  const auto end = pointIfPlaced(node, "End");
  const double same = context_.millimetre();
  if (start && (points.empty() || civil::length(points.front() - *start) > same)) points.insert(points.begin(), *start);
  if (end && (points.empty() || civil::length(points.back() - *end) > same)) points.push_back(*end);
  if (points.size() < 2) refuse(node, "has fewer than two points");
  addPolyline(node, std::move(points));
}

void GeometryReader::readChain(Node node) {
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
  addPolyline(node, std::move(points));
}

void GeometryReader::readCoordGeom(Node geometry) {
  std::size_t count = 0;
  eachElement(geometry, [&](Node) { ++count; });
  elements_.reserve(count);
  sources_.reserve(count);
  count = 0;
  eachElement(geometry, [&](Node node) {
    const std::string name(localName(node));
    if (name == "Feature") return;
    label(name, ++count);
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

void GeometryReader::check() {
  constexpr double kKink = 0.1 * civil::kPi / 180.0;
  const std::size_t count = elements_.size();
  auto source = sources_.begin();
  Element element = count > 0 ? elements_.at(0) : Element();
  for (std::size_t i = 0; i < count; ++i) {
    const auto where = [&] { return context_.nodeAt(source->place); };
    const civil::Pose end = element.endPose();
    if (!std::isfinite(end.point.x) || !std::isfinite(end.point.y)) {
      throw Unusable{where(), labelOf(*source) + ": its numbers give no shape"};
    }
    if (i + 1 == count) {
      const double miss = civil::length(end.point - element.givenEnd);
      if (miss > context_.millimetre()) {
        context_.warn(where(), speaker_ + ": " + labelOf(*source) + ": its end misses the given End by " +
                                   shownNumber(miss) + "; it is kept as computed");
      }
      return;
    }
    const auto before = source;
    if (source + 1 != sources_.end() && (source + 1)->first == i + 1) ++source;
    const Element next = elements_.at(i + 1);
    const double miss = civil::length(end.point - next.start);
    if (miss > context_.millimetre()) {
      context_.warn(where(), speaker_ + ": " + labelOf(*source) + ": starts " + shownNumber(miss) + " off the end of " +
                                 labelOf(*before) + "; both are kept");
    }
    const double kink = std::abs(std::remainder(next.direction - end.direction, civil::kTwoPi));
    if (kink > kKink && source != before) {
      context_.warn(where(), speaker_ + ": " + labelOf(*source) + ": turns by " +
                                 shownNumber(kink * 180.0 / civil::kPi) + " degrees against the end of " +
                                 labelOf(*before) + "; both are kept");
    }
    element = next;
  }
}

civil::ElementList GeometryReader::read(Node alignment) {
  bool isRead = false;
  eachChild(alignment, "CoordGeom", [&](Node geometry) {
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
    isRead = !elements_.isEmpty() || endsBefore_.has_value();
  });
  if (!isRead)
    eachChild(alignment, "AlignPIs", [&](Node node) {
      if (!elements_.isEmpty()) return;
      readIntersections(node);
      intersections_ = node;
    });
  check();
  return std::move(elements_);
}

namespace {

/// A table of elements that knows one kind of transition shows the others as that one, which its readers should know.
void noteTransitions(Context& context, Node where, const std::string& speaker, const civil::Alignment& geometry) {
  std::string counts;
  for (const ElementKind law :
       {ElementKind::Bloss, ElementKind::Cosine, ElementKind::Biquadratic, ElementKind::Sinusoid}) {
    const std::size_t count = geometry.countOf(law);
    if (count > 0) counts += (counts.empty() ? "" : ", ") + std::to_string(count) + " " + civil::kindName(law);
  }
  if (counts.empty()) return;
  context.note(where, speaker + ": has transitions that are no clothoids (" + counts +
                          "); the GLS report shows them as clothoids of the same radii and lengths");
}

}  // namespace

std::optional<civil::Alignment> readGeometry(Context& context, Node alignment, const std::string& speaker,
                                             double startStation) {
  try {
    GeometryReader reader(context, speaker);
    civil::Alignment geometry(startStation, reader.read(alignment));
    noteTransitions(context, alignment, speaker, geometry);
    if (const auto& source = reader.intersections(); source && !geometry.isEmpty()) {
      context.note(source, speaker +
                               ": its geometry is computed from intersection points (AlignPIs), since it has no " +
                               "elements in a CoordGeom");
    }
    if (const auto& unusable = reader.endsBefore()) {
      context.error(unusable->where, speaker + ": " + unusable->text + "; " +
                                         (geometry.isEmpty() ? "nothing of the alignment stands before it"
                                                             : "the alignment ends there, at station " +
                                                                   shownNumber(geometry.endStation())));
    } else if (geometry.isEmpty()) {
      context.warn(alignment, speaker + ": has no geometry; it is kept without stations");
    } else if (const auto stated =
                   context.number(alignment, "length", speaker, {"its elements count", civil::Severity::Note});
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

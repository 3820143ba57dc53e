#include "generator/road_geometry.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "generator/deterministic.h"

namespace lvx::generator {
namespace {

Place rounded(Place p) { return {roundedTo(p.x, RoadPlan::kDecimals), roundedTo(p.y, RoadPlan::kDecimals)}; }

double distance(Place a, Place b) { return std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y)); }

RoadPose poseOf(Place place, double heading) {
  const SinCos direction = sinCos(heading);
  return {place, heading, direction.sine, direction.cosine};
}

double curvatureOf(double radius) { return radius == 0.0 ? 0.0 : 1.0 / radius; }

void writePlace(TextOutput& out, std::string_view tag, Place p) {
  out << '<' << tag << '>';
  out.fixed(p.y, RoadPlan::kDecimals) << ' ';
  out.fixed(p.x, RoadPlan::kDecimals) << "</" << tag << '>';
}

void writeRadius(TextOutput& out, std::string_view attribute, double curvature) {
  out << ' ' << attribute << "=\"";
  if (curvature == 0.0) {
    out << "INF";
  } else {
    out.fixed(1.0 / std::abs(curvature), 3);
  }
  out << '"';
}

}  // namespace

RoadPlan::RoadPlan(double startStation, Place start, double headingDegreesFromEast)
    : startStation_(startStation),
      endStation_(startStation),
      next_(rounded(start)),
      heading_(headingDegreesFromEast * kPi / 180.0) {}

RoadPlan& RoadPlan::line(double length) {
  append(Kind::Line, length, 0.0, 0.0);
  return *this;
}

RoadPlan& RoadPlan::arc(double length, double radius) {
  append(Kind::Arc, length, 1.0 / radius, 1.0 / radius);
  return *this;
}

RoadPlan& RoadPlan::clothoid(double length, double startRadius, double endRadius) {
  append(Kind::Clothoid, length, curvatureOf(startRadius), curvatureOf(endRadius));
  return *this;
}

void RoadPlan::append(Kind kind, double nominalLength, double startCurvature, double endCurvature) {
  Element element;
  element.kind = kind;
  element.startCurvature = startCurvature;
  element.endCurvature = endCurvature;
  element.station = endStation_;
  element.start = next_;
  element.heading = heading_;
  element.length = nominalLength;
  const RoadPose start = poseOf(element.start, heading_);
  const RoadPose end = along(element, nominalLength);
  element.end = rounded(end.place);
  switch (element.kind) {
    case Kind::Line:
      element.length = distance(element.start, element.end);
      break;
    case Kind::Arc: {
      const double radius = 1.0 / element.startCurvature;
      element.corner = rounded(start.at(-radius));
      // The angle of the printed points differs from the nominal one by so little that its sine is the difference.
      const Place from{element.start.x - element.corner.x, element.start.y - element.corner.y};
      const Place to{element.end.x - element.corner.x, element.end.y - element.corner.y};
      const SinCos turn = sinCos(nominalLength / radius);
      const Place turned{from.x * turn.cosine - from.y * turn.sine, from.x * turn.sine + from.y * turn.cosine};
      const double printedRadius = distance(element.start, element.corner);
      const double beyond = (turned.x * to.y - turned.y * to.x) / (printedRadius * printedRadius);
      element.length = printedRadius * (nominalLength / std::abs(radius) + (radius > 0 ? beyond : -beyond));
      break;
    }
    case Kind::Clothoid: {
      const double along0 = ((end.place.x - start.place.x) * end.sine - (end.place.y - start.place.y) * end.cosine) /
                            (start.cosine * end.sine - start.sine * end.cosine);
      element.corner = rounded(start.at(0.0, along0));
      break;
    }
  }
  next_ = element.end;
  heading_ = end.heading;
  endStation_ += element.length;
  elements_.push_back(element);
}

RoadPose RoadPlan::along(const Element& element, double d) {
  const double rate = element.length > 0.0 ? (element.endCurvature - element.startCurvature) / element.length : 0.0;
  const auto heading = [&](double t) { return element.heading + t * (element.startCurvature + 0.5 * rate * t); };
  if (element.kind == Kind::Line) return poseOf(poseOf(element.start, element.heading).at(0.0, d), element.heading);
  // Gauss-Legendre with five nodes over panels that turn by less than about 0.1 radian: exact to the last bits.
  static constexpr std::array<double, 5> kNodes = {-0.9061798459386640, -0.5384693101056831, 0.0, 0.5384693101056831,
                                                   0.9061798459386640};
  static constexpr std::array<double, 5> kWeights = {0.2369268850561891, 0.4786286704993665, 0.5688888888888889,
                                                     0.4786286704993665, 0.2369268850561891};
  const double sharpest = std::max(std::abs(element.startCurvature), std::abs(element.endCurvature));
  const int panels = 1 + static_cast<int>(std::abs(d) * sharpest * 10.0);
  const double half = 0.5 * d / panels;
  double x = 0.0;
  double y = 0.0;
  for (int panel = 0; panel < panels; ++panel) {
    for (std::size_t i = 0; i < kNodes.size(); ++i) {
      const SinCos direction = sinCos(heading((2 * panel + 1) * half + half * kNodes[i]));
      x += kWeights[i] * direction.cosine;
      y += kWeights[i] * direction.sine;
    }
  }
  return poseOf({element.start.x + half * x, element.start.y + half * y}, heading(d));
}

std::size_t RoadPlan::elementAt(double station) const {
  const auto after = std::upper_bound(elements_.begin() + 1, elements_.end(), station,
                                      [](double s, const Element& element) { return s < element.station; });
  return static_cast<std::size_t>(after - elements_.begin()) - 1;
}

double RoadPlan::stationOfElement(std::size_t index) const {
  return index < elements_.size() ? elements_[index].station : endStation_;
}

double RoadPlan::curvatureAt(double station) const {
  const Element& element = elements_[elementAt(station)];
  return element.startCurvature +
         (element.endCurvature - element.startCurvature) * (station - element.station) / element.length;
}

RoadPose RoadPlan::poseAt(double station) const {
  const Element& element = elements_[elementAt(station)];
  return along(element, station - element.station);
}

void RoadPlan::writeCoordGeom(TextOutput& out, std::string_view indent) const {
  out << indent << "<CoordGeom>\n";
  for (const Element& element : elements_) {
    const bool left = element.startCurvature + element.endCurvature > 0.0;
    out << indent << "  ";
    switch (element.kind) {
      case Kind::Line:
        out << "<Line length=\"";
        out.fixed(element.length, kDecimals) << "\">";
        writePlace(out, "Start", element.start);
        writePlace(out, "End", element.end);
        out << "</Line>\n";
        break;
      case Kind::Arc:
        out << "<Curve rot=\"" << (left ? "ccw" : "cw") << "\" crvType=\"arc\"";
        writeRadius(out, "radius", element.startCurvature);
        out << " length=\"";
        out.fixed(element.length, kDecimals) << "\">";
        writePlace(out, "Start", element.start);
        writePlace(out, "Center", element.corner);
        writePlace(out, "End", element.end);
        out << "</Curve>\n";
        break;
      case Kind::Clothoid:
        out << "<Spiral length=\"";
        out.fixed(element.length, kDecimals) << '"';
        writeRadius(out, "radiusStart", element.startCurvature);
        writeRadius(out, "radiusEnd", element.endCurvature);
        out << " rot=\"" << (left ? "ccw" : "cw") << "\" spiType=\"clothoid\">";
        writePlace(out, "Start", element.start);
        writePlace(out, "PI", element.corner);
        writePlace(out, "End", element.end);
        out << "</Spiral>\n";
        break;
    }
  }
  out << indent << "</CoordGeom>\n";
}

DesignProfile& DesignProfile::add(double station, double elevation, double lengthIn, double lengthOut) {
  points_.push_back({station, elevation, lengthIn, lengthOut});
  return *this;
}

double DesignProfile::grade(std::size_t from) const {
  return (points_[from + 1].elevation - points_[from].elevation) / (points_[from + 1].station - points_[from].station);
}

double DesignProfile::elevationAt(double station) const {
  const auto after = std::upper_bound(points_.begin() + 1, points_.end() - 1, station,
                                      [](double s, const Point& point) { return s < point.station; });
  const auto from = static_cast<std::size_t>(after - points_.begin()) - 1;
  const double tangent = points_[from].elevation + grade(from) * (station - points_[from].station);
  // A parabola leaves the tangent by the square of the distance from its end; at the intersection point both halves
  // meet at this height over it.
  const auto rise = [&](std::size_t i) {
    const Point& p = points_[i];
    return 0.5 * (grade(i) - grade(i - 1)) * p.lengthIn * p.lengthOut / (p.lengthIn + p.lengthOut);
  };
  if (from > 0 && points_[from].lengthOut > station - points_[from].station) {
    const double share = 1.0 - (station - points_[from].station) / points_[from].lengthOut;
    return tangent + rise(from) * share * share;
  }
  if (from + 2 < points_.size() && points_[from + 1].lengthIn > points_[from + 1].station - station) {
    const double share = 1.0 - (points_[from + 1].station - station) / points_[from + 1].lengthIn;
    return tangent + rise(from + 1) * share * share;
  }
  return tangent;
}

std::vector<double> DesignProfile::stations() const {
  std::vector<double> all;
  for (const Point& point : points_) {
    if (point.lengthIn > 0.0) all.push_back(point.station - point.lengthIn);
    all.push_back(point.station);
    if (point.lengthOut > 0.0) all.push_back(point.station + point.lengthOut);
  }
  std::sort(all.begin(), all.end());
  return all;
}

void DesignProfile::writePoints(TextOutput& out, std::string_view indent) const {
  for (const Point& point : points_) {
    std::string_view tag = "PVI";
    out << indent << '<';
    if (point.lengthIn == 0.0) {
      out << tag << '>';
    } else if (point.lengthIn == point.lengthOut) {
      tag = "ParaCurve";
      out << tag << " length=\"";
      out.number(point.lengthIn + point.lengthOut, 6) << "\">";
    } else {
      tag = "UnsymParaCurve";
      out << tag << " lengthIn=\"";
      out.number(point.lengthIn, 6) << "\" lengthOut=\"";
      out.number(point.lengthOut, 6) << "\">";
    }
    out.number(point.station, 6) << ' ';
    out.number(point.elevation, 4) << "</" << tag << ">\n";
  }
}

}  // namespace lvx::generator

#include "landxml/detail/profile_reader.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::VerticalCurveKind;
using civil::VerticalPoint;

namespace {

/// Stations where the curve at point `i` begins and ends, with unsymmetric lengths scaled by `scale`.
std::pair<double, double> curveRange(const std::vector<VerticalPoint>& points, std::size_t i, double scale) {
  const VerticalPoint& p = points[i];
  double before = 0.0;
  double after = 0.0;
  switch (p.kind) {
    case VerticalCurveKind::None:
      break;
    case VerticalCurveKind::Parabola:
      before = after = p.length / 2.0;
      break;
    case VerticalCurveKind::UnsymmetricParabola:
      before = p.length * scale;
      after = p.lengthOut * scale;
      break;
    case VerticalCurveKind::Circle: {
      if (i == 0 || i + 1 == points.size()) break;
      const auto grade = [&](std::size_t a) {
        return (points[a + 1].elevation - points[a].elevation) / (points[a + 1].station - points[a].station);
      };
      const double half = std::abs(p.radius) * std::abs(grade(i) - grade(i - 1)) / 2.0;
      if (std::isfinite(half)) before = after = half;
      break;
    }
  }
  return {p.station - before, p.station + after};
}

/// One exporter writes both lengths of an unsymmetric curve twice as long as they are. Curves that as written overlap
/// their neighbours, and halved don't, are taken for that.
std::vector<std::size_t> halveDoubledCurves(std::vector<VerticalPoint>& points) {
  const auto overlaps = [&](std::size_t i, double scale, const std::vector<char>& halved) {
    constexpr double kRounding = 1e-3;
    const auto range = curveRange(points, i, scale);
    const auto neighbour = [&](std::size_t n) { return curveRange(points, n, halved[n] ? 0.5 : 1.0); };
    return (i > 0 && range.first < neighbour(i - 1).second - kRounding) ||
           (i + 1 < points.size() && range.second > neighbour(i + 1).first + kRounding);
  };
  std::vector<char> candidates(points.size(), 0);
  const std::vector<char> none(points.size(), 0);
  for (std::size_t i = 0; i < points.size(); ++i) {
    candidates[i] = points[i].kind == VerticalCurveKind::UnsymmetricParabola && overlaps(i, 1.0, none);
  }
  std::vector<std::size_t> halved;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (candidates[i] && !overlaps(i, 0.5, candidates)) halved.push_back(i);
  }
  for (const std::size_t i : halved) {
    points[i].length /= 2.0;
    points[i].lengthOut /= 2.0;
  }
  return halved;
}

civil::Profile readDesign(Context& context, Node node, const std::string& speaker) {
  std::vector<VerticalPoint> points;
  std::size_t count = 0;
  eachElement(node, [&](Node element) {
    const std::string name(localName(element));
    if (name == "Feature") return;
    const std::string who = speaker + ": " + name + " " + std::to_string(++count);
    VerticalPoint point;
    const auto length = [&](const char* attributeName) {
      const double value =
          context.number(element, attributeName, who, {"taken as 0", civil::Severity::Error}).value_or(0.0);
      if (value >= 0.0) return value;
      context.warn(element, who + ": " + attributeName + " is negative; taken as positive");
      return -value;
    };
    if (name == "PVI") {
    } else if (name == "ParaCurve") {
      point.kind = VerticalCurveKind::Parabola;
      point.length = length("length");
    } else if (name == "UnsymParaCurve") {
      point.kind = VerticalCurveKind::UnsymmetricParabola;
      point.length = length("lengthIn");
      point.lengthOut = length("lengthOut");
    } else if (name == "CircCurve") {
      point.kind = VerticalCurveKind::Circle;
      // The radius rules; a length that it doesn't need is no loss.
      point.length =
          std::abs(context.number(element, "length", who, {"the radius counts", civil::Severity::Note}).value_or(0.0));
      point.radius = context.number(element, "radius", who, {"taken as 0", civil::Severity::Error}).value_or(0.0);
    } else {
      context.warn(element, who + ": isn't a point of a profile that is known; left out");
      return;
    }
    const auto values = context.numbers(element, who);
    if (values.size() != 2) {
      context.error(element, who + ": doesn't hold a station and an elevation; left out");
      return;
    }
    point.station = values[0];
    point.elevation = values[1];
    points.push_back(point);
  });
  std::stable_sort(points.begin(), points.end(),
                   [](const VerticalPoint& a, const VerticalPoint& b) { return a.station < b.station; });
  for (const std::size_t i : halveDoubledCurves(points)) {
    context.warn(node, speaker + ": unsymmetric curve at " + shownNumber(points[i].station) +
                           ": its lengths overlap the neighbours and fit when halved; they are halved");
  }
  if (points.empty()) context.warn(node, speaker + ": has no points; it is kept empty");
  return civil::Profile::design(std::move(points));
}

civil::Profile readGround(Context& context, Node node, const std::string& speaker) {
  std::vector<std::vector<civil::ProfilePoint>> polylines;
  eachChild(node, "PntList2D", [&](Node list) {
    std::vector<civil::ProfilePoint> polyline;
    polyline.reserve(countWords(list) / 2);
    std::optional<double> station;
    const bool isGood = context.eachNumber(list, speaker, [&](double value) {
      if (station)
        polyline.push_back({*std::exchange(station, std::nullopt), value});
      else
        station = value;
    });
    if (!isGood) return;
    if (station) {
      context.warn(list, speaker + ": a list holds an odd count of numbers; the last one is left out");
    }
    if (!polyline.empty()) polylines.push_back(std::move(polyline));
  });
  if (polylines.empty()) context.warn(node, speaker + ": has no points; it is kept empty");
  return civil::Profile::ground(std::move(polylines));
}

}  // namespace

std::vector<civil::ProfileObject> readProfiles(Context& context, Node alignment, const std::string& speaker) {
  std::vector<civil::ProfileObject> profiles;
  eachChild(alignment, "Profile", [&](Node collection) {
    eachElement(collection, [&](Node node) {
      const bool isDesign = isNamed(node, "ProfAlign");
      if (!isDesign && !isNamed(node, "ProfSurf")) return;
      civil::ProfileObject object;
      object.name = attributeText(node, "name");
      object.description = attributeText(node, "desc");
      const auto given = property(feature(node, "lvx_object"), "handle");
      object.handle = context.ticket(node, given);
      const Context::Subject subject(context, object.handle);
      const std::string who = speaker + ": profile '" + object.name + "'";
      object.profile = isDesign ? readDesign(context, node, who) : readGround(context, node, who);
      for (const std::string& warning : object.profile.warnings()) context.warn(node, who + ": " + warning);
      profiles.push_back(std::move(object));
    });
  });
  profiles.shrink_to_fit();
  return profiles;
}

}  // namespace lvx::landxml::detail

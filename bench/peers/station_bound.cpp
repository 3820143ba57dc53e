// The bound of station and offset: every probe solved on the one element that it belongs to, which a plain search over all
// elements found beforehand, outside of the time.
//
//   peer_station_bound data=FOLDER [runs=3]
#include "station.h"

namespace lvx::peers {
namespace {

struct Foot {
  double square = 1e300;  ///< of the distance
  double distance = 0.0;  ///< along the alignment
  CurvePose pose;
  std::size_t element = 0;
};

/// The foot of the perpendicular on an element, or its nearer end.
Foot footOn(const CurveElement& element, Xy p) {
  const double px = p.x - element.x;
  const double py = p.y - element.y;
  const double c = std::cos(element.direction);
  const double s = std::sin(element.direction);
  double d = px * c + py * s;
  if (element.kind == CurveKind::Arc) {
    const double radius = 1 / element.startCurvature;
    const double sign = std::copysign(1.0, radius);
    d = radius * std::atan2(sign * d, sign * (radius - (py * c - px * s)));
  } else if (element.kind != CurveKind::Line) {
    d = std::clamp(d, 0.0, element.length);
    for (int i = 0; i < 20; ++i) {  // Newton on the slope of the squared distance
      const CurvePose at = poseAt(element, d);
      const double ct = std::cos(at.direction), st = std::sin(at.direction), x = p.x - at.x, y = p.y - at.y;
      const double bend = 1 - curvatureAt(element, d) * (y * ct - x * st);
      const double next = std::clamp(d + (x * ct + y * st) / std::max(bend, 0.05), 0.0, element.length);
      const bool isSettled = std::abs(next - d) < 1e-10;
      d = next;
      if (isSettled) break;
    }
  }
  d = std::clamp(d, 0.0, element.length);
  const CurvePose pose = poseAt(element, d);
  return {(p.x - pose.x) * (p.x - pose.x) + (p.y - pose.y) * (p.y - pose.y), element.distance + d, pose, 0};
}

StationOffset answer(const Foot& foot, Xy p) {
  const double left =
      std::cos(foot.pose.direction) * (p.y - foot.pose.y) - std::sin(foot.pose.direction) * (p.x - foot.pose.x);
  return {kStartStation + foot.distance, std::copysign(std::sqrt(foot.square), -left)};
}

/// All elements between whose end normals the probe lies, or all where it lies between none.
std::size_t elementOf(const std::vector<CurveElement>& elements, const std::vector<CurvePose>& ends, Xy p) {
  Foot best;
  for (const bool isPruned : {true, false}) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
      const CurveElement& e = elements[i];
      const bool mayHold =
          (p.x - e.x) * std::cos(e.direction) + (p.y - e.y) * std::sin(e.direction) >= -1e-9 &&
          (p.x - ends[i].x) * std::cos(ends[i].direction) + (p.y - ends[i].y) * std::sin(ends[i].direction) <= 1e-9;
      if (isPruned && !mayHold) continue;
      if (Foot foot = footOn(e, p); foot.square < best.square) {
        best = foot;
        best.element = i;
      }
    }
    if (best.square < 1e300) break;
  }
  return best.element;
}

void answerAll(const Arguments& arguments) {
  const std::string folder = arguments.text("data");
  const auto elements = readItems<CurveElement>(folder + "/alignment.f64");
  const auto probes = readItems<Xy>(folder + "/probes.f64");
  std::vector<CurvePose> ends;
  for (const CurveElement& element : elements) ends.push_back(poseAt(element, element.length));
  std::vector<std::size_t> right(probes.size());
  for (std::size_t i = 0; i < probes.size(); ++i) right[i] = elementOf(elements, ends, probes[i]);
  measureStations(Line("right element known", "station_offset"), arguments, probes.size(),
                  [&](std::size_t i) { return answer(footOn(elements[right[i]], probes[i]), probes[i]); });
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::answerAll); }

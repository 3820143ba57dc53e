#include "generator/valley_ground.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "generator/deterministic.h"

namespace lvx::generator {
namespace {

constexpr double kSpacing = 4.0;
constexpr double kMargin = 130.0;
constexpr std::uint64_t kSeed = 2026;

double sine(double angle) { return sinCos(angle).sine; }

/// A hill of the given height; half of it at 0.64 of the radius.
double hill(Place p, Place top, double radius, double height) {
  const double distance2 = (p.x - top.x) * (p.x - top.x) + (p.y - top.y) * (p.y - top.y);
  const double q = 1.0 + distance2 / (radius * radius);
  return height / (q * q);
}

/// North coordinate of the brook at an east coordinate: a smooth curve through points of its bed. It passes under the
/// road at the bridge.
double brookAt(double x) {
  static constexpr std::array<Place, 12> kBed = {
      Place{48'000.0, 12'215.0}, Place{48'100.0, 12'220.0}, Place{48'210.0, 12'238.0}, Place{48'440.0, 12'272.0},
      Place{48'560.0, 12'250.0}, Place{48'680.0, 12'190.0}, Place{48'790.0, 12'120.0}, Place{48'880.0, 12'062.0},
      Place{48'960.0, 12'050.0}, Place{49'040.0, 12'095.0}, Place{49'170.0, 12'190.0}, Place{49'400.0, 12'360.0}};
  std::size_t i = 1;
  while (i + 3 < kBed.size() && x > kBed[i + 1].x) ++i;
  const Place from = kBed[i];
  const Place to = kBed[i + 1];
  const double width = to.x - from.x;
  const double slopeIn = (to.y - kBed[i - 1].y) / (to.x - kBed[i - 1].x);
  const double slopeOut = (kBed[i + 2].y - from.y) / (kBed[i + 2].x - from.x);
  const double t = (x - from.x) / width;
  const double u = 1.0 - t;
  return u * u * ((1.0 + 2.0 * t) * from.y + t * width * slopeIn) +
         t * t * ((1.0 + 2.0 * u) * to.y - u * width * slopeOut);
}

/// The land: a valley that rises to the east, its flanks, hills, and small unevenness.
double landElevation(Place p) {
  const double x = p.x - 48'200.0;
  const double y = p.y - 12'150.0;
  const double acrossBrook = p.y - brookAt(p.x);
  const double flank = std::sqrt(acrossBrook * acrossBrook + 900.0) - 30.0;
  return 402.0 + 0.014 * x + 0.055 * flank + 0.012 * acrossBrook + hill(p, {48'560.0, 12'390.0}, 110.0, 11.0) +
         hill(p, {48'690.0, 11'990.0}, 100.0, 12.0) + hill(p, {49'010.0, 12'270.0}, 90.0, 3.0) +
         hill(p, {48'330.0, 12'080.0}, 80.0, 7.0) + 0.5 * sine(x / 31.0 + 0.4) * sine(y / 27.0) +
         0.25 * sine((x + y) / 13.0);
}

/// Where a place lies along a road, by the nearest of its points every 2 m: good enough to draw borders with.
class RoadSide {
 public:
  explicit RoadSide(const RoadPlan& plan) : plan_(plan) {
    for (double s = plan.startStation(); s < plan.endStation(); s += 2.0) poses_.push_back(plan.poseAt(s));
    poses_.push_back(plan.poseAt(plan.endStation()));
  }
  struct At {
    double station;
    double offset;  ///< negative on the left
    double distance;
  };
  [[nodiscard]] At operator()(Place p) const {
    std::size_t nearest = 0;
    double least = 1e300;
    for (std::size_t i = 0; i < poses_.size(); ++i) {
      const double dx = p.x - poses_[i].place.x;
      const double dy = p.y - poses_[i].place.y;
      if (dx * dx + dy * dy < least) {
        least = dx * dx + dy * dy;
        nearest = i;
      }
    }
    const RoadPose& pose = poses_[nearest];
    const double dx = p.x - pose.place.x;
    const double dy = p.y - pose.place.y;
    return {plan_.startStation() + 2.0 * static_cast<double>(nearest) + dx * pose.cosine + dy * pose.sine,
            dx * pose.sine - dy * pose.cosine, std::sqrt(least)};
  }

 private:
  const RoadPlan& plan_;
  std::vector<RoadPose> poses_;
};

bool isBetween(double value, double low, double high) { return low <= value && value <= high; }

/// How far from the road the survey reaches.
double surveyedWidth(double station, bool left) {
  const double side = left ? 1.3 : 0.0;
  return 74.0 + 15.0 * sine(station / 61.0 + 2.0 * side) + 9.0 * sine(station / 17.0 + side) +
         4.0 * sine(station / 7.0 + 3.0 * side);
}

}  // namespace

ValleyGround::ValleyGround(const RoadPlan& road, const RoadPlan& lane) {
  double east = -1e300;
  double north = -1e300;
  west_ = south_ = 1e300;
  for (double s = road.startStation(); s <= road.endStation(); s += 5.0) {
    const Place p = road.poseAt(s).place;
    west_ = std::min(west_, p.x);
    south_ = std::min(south_, p.y);
    east = std::max(east, p.x);
    north = std::max(north, p.y);
  }
  for (double s = lane.startStation(); s <= lane.endStation(); s += 5.0) {
    const Place p = lane.poseAt(s).place;
    south_ = std::min(south_, p.y);
    north = std::max(north, p.y);
  }
  west_ = std::floor(west_ - kMargin);
  south_ = std::floor(south_ - kMargin);
  columns_ = static_cast<std::size_t>((east + kMargin - west_) / kSpacing);
  rows_ = static_cast<std::size_t>((north + kMargin - south_) / kSpacing);

  const RoadSide besideRoad(road);
  const RoadSide besideLane(lane);
  const RoadPose pond = road.poseAt(1695.0);
  const auto coverOf = [&](Place p) {
    // The mill pond lies along the road, on its left side.
    const double dx = p.x - pond.at(-36.0).x;
    const double dy = p.y - pond.at(-36.0).y;
    const double along = (dx * pond.cosine + dy * pond.sine) / 26.0;
    const double across = (dx * pond.sine - dy * pond.cosine) / 13.0;
    if (along * along + across * across < 1.0) return Cover::Outside;

    const RoadSide::At at = besideRoad(p);
    if (isBetween(at.station, road.startStation() - 14.0, road.endStation() + 14.0) && at.distance < 140.0) {
      const double offset = std::abs(at.offset);
      double width = surveyedWidth(at.station, at.offset < 0.0);
      if (at.offset < 0.0 && isBetween(at.station, 1225.0, 1342.0)) {
        // An orchard whose owner let nobody in; at its far end it is open to the outside.
        if (at.station > 1252.0 && offset > 27.0 && (offset < 44.0 || at.station > 1326.0)) return Cover::Hidden;
        width = 76.0;
      } else if (at.offset < 0.0 && isBetween(at.station, 1655.0, 1735.0)) {
        width = std::max(width, 66.0);  // all around the pond
      } else if (at.offset > 0.0 && isBetween(at.station, 1846.0, 1935.0)) {
        // A timber yard, open to the outside at its near end.
        if (at.station < 1912.0 && offset > 31.0 && (offset < 48.0 || at.station < 1860.0)) return Cover::Outside;
        width = 76.0;
      }
      if (offset < width) return Cover::Ground;
    }
    const RoadSide::At atLane = besideLane(p);
    if (atLane.distance < 42.0 + 7.0 * sine(atLane.station / 19.0 + (atLane.offset < 0.0 ? 0.0 : 2.0)) +
                              4.0 * sine(atLane.station / 5.0)) {
      return Cover::Ground;
    }
    return Cover::Outside;
  };

  vertices_.reserve((columns_ + 1) * (rows_ + 1));
  for (std::size_t row = 0; row <= rows_; ++row) {
    for (std::size_t column = 0; column <= columns_; ++column) {
      const std::uint64_t index = vertices_.size();
      const double shiftX = 0.5 * (noise(kSeed, 2 * index) - 0.5);
      const double shiftY = 0.5 * (noise(kSeed, 2 * index + 1) - 0.5);
      const Place p{roundedTo(west_ + kSpacing * (static_cast<double>(column) + shiftX), 3),
                    roundedTo(south_ + kSpacing * (static_cast<double>(row) + shiftY), 3)};
      const double z = landElevation(p) + 0.12 * (noise(kSeed + 1, index) - 0.5);
      vertices_.push_back({p.x, p.y, roundedTo(z, 3), coverOf(p)});
    }
  }
}

ValleyGround::Face ValleyGround::face(std::size_t a, std::size_t b, std::size_t c) const {
  // A face is ground where all three points are, hidden where it reaches into the orchard, and isn't there otherwise.
  return {a, b, c, std::min({vertices_[a].cover, vertices_[b].cover, vertices_[c].cover})};
}

ValleyGround::CellFaces ValleyGround::facesOf(std::size_t column, std::size_t row) const {
  const std::size_t a = row * (columns_ + 1) + column;
  const std::size_t b = a + 1;
  const std::size_t d = a + columns_ + 1;
  const std::size_t c = d + 1;
  const auto distance2 = [&](std::size_t i, std::size_t j) {
    const double dx = vertices_[i].x - vertices_[j].x;
    const double dy = vertices_[i].y - vertices_[j].y;
    return dx * dx + dy * dy;
  };
  if (distance2(a, c) <= distance2(b, d)) return {face(a, b, c), face(a, c, d)};
  return {face(a, b, d), face(b, c, d)};
}

std::optional<double> ValleyGround::elevationIn(const Face& f, Place p) const {
  const Vertex& a = vertices_[f.a];
  const Vertex& b = vertices_[f.b];
  const Vertex& c = vertices_[f.c];
  const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
  const double shareB = ((p.x - a.x) * (c.y - a.y) - (c.x - a.x) * (p.y - a.y)) / area;
  const double shareC = ((b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y)) / area;
  if (f.cover != Cover::Ground || shareB < 0.0 || shareC < 0.0 || shareB + shareC > 1.0) return std::nullopt;
  return a.z + shareB * (b.z - a.z) + shareC * (c.z - a.z);
}

std::optional<double> ValleyGround::elevationAt(Place p) const {
  const double column = (p.x - west_) / kSpacing;
  const double row = (p.y - south_) / kSpacing;
  if (column < 1.0 || row < 1.0) return std::nullopt;
  // Vertices lie up to a quarter of a cell beside their grid point, so a place may be in a neighbour's triangle.
  for (std::size_t r = static_cast<std::size_t>(row) - 1; r <= static_cast<std::size_t>(row) + 1 && r < rows_; ++r) {
    for (std::size_t c = static_cast<std::size_t>(column) - 1; c <= static_cast<std::size_t>(column) + 1; ++c) {
      if (c >= columns_) break;
      const CellFaces faces = facesOf(c, r);
      if (const auto z = elevationIn(faces.first, p)) return z;
      if (const auto z = elevationIn(faces.second, p)) return z;
    }
  }
  return std::nullopt;
}

void ValleyGround::write(TextOutput& out, const char* indent) const {
  std::vector<Face> faces;
  std::vector<std::int32_t> ids(vertices_.size(), 0);
  for (std::size_t row = 0; row < rows_; ++row) {
    for (std::size_t column = 0; column < columns_; ++column) {
      const CellFaces cell = facesOf(column, row);
      for (const Face& f : {cell.first, cell.second}) {
        if (f.cover == Cover::Outside) continue;
        faces.push_back(f);
        ids[f.a] = ids[f.b] = ids[f.c] = 1;
      }
    }
  }
  out << indent << "<Pnts>\n";
  std::int32_t next = 1;
  for (std::size_t i = 0; i < vertices_.size(); ++i) {
    if (ids[i] == 0) continue;
    ids[i] = next++;
    out << "<P id=\"";
    out.integer(ids[i]) << "\">";
    (out.fixed(vertices_[i].y, 3) << ' ').fixed(vertices_[i].x, 3) << ' ';
    out.fixed(vertices_[i].z, 3) << "</P>\n";
  }
  out << indent << "</Pnts>\n" << indent << "<Faces>\n";
  for (const Face& f : faces) {
    out << (f.cover == Cover::Hidden ? "<F i=\"1\">" : "<F>");
    (out.integer(ids[f.a]) << ' ').integer(ids[f.b]) << ' ';
    out.integer(ids[f.c]) << "</F>\n";
  }
  out << indent << "</Faces>\n";
}

}  // namespace lvx::generator

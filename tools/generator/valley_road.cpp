#include "generator/valley_road.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "generator/deterministic.h"
#include "generator/drawing_text.h"
#include "generator/road_geometry.h"
#include "generator/valley_ground.h"

namespace lvx::generator {
namespace {

// Handles, by kind; nothing depends on their values but that they differ.
constexpr std::uint64_t kSiteHandle = 0x100;
constexpr std::uint64_t kSurfaceHandle = 0x110;
constexpr std::uint64_t kRoadHandle = 0x120;
constexpr std::uint64_t kLaneHandle = 0x130;
constexpr std::uint64_t kTrackHandle = 0x140;
constexpr std::uint64_t kCorridorHandle = 0x150;
constexpr std::uint64_t kFirstPointGroupHandle = 0x160;
constexpr std::uint64_t kFirstLineHandle = 0x200;
constexpr std::uint64_t kFirstPointHandle = 0x400;
/// Beside an alignment's own handle.
constexpr std::uint64_t kGroundProfile = 1;
constexpr std::uint64_t kDesignProfile = 2;

constexpr double kRegionBorder = 1540.0;
constexpr double kBridgeStart = 1690.0;
constexpr int kBridgeLines = 12;  ///< 5 m apart, after the first
constexpr std::string_view kOpenRoadSections = "Valley road | Main baseline | Open road";
constexpr std::string_view kVillageSections = "Valley road | Main baseline | Village";

RoadPlan valleyRoad() {
  RoadPlan plan(1000.0, {48'210.5, 12'180.25}, 14.0);
  plan.line(128.4).clothoid(75.0, 0.0, -300.0).arc(168.3, -300.0).clothoid(75.0, -300.0, 0.0).line(96.2);
  // A bend of two radii: the clothoid between them runs from 200 to 450 without becoming straight.
  plan.clothoid(72.0, 0.0, 200.0).arc(143.6, 200.0).clothoid(62.5, 200.0, 450.0).arc(90.0, 450.0);
  plan.clothoid(72.0, 450.0, 0.0).line(110.0);
  return plan;
}

DesignProfile valleyRoadProfile() {
  DesignProfile profile;
  // Ends a little after the road does, so that the last station stands on a tangent.
  profile.add(1000.0, 404.6)
      .add(1140.0, 405.86, 50.0, 50.0)
      .add(1340.0, 408.56, 40.0, 40.0)
      .add(1580.0, 413.36, 70.0, 70.0)
      .add(1690.0, 412.92, 40.0, 60.0)
      .add(1850.0, 415.8, 30.0, 30.0)
      .add(2000.0, 419.25, 40.0, 40.0)
      .add(2100.0, 421.05);
  return profile;
}

RoadPlan millLane(const RoadPlan& road) {
  // Leaves the road to the left on the straight between its bends.
  const RoadPose junction = road.poseAt(1495.0);
  RoadPlan plan(0.0, junction.place, junction.heading * 180.0 / kPi + 82.0);
  plan.line(34.0).clothoid(45.0, 0.0, -125.0).arc(58.0, -125.0).clothoid(45.0, -125.0, 0.0).line(28.5);
  plan.clothoid(40.0, 0.0, 90.0).arc(36.0, 90.0).clothoid(40.0, 90.0, 0.0).line(24.0);
  return plan;
}

RoadPlan forestTrack(const RoadPlan& road) {
  // Starts beside the bridge and leaves the surveyed strip, so its ground profile ends before it does.
  RoadPlan plan(0.0, road.poseAt(1780.0).at(9.0), 8.0);
  plan.line(42.0).arc(38.0, -60.0).line(55.0);
  return plan;
}

// ---------------------------------------------------------------- the road across

/// A value that runs linearly between given stations and stays constant outside.
class Course {
 public:
  Course& at(double station, double value) {
    points_.push_back({station, value});
    return *this;
  }
  [[nodiscard]] double operator()(double station) const {
    if (station <= points_.front().x) return points_.front().y;
    for (std::size_t i = 1; i < points_.size(); ++i) {
      const Place from = points_[i - 1];
      const Place to = points_[i];
      if (station <= to.x) return from.y + (to.y - from.y) * (station - from.x) / (to.x - from.x);
    }
    return points_.back().y;
  }

 private:
  std::vector<Place> points_;  // station, value
};

constexpr double kCrownFall = 0.025;
constexpr double kLaneWidth = 3.5;

/// Cross-falls and widths of the carriageway. A rise is the slope outwards from the crown: -0.025 falls away from it.
struct Carriageway {
  explicit Carriageway(const RoadPlan& plan) {
    const auto bound = [&](std::size_t element) { return plan.stationOfElement(element); };
    // The outer lane turns up along the first clothoid of a bend and back along the last; the inner one follows once
    // the outer is steeper than the crown's fall.
    outerRise.at(bound(1), -kCrownFall).at(bound(2), 0.04).at(bound(3), 0.04).at(bound(4), -kCrownFall);
    outerRise.at(bound(5), -kCrownFall).at(bound(6), 0.06).at(bound(7), 0.06);
    outerRise.at(bound(8), 0.035).at(bound(9), 0.035).at(bound(10), -kCrownFall);
    innerWidening.at(bound(1), 0.0).at(bound(2), 0.3).at(bound(3), 0.3).at(bound(4), 0.0);
    innerWidening.at(bound(5), 0.0).at(bound(6), 0.45).at(bound(7), 0.45);
    innerWidening.at(bound(8), 0.2).at(bound(9), 0.2).at(bound(10), 0.0);
    // A bus bay on the right.
    rightWidening.at(1990.0, 0.0).at(2010.0, 2.75).at(2040.0, 2.75).at(2060.0, 0.0);
    bendsChange = 0.5 * (bound(4) + bound(5));
  }

  struct Side {
    double width;
    double rise;
  };
  [[nodiscard]] Side left(double station) const { return side(station, station < bendsChange, 0.0); }
  [[nodiscard]] Side right(double station) const {
    return side(station, station >= bendsChange, rightWidening(station));
  }

  Course outerRise;
  Course innerWidening;
  Course rightWidening;
  double bendsChange = 0.0;

 private:
  [[nodiscard]] Side side(double station, bool isOuter, double widening) const {
    const double outer = outerRise(station);
    if (isOuter) return {kLaneWidth + widening, outer};
    return {kLaneWidth + innerWidening(station) + widening, std::min(-kCrownFall, -outer)};
  }
};

class CorridorWriter {
 public:
  CorridorWriter(TextOutput& out, const RoadPlan& plan, const DesignProfile& profile, const ValleyGround& ground)
      : out_(out), plan_(plan), profile_(profile), ground_(ground), road_(plan) {}

  void writeRegion(std::string_view name, const std::vector<double>& stations, bool isVillage) {
    out_ << "      <CrossSects name=\"" << name << "\">\n";
    for (const double station : stations) writeSection(station, isVillage);
    out_ << "        <Feature code=\"lvx_corridorSections\" source=\"lvx\">";
    writeProperty(out_, "elevation", "absolute");
    out_ << "</Feature>\n      </CrossSects>\n";
  }

 private:
  struct Point {
    std::string_view codes;
    double offset;
    double elevation;
  };

  void part(std::string_view codes, std::string_view side, bool isClosed, std::initializer_list<Point> points) {
    out_ << "          <DesignCrossSectSurf name=\"" << codes << "\" side=\"" << side << '"'
         << (isClosed ? " closedArea=\"true\">" : ">");
    for (const Point& point : points) {
      out_ << "<CrossSectPnt code=\"" << point.codes << "\">";
      (out_.number(point.offset, 4) << ' ').number(point.elevation, 4) << "</CrossSectPnt>";
    }
    out_ << "</DesignCrossSectSurf>\n";
  }

  /// From the edge of the formation to the ground: 1 in 1.5 in cut and fill, 2 m of it where no ground is met.
  [[nodiscard]] Place daylight(const RoadPose& pose, Place hinge, double sign) const {
    const auto below = [&](double distance) -> std::optional<double> {
      const auto ground = ground_.elevationAt(pose.at(hinge.x + sign * distance));
      if (!ground) return std::nullopt;
      return *ground - hinge.y;
    };
    const auto first = below(0.0);
    const Place unmet{hinge.x + sign * 2.0, hinge.y - 2.0 / 1.5};
    if (!first) return unmet;
    const double slope = *first > 0.0 ? 1.0 / 1.5 : -1.0 / 1.5;
    double before = *first;
    for (double distance = 0.25; distance < 30.0; distance += 0.25) {
      const auto ground = below(distance);
      if (!ground) return unmet;
      const double gap = *ground - slope * distance;
      if ((gap > 0.0) != (*first > 0.0)) {
        const double met = distance - 0.25 * gap / (gap - before);
        return {hinge.x + sign * met, hinge.y + slope * met};
      }
      before = gap;
    }
    return unmet;
  }

  void slope(const RoadPose& pose, Place hinge, double sign) {
    const Place toe = daylight(pose, hinge, sign);
    part("Slope", sign < 0.0 ? "left" : "right", false, {{"Hinge", hinge.x, hinge.y}, {"Daylight", toe.x, toe.y}});
  }

  void writeSection(double station, bool isVillage) {
    const RoadPose pose = plan_.poseAt(station);
    const double crown = profile_.elevationAt(station);
    const Carriageway::Side left = road_.left(station);
    const Carriageway::Side right = road_.right(station);
    const Place edgeLeft{-left.width, crown + left.width * left.rise};
    const Place edgeRight{right.width, crown + right.width * right.rise};

    out_ << "        <CrossSect sta=\"";
    out_.number(station, 6) << "\">\n";
    if (isVillage) {
      // The village part carries German code names too, as drawings do that pass between offices.
      part("Pave,Top,Belag", "both", false,
           {{"ETW,Fahrspurrand_Außen", edgeLeft.x, edgeLeft.y},
            {"Crown", 0.0, crown},
            {"ETW,Fahrspurrand_Außen", edgeRight.x, edgeRight.y}});
    } else {
      part("Pave,Top", "both", false,
           {{"ETW", edgeLeft.x, edgeLeft.y}, {"Crown", 0.0, crown}, {"ETW", edgeRight.x, edgeRight.y}});
    }
    constexpr double kBound = 0.24;    // depth of the bound layers
    constexpr double kSubbase = 0.36;  // and of the subbase below
    part("Base", "both", true,
         {{"ETW", edgeLeft.x, edgeLeft.y},
          {"Crown", 0.0, crown},
          {"ETW", edgeRight.x, edgeRight.y},
          {"ETW_Base", edgeRight.x, edgeRight.y - kBound},
          {"Crown_Base", 0.0, crown - kBound},
          {"ETW_Base", edgeLeft.x, edgeLeft.y - kBound}});
    part("Subbase,Datum", "both", false,
         {{"Daylight_Sub", edgeLeft.x - 0.9, edgeLeft.y + 0.9 * left.rise - kBound - kSubbase},
          {"Crown_Sub", 0.0, crown - kBound - kSubbase},
          {"Daylight_Sub", edgeRight.x + 0.9, edgeRight.y + 0.9 * right.rise - kBound - kSubbase}});
    if (isVillage) {
      const auto kerb = [&](Place edge, double sign) {
        part("Curb", sign < 0.0 ? "left" : "right", true,
             {{"Flowline_Gutter", edge.x, edge.y},
              {"Top_Curb", edge.x, edge.y + 0.12},
              {"Back_Curb", edge.x + sign * 0.15, edge.y + 0.12},
              {"Base_Curb", edge.x + sign * 0.15, edge.y - 0.2}});
      };
      const auto walk = [&](Place edge, double sign, double width) {
        const Place inner{edge.x + sign * 0.15, edge.y + 0.12};
        const Place outer{inner.x + sign * width, inner.y + 0.02 * width};
        part("Sidewalk", sign < 0.0 ? "left" : "right", false,
             {{"Sidewalk_In", inner.x, inner.y}, {"Sidewalk_Out", outer.x, outer.y}});
        return outer;
      };
      kerb(edgeLeft, -1.0);
      kerb(edgeRight, 1.0);
      const Place walkLeft = walk(edgeLeft, -1.0, 1.5);
      const Place walkRight = walk(edgeRight, 1.0, 2.0);
      slope(pose, walkLeft, -1.0);
      slope(pose, walkRight, 1.0);
    } else {
      const auto shoulder = [&](Place edge, double sign) {
        const Place outer{edge.x + sign * 1.5, edge.y - 0.12 * 1.5};
        part("Shoulder", sign < 0.0 ? "left" : "right", false,
             {{"ETW", edge.x, edge.y}, {"ES_Unpaved,Hinge", outer.x, outer.y}});
        return outer;
      };
      const Place hingeLeft = shoulder(edgeLeft, -1.0);
      const Place hingeRight = shoulder(edgeRight, 1.0);
      slope(pose, hingeLeft, -1.0);
      slope(pose, hingeRight, 1.0);
    }
    out_ << "        </CrossSect>\n";
  }

  TextOutput& out_;
  const RoadPlan& plan_;
  const DesignProfile& profile_;
  const ValleyGround& ground_;
  Carriageway road_;
};

/// Every 10 m, every 5 m on the bridge, at the ends of the horizontal elements and at the points of the profile.
std::vector<double> sectionStations(const RoadPlan& plan, const DesignProfile& profile) {
  std::vector<double> all;
  for (double s = plan.startStation(); s < plan.endStation(); s += 10.0) all.push_back(s);
  for (int i = 0; i <= kBridgeLines; ++i) all.push_back(kBridgeStart + 5.0 * i);
  for (std::size_t i = 0; i <= plan.elementCount(); ++i) all.push_back(plan.stationOfElement(i));
  for (const double s : profile.stations()) {
    if (s < plan.endStation()) all.push_back(s);
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end(), [](double a, double b) { return b - a < 1e-4; }), all.end());
  return all;
}

// ---------------------------------------------------------------- sample lines

/// A place on a sample line: offset to the right, and how far ahead of the line's station.
struct Knee {
  double offset;
  double ahead;
};

class LineWriter {
 public:
  LineWriter(TextOutput& out, const RoadPlan& plan, std::uint64_t firstHandle)
      : out_(out), plan_(plan), next_(firstHandle) {}

  void begin(std::string_view group) { out_ << "      <CrossSects name=\"" << group << "\">\n"; }
  void end(std::uint64_t handle, std::string_view description) {
    out_ << "        <Feature code=\"lvx_sampleLineGroup\" source=\"lvx\">";
    writeHandleProperty(out_, handle);
    writeProperty(out_, "desc", description);
    out_ << "</Feature>\n      </CrossSects>\n";
  }

  /// Square to the alignment.
  void square(double station, double left, double right, std::string_view remark = {}) {
    write(station, 0.0, remark, {{-left, 0.0}, {0.0, 0.0}, {right, 0.0}});
  }
  /// Turned clockwise by an angle whose tangent is `slant`; `degrees` is that angle.
  void skewed(double station, double halfWidth, double slant, double degrees, std::string_view remark) {
    write(station, degrees, remark, {{-halfWidth, halfWidth * slant}, {0.0, 0.0}, {halfWidth, -halfWidth * slant}});
  }
  void bent(double station, std::string_view remark, std::initializer_list<Knee> knees) {
    write(station, 0.0, remark, knees);
  }

 private:
  void write(double station, double skew, std::string_view remark, std::initializer_list<Knee> knees) {
    const RoadPose pose = plan_.poseAt(station);
    out_ << "        <CrossSect sta=\"";
    out_.number(station, 6) << "\" name=\"";
    writeStationName(out_, station);
    if (!remark.empty()) out_ << ' ' << remark;
    out_ << '"';
    if (skew != 0.0) out_.operator<<(" angleSkew=\"").number(skew, 4) << '"';
    out_ << R"(><Feature code="lvx_sampleLine" source="lvx"><Property label="vertices" value=")";
    bool isFirst = true;
    for (const Knee& knee : knees) {
      const Place p = pose.at(knee.offset, knee.ahead);
      if (!isFirst) out_ << ' ';
      isFirst = false;
      (out_.fixed(p.y, 4) << ' ').fixed(p.x, 4);
    }
    out_ << "\"/>";
    writeHandleProperty(out_, next_++);
    out_ << "</Feature></CrossSect>\n";
  }

  TextOutput& out_;
  const RoadPlan& plan_;
  std::uint64_t next_;
};

void writeRoadLines(TextOutput& out, const RoadPlan& plan) {
  LineWriter lines(out, plan, kFirstLineHandle);
  // tan 20 degrees
  constexpr double kSlant20 = 0.36397023426620236;
  lines.begin("Cross sections 20 m");
  for (int i = 0; i * 20.0 <= plan.endStation() - plan.startStation(); ++i) {
    const double station = plan.startStation() + 20.0 * i;
    if (station == 1240.0) {
      lines.skewed(station, 55.0, kSlant20, 20.0, "culvert");
    } else if (station == 1480.0) {
      // Turns into the side road's direction on the left, and away from the fence on the right.
      lines.bent(station, "junction", {{-58.0, 12.0}, {-14.0, 0.0}, {0.0, 0.0}, {18.0, 0.0}, {50.0, -9.0}});
    } else if (station == 1940.0) {
      lines.bent(station, "retaining wall", {{-50.0, -8.0}, {-20.0, 0.0}, {0.0, 0.0}, {16.0, 0.0}, {55.0, 7.0}});
    } else {
      lines.square(station, 60.0, 60.0);
    }
  }
  lines.end(kRoadHandle + 3, "Design sections");
  lines.begin("Bridge 5 m");
  for (int i = 0; i <= kBridgeLines; ++i) lines.square(kBridgeStart + 5.0 * i, 30.0, 25.0);
  lines.end(kRoadHandle + 4, "Brook bridge, abutment to abutment");
}

// ---------------------------------------------------------------- profiles

/// The ground along an alignment every `step`, with a gap where there is no surface.
void writeGroundProfile(TextOutput& out, const RoadPlan& plan, const ValleyGround& ground, std::string_view name,
                        double step, std::uint64_t handle) {
  out << "        <ProfSurf name=\"" << name << "\">\n";
  bool isOpen = false;
  const auto put = [&](double station) {
    const auto z = ground.elevationAt(plan.poseAt(station).place);
    if (z.has_value() != isOpen) out << (isOpen ? "</PntList2D>\n" : "          <PntList2D>");
    if (z) {
      if (isOpen) out << ' ';
      (out.number(station, 6) << ' ').number(*z, 3);
    }
    isOpen = z.has_value();
  };
  for (double s = plan.startStation(); s < plan.endStation() - 0.001; s += step) put(s);
  put(plan.endStation());
  if (isOpen) out << "</PntList2D>\n";
  writeHandleFeature(out, "          ", "lvx_object", handle);
  out << "        </ProfSurf>\n";
}

void beginAlignment(TextOutput& out, const RoadPlan& plan, std::string_view name, std::string_view description) {
  out << "    <Alignment name=\"" << name << "\" length=\"";
  out.fixed(plan.endStation() - plan.startStation(), 6) << "\" staStart=\"";
  out.number(plan.startStation(), 6) << "\" desc=\"" << description << "\">\n";
  plan.writeCoordGeom(out, "      ");
}

void endAlignment(TextOutput& out, std::uint64_t handle) {
  writeHandleFeature(out, "      ", "lvx_object", handle);
  out << "    </Alignment>\n";
}

// ---------------------------------------------------------------- points

struct SurveyPoint {
  int number;
  Place place;
  std::optional<double> elevation;
  std::string_view code;
  std::string description;
  std::string name;  ///< empty where the number is the name
};

struct PointGroup {
  std::string_view name;
  std::string_view description;
  std::vector<std::string_view> codes;
};

class Survey {
 public:
  explicit Survey(const ValleyGround& ground) : ground_(ground) {}
  void startNumbersAt(int number) { next_ = number; }
  /// Left out where there is no ground: nobody measured there.
  void add(Place place, std::string_view code, std::string description, double above = 0.0, std::string name = {}) {
    const auto z = ground_.elevationAt(place);
    if (!z) return;
    points_.push_back({next_++, place, *z + above, code, std::move(description), std::move(name)});
  }
  void addWithoutElevation(Place place, std::string_view code, std::string description) {
    points_.push_back({next_++, place, std::nullopt, code, std::move(description), {}});
  }
  [[nodiscard]] const std::vector<SurveyPoint>& points() const { return points_; }

 private:
  const ValleyGround& ground_;
  std::vector<SurveyPoint> points_;
  int next_ = 1;
};

std::string twoDigits(int value) { return (value < 10 ? "0" : "") + std::to_string(value); }

Survey survey(const RoadPlan& road, const RoadPlan& lane, const ValleyGround& ground) {
  Survey all(ground);
  Random random(4711);
  for (int i = 0; i < 12; ++i) {
    const std::string name = "VR-" + twoDigits(i + 1);
    all.add(road.poseAt(1030.0 + 92.0 * i).at(i % 2 == 0 ? 8.5 : -9.0), "CP", "Control point, steel bar", 0.02, name);
  }
  all.startNumbersAt(101);
  for (int i = 0; i < 55; ++i) {
    for (const double side : {-2.9, 2.9}) {
      const double wobble = random.between(-0.25, 0.25);
      all.add(road.poseAt(1005.0 + 20.0 * i).at(side + wobble), "EP", side < 0.0 ? "Edge left" : "Edge right");
    }
  }
  all.startNumbersAt(301);
  for (int i = 0; i < 14; ++i) {
    const double side = i % 2 == 0 ? -2.2 : 2.2;
    all.add(lane.poseAt(20.0 + 24.0 * i).at(side), "EP", side < 0.0 ? "Edge left" : "Edge right");
  }
  all.startNumbersAt(401);
  constexpr std::array<std::string_view, 5> kTrees = {"Oak", "Ash", "Alder", "Willow", "Spruce"};
  for (int i = 0; i < 96; ++i) {
    const double offset = random.between(12.0, 62.0) * (random.below(2) == 0 ? -1.0 : 1.0);
    const Place place = road.poseAt(random.between(1010.0, 2080.0)).at(offset);
    const std::string_view kind = kTrees.at(random.below(5));
    all.add(place, "TR", std::string(kind) + " 0." + twoDigits(15 + static_cast<int>(random.below(60))));
  }
  all.startNumbersAt(601);
  for (int i = 0; i < 17; ++i) all.add(road.poseAt(1040.0 + 60.0 * i).at(-3.4), "MH", "Manhole, storm water", 0.01);
  for (int i = 0; i < 34; ++i) all.add(road.poseAt(1025.0 + 30.0 * i).at(i % 2 == 0 ? 3.3 : -3.3), "GU", "Gully");
  for (int i = 0; i < 5; ++i) all.add(road.poseAt(1560.0 + 100.0 * i).at(6.2), "HY", "Hydrant", 0.6);
  for (int i = 0; i < 24; ++i) all.add(road.poseAt(1020.0 + 45.0 * i).at(-8.6), "PP", "Pole, timber");
  all.startNumbersAt(801);
  for (int i = 0; i < 18; ++i) {
    // Boundary stones come from the land register: plan only.
    all.addWithoutElevation(road.poseAt(1015.0 + 62.0 * i).at(i % 2 == 0 ? 11.5 : -12.0), "BS", "Boundary stone");
  }
  all.startNumbersAt(901);
  const RoadPose mill = lane.poseAt(180.0);
  constexpr std::array<std::string_view, 4> kCorners = {"south-west", "south-east", "north-east", "north-west"};
  constexpr std::array<Place, 4> kShape = {Place{10.0, 0.0}, Place{24.0, 0.0}, Place{24.0, 17.0}, Place{10.0, 17.0}};
  for (std::size_t i = 0; i < kShape.size(); ++i) {
    all.add(mill.at(kShape.at(i).x, kShape.at(i).y), "BC", "Mill, " + std::string(kCorners.at(i)) + " corner", 0.3);
  }
  return all;
}

void writePoints(TextOutput& out, const std::vector<SurveyPoint>& points) {
  out << "  <CgPoints name=\"_All\">\n";
  for (const SurveyPoint& point : points) {
    out << "    <CgPoint name=\"";
    out.integer(point.number) << "\" code=\"" << point.code << "\" desc=\"" << point.description << '"';
    if (!point.name.empty()) out << " featureRef=\"" << point.name << '"';
    out << '>';
    (out.fixed(point.place.y, 3) << ' ').fixed(point.place.x, 3);
    if (point.elevation) (out << ' ').fixed(*point.elevation, 3);
    out << "</CgPoint>\n";
  }
  std::uint64_t handle = kFirstPointHandle;
  for (const SurveyPoint& point : points) {
    if (point.name.empty()) continue;
    out << "    <Feature name=\"" << point.name << "\" code=\"lvx_point\" source=\"lvx\">";
    writeProperty(out, "name", point.name);
    writeHandleProperty(out, handle++);
    out << "</Feature>\n";
  }
  out << "  </CgPoints>\n";

  const std::vector<PointGroup> groups = {
      {"Control points", "Steel bars of the site grid", {"CP"}},
      {"Road edge", "Edges of the present roads", {"EP"}},
      {"Trees", "Trees with trunk diameters in metres", {"TR"}},
      {"Drainage", "Manholes and gullies", {"MH", "GU"}},
      {"Utilities", "All that lies or stands along the road", {"MH", "GU", "HY", "PP"}},
      {"Boundary stones", "From the land register, without elevations", {"BS"}},
      {"Mill", "Corners of the mill", {"BC"}},
  };
  handle = kFirstPointGroupHandle;
  for (const PointGroup& group : groups) {
    out << "  <CgPoints name=\"" << group.name << "\">\n";
    for (const SurveyPoint& point : points) {
      if (std::find(group.codes.begin(), group.codes.end(), point.code) == group.codes.end()) continue;
      out << "    <CgPoint pntRef=\"";
      out.integer(point.number) << "\"/>\n";
    }
    out << "    <Feature code=\"lvx_pointGroup\" source=\"lvx\">";
    writeHandleProperty(out, handle++);
    writeProperty(out, "desc", group.description);
    out << "</Feature>\n  </CgPoints>\n";
  }
}

// ---------------------------------------------------------------- the corridor's own record

void writeRegionFeature(TextOutput& out, std::string_view name, std::string_view sections,
                        const std::vector<double>& stations) {
  out << "          <Feature name=\"" << name << "\" code=\"lvx_region\" source=\"lvx\">"
      << R"(<Property label="staStart" value=")";
  out.number(stations.front(), 6) << R"("/><Property label="staEnd" value=")";
  out.number(stations.back(), 6) << "\"/>";
  writeProperty(out, "crossSects", sections);
  out << R"(<Property label="stations" value=")";
  for (std::size_t i = 0; i < stations.size(); ++i) {
    if (i > 0) out << ' ';
    out.number(stations[i], 6);
  }
  out << "\"/></Feature>\n";
}

// ---------------------------------------------------------------- the parts of the drawing

/// The regions' stations.
struct RegionStations {
  std::vector<double> openRoad;
  std::vector<double> village;
};

RegionStations regionStations(const RoadPlan& road, const DesignProfile& design) {
  RegionStations stations;
  for (const double station : sectionStations(road, design)) {
    // Both regions hold the section at their common border.
    if (station <= kRegionBorder) stations.openRoad.push_back(station);
    if (station >= kRegionBorder) stations.village.push_back(station);
  }
  return stations;
}

void writeSites(TextOutput& out) {
  out << R"(    <Feature code="lvx_sites" source="lvx">
      <Feature name="Valley road upgrade" code="lvx_site" source="lvx">)";
  writeHandleProperty(out, kSiteHandle);
  writeProperty(out, "desc", "Road along the brook, with its side road");
  out << "</Feature>\n    </Feature>\n";
}

void writeAlignments(TextOutput& out, const RoadPlan& road, const RoadPlan& lane, const DesignProfile& design,
                     const ValleyGround& ground, const RegionStations& stations) {
  const RoadPlan track = forestTrack(road);
  out << "  <Alignments name=\"Valley road upgrade\">\n";
  beginAlignment(out, road, "Valley road", "Main road, design speed 70");
  out << "      <Profile>\n";
  writeGroundProfile(out, road, ground, "Valley road ground", 10.0, kRoadHandle + kGroundProfile);
  out << "        <ProfAlign name=\"Valley road design\">\n";
  design.writePoints(out, "          ");
  writeHandleFeature(out, "          ", "lvx_object", kRoadHandle + kDesignProfile);
  out << "        </ProfAlign>\n      </Profile>\n";
  writeRoadLines(out, road);
  CorridorWriter corridor(out, road, design, ground);
  corridor.writeRegion(kOpenRoadSections, stations.openRoad, false);
  corridor.writeRegion(kVillageSections, stations.village, true);
  endAlignment(out, kRoadHandle);

  beginAlignment(out, lane, "Mill lane", "Side road to the mill");
  out << "      <Profile>\n";
  writeGroundProfile(out, lane, ground, "Mill lane ground", 10.0, kLaneHandle + kGroundProfile);
  out << "        <ProfAlign name=\"Mill lane design\">\n";
  // The sag over the brook is a circle between grades of -3 and +6.5 per cent; its length is that of the arc.
  constexpr double kRadius = 700.0;
  out << "          <PVI>0 411.7</PVI>\n          <CircCurve length=\"";
  out.fixed(kRadius * (atanOfGrade(0.065) - atanOfGrade(-0.03)), 6) << "\" radius=\"";
  out.number(kRadius, 3) << "\">55 410.05</CircCurve>\n"
                            "          <ParaCurve length=\"80\">200 419.475</ParaCurve>\n"
                            "          <PVI>360 428.115</PVI>\n";
  writeHandleFeature(out, "          ", "lvx_object", kLaneHandle + kDesignProfile);
  out << "        </ProfAlign>\n      </Profile>\n";
  LineWriter laneLines(out, lane, kFirstLineHandle + 0x80);
  laneLines.begin("Mill lane 25 m");
  for (int i = 0; i * 25.0 <= lane.endStation(); ++i) laneLines.square(25.0 * i, 30.0, 30.0);
  laneLines.end(kLaneHandle + 3, "Side road sections");
  endAlignment(out, kLaneHandle);
  out << "  </Alignments>\n";

  out << "  <Alignments>\n";
  beginAlignment(out, track, "Forest track", "Maintenance access, outside the site");
  out << "      <Profile>\n";
  writeGroundProfile(out, track, ground, "Forest track ground", 5.0, kTrackHandle + kGroundProfile);
  out << "      </Profile>\n";
  LineWriter trackLines(out, track, kFirstLineHandle + 0xC0);
  trackLines.begin("Track 15 m");
  for (int i = 0; i * 15.0 <= track.endStation(); ++i) trackLines.square(15.0 * i, 12.0, 12.0);
  trackLines.end(kTrackHandle + 3, "For the drainage of the track");
  endAlignment(out, kTrackHandle);
  out << "  </Alignments>\n";
}

void writeSurface(TextOutput& out, const ValleyGround& ground) {
  out << "  <Surfaces>\n    <Surface name=\"Existing ground\" desc=\"Survey of February 2026\">\n"
         "      <Definition surfType=\"TIN\">\n";
  ground.write(out, "        ");
  out << "      </Definition>\n";
  writeHandleFeature(out, "      ", "lvx_object", kSurfaceHandle);
  out << "    </Surface>\n  </Surfaces>\n";
}

void writeCorridor(TextOutput& out, const RoadPlan& road, const RegionStations& stations) {
  out << "  <Roadways>\n    <Roadway name=\"Valley road\" alignmentRefs=\"Valley road\" staStart=\"";
  out.number(road.startStation(), 6) << "\" staEnd=\"";
  out.number(road.endStation(), 6) << "\" desc=\"Design corridor\">\n"
                                      "      <Feature code=\"lvx_corridor\" source=\"lvx\">";
  writeHandleProperty(out, kCorridorHandle);
  out << "\n        <Feature name=\"Main baseline\" code=\"lvx_baseline\" source=\"lvx\">";
  writeProperty(out, "alignment", "Valley road");
  out << R"(<Property label="alignmentHandle" value=")";
  out.hexadecimal(kRoadHandle) << "\"/>";
  writeProperty(out, "profile", "Valley road design");
  out << R"(<Property label="profileHandle" value=")";
  out.hexadecimal(kRoadHandle + kDesignProfile) << "\"/>\n";
  writeRegionFeature(out, "Open road", kOpenRoadSections, stations.openRoad);
  writeRegionFeature(out, "Village", kVillageSections, stations.village);
  out << "        </Feature>\n      </Feature>\n    </Roadway>\n  </Roadways>\n";
}

}  // namespace

void writeValleyRoad(TextOutput& out, ValleyPart part) {
  const auto holds = [&](ValleyPart other) { return part == ValleyPart::Whole || part == other; };
  const RoadPlan road = valleyRoad();
  const RoadPlan lane = millLane(road);
  const ValleyGround ground(road, lane);

  writeHead(out, "Valley road upgrade", "Site grid");
  if (holds(ValleyPart::Road)) writeSites(out);
  out << "  </Project>\n";
  writeApplicationAndDictionary(out);
  if (holds(ValleyPart::Points)) writePoints(out, survey(road, lane, ground).points());
  if (holds(ValleyPart::Road)) {
    const DesignProfile design = valleyRoadProfile();
    const RegionStations stations = regionStations(road, design);
    writeAlignments(out, road, lane, design, ground, stations);
    if (holds(ValleyPart::Ground)) writeSurface(out, ground);
    writeCorridor(out, road, stations);
  } else if (holds(ValleyPart::Ground)) {
    writeSurface(out, ground);
  }
  out << "</LandXML>\n";
}

}  // namespace lvx::generator

#include "civil/profile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace lvx::civil {
namespace {

/// Curves that pass a neighbour by no more than this touch it: drawings round their stations.
constexpr double kTouch = 0.001;

std::string numberText(double value) {
  std::array<char, 64> text;
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 12);
  return {text.data(), result.ptr};
}

const char* nameOf(VerticalCurveKind kind) {
  switch (kind) {
    case VerticalCurveKind::Parabola:
      return "parabola";
    case VerticalCurveKind::UnsymmetricParabola:
      return "unsymmetric parabola";
    case VerticalCurveKind::Circle:
      return "circular curve";
    case VerticalCurveKind::None:
      break;
  }
  return "point";
}

/// What becomes of a point whose curve can't be.
constexpr const char* kNoCurve = "; its curve is left out, the point is kept";

std::string sentence(const VerticalPoint& point, const std::string& what) {
  return std::string(nameOf(point.kind)) + " at " + numberText(point.station) + ": " + what;
}

constexpr auto kIsLess = [](const auto& a, const auto& b) { return a.station < b.station; };

template <class Point>
void dropUnusable(std::vector<Point>& points, std::vector<std::string>& warnings) {
  const auto isUnusable = [](const Point& p) { return !std::isfinite(p.station) || !std::isfinite(p.elevation); };
  if (const auto count = std::erase_if(points, isUnusable); count > 0) {
    warnings.push_back(std::to_string(count) + (count == 1 ? " point" : " points") +
                       " without a finite station and elevation, left out");
  }
}

// Sorting takes memory even where nothing moves, and ground comes by the million points.
template <class Point>
void sortByStation(std::vector<Point>& points) {
  if (!std::is_sorted(points.begin(), points.end(), kIsLess)) std::stable_sort(points.begin(), points.end(), kIsLess);
}

/// Grade from one point to the next; empty across a repeated station.
template <class Point>
std::optional<double> gradeBetween(const Point& a, const Point& b) {
  const double run = b.station - a.station;
  const double grade = (b.elevation - a.elevation) / run;
  if (!(run > 0.0) || !std::isfinite(grade)) return std::nullopt;
  return grade;
}

/// A curve's reach along the stations, before and after its point.
struct Reach {
  double before = 0.0;
  double after = 0.0;
};

Reach reachOf(const VerticalPoint& point, double gradeIn, double gradeOut) {
  switch (point.kind) {
    case VerticalCurveKind::Parabola:
      return {0.5 * point.length, 0.5 * point.length};
    case VerticalCurveKind::UnsymmetricParabola:
      return {point.length, point.lengthOut};
    case VerticalCurveKind::Circle: {
      const double angleIn = std::atan(gradeIn);
      const double angleOut = std::atan(gradeOut);
      const double tangent = std::abs(point.radius) * std::tan(0.5 * std::abs(angleOut - angleIn));
      return {tangent * std::cos(angleIn), tangent * std::cos(angleOut)};
    }
    case VerticalCurveKind::None:
      break;
  }
  return {};
}

/// Grades before and after each point; across a repeated station those of the nearest tangent that way, else the other's.
class Grades {
 public:
  template <class Point>
  explicit Grades(const std::vector<Point>& points) : in_(points.size()), out_(points.size()) {
    for (std::size_t i = 1; i < points.size(); ++i) {
      const auto grade = gradeBetween(points[i - 1], points[i]);
      in_[i] = grade ? grade : in_[i - 1];
    }
    for (std::size_t i = points.size(); i-- > 1;) {
      const auto grade = gradeBetween(points[i - 1], points[i]);
      out_[i - 1] = grade ? grade : out_[i];
    }
  }
  [[nodiscard]] double in(std::size_t i) const { return in_[i].value_or(out_[i].value_or(0.0)); }
  [[nodiscard]] double out(std::size_t i) const { return out_[i].value_or(in_[i].value_or(0.0)); }

 private:
  std::vector<std::optional<double>> in_;
  std::vector<std::optional<double>> out_;
};

// The same for one point: no steps but over repeated stations.

std::optional<double> gradeBefore(const std::vector<ProfilePoint>& points, std::size_t i) {
  for (; i > 0; --i) {
    if (const auto grade = gradeBetween(points[i - 1], points[i])) return grade;
  }
  return std::nullopt;
}

std::optional<double> gradeBehind(const std::vector<ProfilePoint>& points, std::size_t i) {
  for (; i + 1 < points.size(); ++i) {
    if (const auto grade = gradeBetween(points[i], points[i + 1])) return grade;
  }
  return std::nullopt;
}

}  // namespace

/// Makes a design profile of its points.
class Profile::Design {
 public:
  explicit Design(std::vector<VerticalPoint> points) : points_(std::move(points)) {}
  Profile take();

 private:
  void dropImpossibleCurves();
  void halveDoubledCurves();
  void buildCurves();
  [[nodiscard]] double gradeIn(std::size_t i) const { return grades_->in(i); }
  [[nodiscard]] double gradeOut(std::size_t i) const { return grades_->out(i); }

  std::vector<VerticalPoint> points_;
  std::optional<Grades> grades_;
  std::vector<std::string> warnings_;
  std::vector<Circle> circles_;
  Profile profile_;
};

Profile Profile::design(std::vector<VerticalPoint> points) { return Design(std::move(points)).take(); }

Profile Profile::Design::take() {
  dropUnusable(points_, warnings_);
  sortByStation(points_);
  grades_.emplace(points_);
  dropImpossibleCurves();
  halveDoubledCurves();
  buildCurves();
  profile_.points_.reserve(points_.size());
  for (const VerticalPoint& point : points_) profile_.points_.push_back({point.station, point.elevation});
  if (!warnings_.empty()) profile_.extras_.made().warnings = std::move(warnings_);
  if (!circles_.empty()) profile_.extras_.made().circles = std::move(circles_);
  return std::move(profile_);
}

Profile Profile::ground(std::vector<std::vector<ProfilePoint>> polylines) {
  Profile profile;
  profile.ground_ = true;
  std::vector<std::string> warnings;
  std::vector<ProfileGap> gaps;
  for (auto& line : polylines) {
    dropUnusable(line, warnings);
    sortByStation(line);
  }
  std::erase_if(polylines, [](const auto& line) { return line.empty(); });
  std::stable_sort(polylines.begin(), polylines.end(),
                   [](const auto& a, const auto& b) { return a.front().station < b.front().station; });
  std::size_t count = 0;
  for (const auto& line : polylines) count += line.size();
  double reached = -std::numeric_limits<double>::infinity();
  for (auto& line : polylines) {
    if (&line != &polylines.front()) {
      if (line.front().station > reached) gaps.push_back({reached, line.front().station});
      if (line.front().station < reached) {
        warnings.push_back("ground lines overlap at " + numberText(line.front().station) + "; both are kept");
      }
    }
    reached = std::max(reached, line.back().station);
    if (line.size() == count) {
      profile.points_ = std::move(line);
      profile.points_.shrink_to_fit();
    } else {
      profile.points_.reserve(count);
      profile.points_.insert(profile.points_.end(), line.begin(), line.end());
      line = {};
    }
  }
  sortByStation(profile.points_);
  if (!warnings.empty()) profile.extras_.made().warnings = std::move(warnings);
  if (!gaps.empty()) profile.extras_.made().gaps = std::move(gaps);
  return profile;
}

double Profile::startStation() const { return points_.empty() ? 0.0 : points_.front().station; }
double Profile::endStation() const { return points_.empty() ? 0.0 : points_.back().station; }

double Profile::gradeIn(std::size_t i) const {
  if (const auto grade = gradeBefore(points_, i)) return *grade;
  return gradeBehind(points_, i).value_or(0.0);
}

double Profile::gradeOut(std::size_t i) const {
  if (const auto grade = gradeBehind(points_, i)) return *grade;
  return gradeBefore(points_, i).value_or(0.0);
}

VerticalPoint Profile::pointAt(std::size_t index) const {
  VerticalPoint point{points_[index].station, points_[index].elevation};
  const auto curve = std::lower_bound(curves_.begin(), curves_.end(), index,
                                      [](const Curve& c, std::size_t wanted) { return c.point < wanted; });
  if (curve == curves_.end() || curve->point != index) return point;
  point.kind = curve->kind;
  point.length = curve->length;
  if (point.kind == VerticalCurveKind::Circle)
    point.radius = curve->second;
  else
    point.lengthOut = curve->second;
  return point;
}

// A curve needs a size and a tangent on both sides; what has none becomes a plain point.
void Profile::Design::dropImpossibleCurves() {
  for (std::size_t i = 0; i < points_.size(); ++i) {
    VerticalPoint& point = points_[i];
    const auto drop = [&](const std::string& why) {
      warnings_.push_back(sentence(point, why));
      point.kind = VerticalCurveKind::None;
    };
    const auto isLength = [](double length) { return std::isfinite(length) && length > 0.0; };
    switch (point.kind) {
      case VerticalCurveKind::None:
        continue;
      case VerticalCurveKind::Parabola:
        if (!isLength(point.length)) drop("length " + numberText(point.length) + kNoCurve);
        break;
      case VerticalCurveKind::UnsymmetricParabola:
        if (!isLength(point.length) || !isLength(point.lengthOut)) {
          drop("lengths " + numberText(point.length) + " and " + numberText(point.lengthOut) + kNoCurve);
        }
        break;
      case VerticalCurveKind::Circle:
        if (!std::isfinite(point.radius) || point.radius == 0.0) drop("radius " + numberText(point.radius) + kNoCurve);
        break;
    }
    if (point.kind == VerticalCurveKind::None) continue;
    if (i == 0 || i + 1 == points_.size() || !gradeBetween(points_[i - 1], point) ||
        !gradeBetween(point, points_[i + 1])) {
      drop(std::string("no tangent on one side") + kNoCurve);
      continue;
    }
    const Reach reach = reachOf(point, gradeIn(i), gradeOut(i));
    if (!std::isfinite(point.station - reach.before) || !std::isfinite(point.station + reach.after))
      drop(std::string("no finite size") + kNoCurve);
  }
}

// One exporter writes the lengths of unsymmetric parabolas twice as long. Told by this: as written they run into their
// neighbours, halved they don't.
void Profile::Design::halveDoubledCurves() {
  const std::size_t count = points_.size();
  std::vector<bool> isHalved(count, false);
  const auto reach = [&](std::size_t i) {
    Reach r = reachOf(points_[i], gradeIn(i), gradeOut(i));
    if (isHalved[i]) r = {0.5 * r.before, 0.5 * r.after};
    return r;
  };
  const auto fits = [&](std::size_t i) {
    const Reach own = reach(i);
    return points_[i].station - own.before >= points_[i - 1].station + reach(i - 1).after - kTouch &&
           points_[i].station + own.after <= points_[i + 1].station - reach(i + 1).before + kTouch;
  };
  const auto isUnsymmetric = [&](std::size_t i) { return points_[i].kind == VerticalCurveKind::UnsymmetricParabola; };
  std::vector<std::size_t> doubtful;
  for (std::size_t i = 0; i < count; ++i) {
    if (isUnsymmetric(i) && !fits(i)) doubtful.push_back(i);
  }
  // All at once, since neighbours are mostly doubled both; then those that don't fit so are taken back.
  for (const std::size_t i : doubtful) isHalved[i] = true;
  for (const std::size_t i : doubtful) isHalved[i] = fits(i);
  for (std::size_t k = doubtful.size(); k-- > 0;) isHalved[doubtful[k]] = isHalved[doubtful[k]] && fits(doubtful[k]);
  for (const std::size_t i : doubtful) {
    if (!isHalved[i]) continue;
    warnings_.push_back(sentence(points_[i], "lengths " + numberText(points_[i].length) + " and " +
                                                 numberText(points_[i].lengthOut) +
                                                 " run into a neighbour, taken half"));
    points_[i].length *= 0.5;
    points_[i].lengthOut *= 0.5;
  }
}

void Profile::Design::buildCurves() {
  profile_.curves_.reserve(static_cast<std::size_t>(std::count_if(
      points_.begin(), points_.end(), [](const VerticalPoint& p) { return p.kind != VerticalCurveKind::None; })));
  double taken = -std::numeric_limits<double>::infinity();  // where the curves so far end
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const VerticalPoint& point = points_[i];
    if (point.kind == VerticalCurveKind::None) continue;
    const double in = gradeIn(i);
    const double out = gradeOut(i);
    const Reach reach = reachOf(point, in, out);
    const double start = point.station - reach.before;
    const double end = point.station + reach.after;
    if (start < taken - kTouch) {
      warnings_.push_back(sentence(point, "overlaps the curve before it, which goes first"));
    } else if (start < points_[i - 1].station - kTouch || end > points_[i + 1].station + kTouch) {
      warnings_.push_back(sentence(point, "longer than its tangents; the curve is kept"));
    }
    const bool isCircle = point.kind == VerticalCurveKind::Circle;
    Curve curve;
    curve.length = point.length;
    curve.second = isCircle ? point.radius : point.lengthOut;
    curve.point = static_cast<std::uint32_t>(i);
    curve.kind = point.kind;
    curve.startStation = std::max(start, taken);
    // A circle between equal grades has nothing to round off.
    curve.endStation = isCircle && out == in ? taken : std::max(end, taken);
    taken = curve.endStation;
    if (isCircle) {
      curve.circle = static_cast<std::uint32_t>(circles_.size()) & 0x1FFFFFFFU;
      circles_.push_back(
          {start, point.elevation - in * reach.before, std::sin(std::atan(in)), std::cos(std::atan(in))});
    }
    profile_.curves_.push_back(curve);
  }
}

/// The curve itself: elevation = origin + grade d + bend d^2, d from where it leaves its tangent.
struct Profile::Shape {
  double originStation = 0.0;
  double originElevation = 0.0;
  double grade = 0.0;
  double bend = 0.0;
  // A circle instead: radius (positive: sag; 0: none), sine and cosine of the arriving tangent's angle.
  double circleRadius = 0.0;
  double circleSine = 0.0;
  double circleCosine = 1.0;

  [[nodiscard]] double elevationAt(double station) const;
  [[nodiscard]] double gradeAt(double station) const;
};

Profile::Shape Profile::shapeOf(const Curve& curve, bool isBehindPoint) const {
  const ProfilePoint& point = points_[curve.point];
  const double in = gradeIn(curve.point);
  const double out = gradeOut(curve.point);
  Shape shape;
  switch (curve.kind) {
    case VerticalCurveKind::None:
      break;
    case VerticalCurveKind::Parabola: {
      const double reach = 0.5 * curve.length;
      shape.originStation = point.station - reach;
      shape.originElevation = point.elevation - in * reach;
      shape.grade = in;
      shape.bend = 0.5 * (out - in) / (point.station + reach - shape.originStation);
      break;
    }
    case VerticalCurveKind::UnsymmetricParabola: {
      const double before = curve.length;
      const double after = curve.second;
      const double middle = (in * before + out * after) / (before + after);
      if (!isBehindPoint) {
        shape.originStation = point.station - before;
        shape.originElevation = point.elevation - in * before;
        shape.grade = in;
        shape.bend = 0.5 * (middle - in) / before;
      } else {
        shape.originStation = point.station;
        shape.originElevation = point.elevation + 0.5 * (middle - in) * before;
        shape.grade = middle;
        shape.bend = 0.5 * (out - middle) / after;
      }
      break;
    }
    case VerticalCurveKind::Circle: {
      const Circle& circle = extras_->circles[curve.circle];
      shape.originStation = circle.originStation;
      shape.originElevation = circle.originElevation;
      shape.circleRadius = std::copysign(std::abs(curve.second), out - in);
      shape.circleSine = circle.sine;
      shape.circleCosine = circle.cosine;
      break;
    }
  }
  return shape;
}

double Profile::Shape::elevationAt(double station) const {
  const double d = station - originStation;
  if (circleRadius == 0.0) return originElevation + d * (grade + bend * d);
  // From the tangent point on: the centre's elevation less a root, multiplied out, so that flat circles lose nothing.
  const double fall = d * (d + 2.0 * circleRadius * circleSine);
  const double level = std::abs(circleRadius) * circleCosine;
  const double root = std::sqrt(std::max(level * level - fall, 0.0));
  return originElevation + std::copysign(1.0, circleRadius) * fall / (level + root);
}

std::optional<double> Profile::elevationAt(double station) const {
  if (points_.empty() || std::isnan(station)) return std::nullopt;
  const auto curve = std::lower_bound(curves_.begin(), curves_.end(), station,
                                      [](const Curve& c, double s) { return c.endStation < s; });
  if (curve != curves_.end() && curve->startStation <= station && curve->startStation < curve->endStation)
    return shapeOf(*curve, station > points_[curve->point].station).elevationAt(station);
  const auto after = std::upper_bound(points_.begin(), points_.end(), station,
                                      [](double s, const ProfilePoint& p) { return s < p.station; });
  const auto next = static_cast<std::size_t>(after - points_.begin());
  if (next == 0) return points_.front().elevation + gradeOut(0) * (station - points_.front().station);
  const ProfilePoint& before = points_[next - 1];
  return before.elevation +
         (next == points_.size() ? gradeIn(next - 1) : gradeOut(next - 1)) * (station - before.station);
}

double Profile::Shape::gradeAt(double station) const {
  const double d = station - originStation;
  if (circleRadius == 0.0) return grade + 2.0 * bend * d;
  const double run = d + circleRadius * circleSine;  // from the centre, along the stations
  const double root = std::sqrt(std::max(circleRadius * circleRadius - run * run, 0.0));
  return std::copysign(1.0, circleRadius) * run / root;
}

std::optional<double> Profile::gradeAt(double station) const {
  if (points_.empty() || std::isnan(station)) return std::nullopt;
  const auto curve = std::upper_bound(curves_.begin(), curves_.end(), station,
                                      [](double s, const Curve& c) { return s < c.endStation; });
  if (curve != curves_.end() && curve->startStation <= station)
    return shapeOf(*curve, station >= points_[curve->point].station).gradeAt(station);
  const auto after = std::upper_bound(points_.begin(), points_.end(), station,
                                      [](double s, const ProfilePoint& p) { return s < p.station; });
  const auto next = static_cast<std::size_t>(after - points_.begin());
  if (next == 0) return gradeOut(0);
  return next == points_.size() ? gradeIn(next - 1) : gradeOut(next - 1);
}

std::vector<VerticalCurve> Profile::curves() const {
  std::vector<VerticalCurve> curves;
  curves.reserve(curves_.size());
  for (const Curve& curve : curves_) {
    const std::size_t i = curve.point;
    const VerticalPoint point = pointAt(i);
    const double in = gradeIn(i);
    const double out = gradeOut(i);
    const Reach reach = reachOf(point, in, out);
    curves.push_back({i, point.station - reach.before, point.station + reach.after, in, out});
  }
  return curves;
}

std::vector<VerticalRecord> Profile::records() const {
  std::vector<VerticalRecord> records;
  records.reserve(points_.size());
  const Grades grades(points_);
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const VerticalPoint point = pointAt(i);
    const double in = grades.in(i);
    const double out = grades.out(i);
    const auto add = [&](double station, double elevation, double half, double before, double after) {
      const double change = std::abs(after - before);
      records.push_back({station, elevation, change > 0.0 ? 2.0 * half / change : 0.0, half, before, after});
    };
    switch (point.kind) {
      case VerticalCurveKind::None:
        add(point.station, point.elevation, 0.0, in, out);
        break;
      case VerticalCurveKind::Parabola:
        add(point.station, point.elevation, 0.5 * point.length, in, out);
        break;
      case VerticalCurveKind::UnsymmetricParabola: {
        const double middle = (in * point.length + out * point.lengthOut) / (point.length + point.lengthOut);
        const double before = 0.5 * point.length;
        const double after = 0.5 * point.lengthOut;
        add(point.station - before, point.elevation - in * before, before, in, middle);
        add(point.station + after, point.elevation + out * after, after, middle, out);
        break;
      }
      case VerticalCurveKind::Circle: {
        const double radius = std::abs(point.radius);
        const double half = 0.5 * radius * std::abs(out - in);
        records.push_back({point.station, point.elevation, half > 0.0 ? radius : 0.0, half, in, out});
        break;
      }
    }
  }
  // Ends stay ends, and the rest ascends, even where an unsymmetric parabola is longer than its tangents.
  if (records.size() > 2) {
    std::stable_sort(records.begin() + 1, records.end() - 1,
                     [](const VerticalRecord& a, const VerticalRecord& b) { return a.station < b.station; });
  }
  return records;
}

std::vector<std::vector<ProfilePoint>> groundPieces(const Profile& profile) {
  std::vector<std::vector<ProfilePoint>> pieces(1);
  std::size_t gap = 0;
  for (const VerticalPoint& point : profile.points()) {
    const bool isBehindGap = gap < profile.gaps().size() && !pieces.back().empty() &&
                             pieces.back().back().station <= profile.gaps()[gap].startStation &&
                             point.station >= profile.gaps()[gap].endStation;
    if (isBehindGap) {
      pieces.emplace_back();
      ++gap;
    }
    pieces.back().push_back({point.station, point.elevation});
  }
  return pieces;
}

}  // namespace lvx::civil

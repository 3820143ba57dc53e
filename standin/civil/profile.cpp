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

bool isLess(const VerticalPoint& a, const VerticalPoint& b) { return a.station < b.station; }

void dropUnusable(std::vector<VerticalPoint>& points, std::vector<std::string>& warnings) {
  const auto isUnusable = [](const VerticalPoint& p) {
    return !std::isfinite(p.station) || !std::isfinite(p.elevation);
  };
  if (const auto count = std::erase_if(points, isUnusable); count > 0) {
    warnings.push_back(std::to_string(count) + (count == 1 ? " point" : " points") +
                       " without a finite station and elevation, left out");
  }
}

/// Grade from one point to the next; empty across a repeated station.
std::optional<double> gradeBetween(const VerticalPoint& a, const VerticalPoint& b) {
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

}  // namespace

Profile Profile::design(std::vector<VerticalPoint> points) {
  Profile profile;
  dropUnusable(points, profile.warnings_);
  std::stable_sort(points.begin(), points.end(), isLess);
  profile.points_ = std::move(points);
  profile.findGrades();
  profile.dropImpossibleCurves();
  profile.halveDoubledCurves();
  profile.buildCurves();
  return profile;
}

Profile Profile::ground(std::vector<std::vector<VerticalPoint>> polylines) {
  Profile profile;
  profile.ground_ = true;
  for (auto& line : polylines) {
    dropUnusable(line, profile.warnings_);
    std::stable_sort(line.begin(), line.end(), isLess);
  }
  std::erase_if(polylines, [](const auto& line) { return line.empty(); });
  std::stable_sort(polylines.begin(), polylines.end(),
                   [](const auto& a, const auto& b) { return isLess(a.front(), b.front()); });
  double reached = -std::numeric_limits<double>::infinity();
  for (const auto& line : polylines) {
    if (!profile.points_.empty()) {
      if (line.front().station > reached) profile.gaps_.push_back({reached, line.front().station});
      if (line.front().station < reached) {
        profile.warnings_.push_back("ground lines overlap at " + numberText(line.front().station) + "; both are kept");
      }
    }
    profile.points_.insert(profile.points_.end(), line.begin(), line.end());
    reached = std::max(reached, line.back().station);
  }
  for (VerticalPoint& point : profile.points_) point.kind = VerticalCurveKind::None;
  std::stable_sort(profile.points_.begin(), profile.points_.end(), isLess);
  profile.findGrades();
  return profile;
}

double Profile::startStation() const { return points_.empty() ? 0.0 : points_.front().station; }
double Profile::endStation() const { return points_.empty() ? 0.0 : points_.back().station; }

// Grades before and after each point; across a repeated station those of the nearest tangent that way, else the
// other's.
void Profile::findGrades() {
  const std::size_t count = points_.size();
  gradesIn_.assign(count, std::nullopt);
  gradesOut_.assign(count, std::nullopt);
  for (std::size_t i = 1; i < count; ++i) {
    const auto grade = gradeBetween(points_[i - 1], points_[i]);
    gradesIn_[i] = grade ? grade : gradesIn_[i - 1];
  }
  for (std::size_t i = count; i-- > 1;) {
    const auto grade = gradeBetween(points_[i - 1], points_[i]);
    gradesOut_[i - 1] = grade ? grade : gradesOut_[i];
  }
}

double Profile::gradeIn(std::size_t i) const { return gradesIn_[i].value_or(gradesOut_[i].value_or(0.0)); }
double Profile::gradeOut(std::size_t i) const { return gradesOut_[i].value_or(gradesIn_[i].value_or(0.0)); }

// A curve needs a size and a tangent on both sides; what has none becomes a plain point.
void Profile::dropImpossibleCurves() {
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
void Profile::halveDoubledCurves() {
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

void Profile::buildCurves() {
  const double none = -std::numeric_limits<double>::infinity();
  double taken = none;  // where the curves so far end
  for (std::size_t i = 0; i < points_.size(); ++i) {
    VerticalPoint& point = points_[i];
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
    Piece piece;
    piece.originStation = start;
    piece.originElevation = point.elevation - in * reach.before;
    piece.grade = in;
    const auto add = [&](double from, double to) {
      piece.startStation = std::max(from, taken);
      piece.endStation = to;
      if (!(to > piece.startStation)) return;
      pieces_.push_back(piece);
      taken = to;
    };
    switch (point.kind) {
      case VerticalCurveKind::None:
        break;
      case VerticalCurveKind::Parabola:
        piece.bend = 0.5 * (out - in) / (end - start);
        add(start, end);
        break;
      case VerticalCurveKind::UnsymmetricParabola: {
        const double middle = (in * reach.before + out * reach.after) / (reach.before + reach.after);
        piece.bend = 0.5 * (middle - in) / reach.before;
        add(start, point.station);
        piece.originStation = point.station;
        piece.originElevation = point.elevation + 0.5 * (middle - in) * reach.before;
        piece.grade = middle;
        piece.bend = 0.5 * (out - middle) / reach.after;
        add(point.station, end);
        break;
      }
      case VerticalCurveKind::Circle:
        if (out == in) break;  // nothing to round off
        piece.circleRadius = std::copysign(std::abs(point.radius), out - in);
        piece.circleSine = std::sin(std::atan(in));
        piece.circleCosine = std::cos(std::atan(in));
        add(start, end);
        break;
    }
  }
}

double Profile::Piece::elevationAt(double station) const {
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
  const auto piece = std::lower_bound(pieces_.begin(), pieces_.end(), station,
                                      [](const Piece& p, double s) { return p.endStation < s; });
  if (piece != pieces_.end() && piece->startStation <= station) return piece->elevationAt(station);
  const auto after = std::upper_bound(points_.begin(), points_.end(), station,
                                      [](double s, const VerticalPoint& p) { return s < p.station; });
  const auto next = static_cast<std::size_t>(after - points_.begin());
  if (next == 0) return points_.front().elevation + gradeOut(0) * (station - points_.front().station);
  const VerticalPoint& before = points_[next - 1];
  return before.elevation +
         (next == points_.size() ? gradeIn(next - 1) : gradeOut(next - 1)) * (station - before.station);
}

double Profile::Piece::gradeAt(double station) const {
  const double d = station - originStation;
  if (circleRadius == 0.0) return grade + 2.0 * bend * d;
  const double run = d + circleRadius * circleSine;  // from the centre, along the stations
  const double root = std::sqrt(std::max(circleRadius * circleRadius - run * run, 0.0));
  return std::copysign(1.0, circleRadius) * run / root;
}

std::optional<double> Profile::gradeAt(double station) const {
  if (points_.empty() || std::isnan(station)) return std::nullopt;
  const auto piece = std::upper_bound(pieces_.begin(), pieces_.end(), station,
                                      [](double s, const Piece& p) { return s < p.endStation; });
  if (piece != pieces_.end() && piece->startStation <= station) return piece->gradeAt(station);
  const auto after = std::upper_bound(points_.begin(), points_.end(), station,
                                      [](double s, const VerticalPoint& p) { return s < p.station; });
  const auto next = static_cast<std::size_t>(after - points_.begin());
  if (next == 0) return gradeOut(0);
  return next == points_.size() ? gradeIn(next - 1) : gradeOut(next - 1);
}

std::vector<VerticalCurve> Profile::curves() const {
  std::vector<VerticalCurve> curves;
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const VerticalPoint& point = points_[i];
    if (point.kind == VerticalCurveKind::None) continue;
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
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const VerticalPoint& point = points_[i];
    const double in = gradeIn(i);
    const double out = gradeOut(i);
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

std::vector<std::vector<VerticalPoint>> groundPieces(const Profile& profile) {
  std::vector<std::vector<VerticalPoint>> pieces(1);
  std::size_t gap = 0;
  for (const VerticalPoint& point : profile.points()) {
    const bool isBehindGap = gap < profile.gaps().size() && !pieces.back().empty() &&
                             pieces.back().back().station <= profile.gaps()[gap].startStation &&
                             point.station >= profile.gaps()[gap].endStation;
    if (isBehindGap) {
      pieces.emplace_back();
      ++gap;
    }
    pieces.back().push_back(point);
  }
  return pieces;
}

}  // namespace lvx::civil

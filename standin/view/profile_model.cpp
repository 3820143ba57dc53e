#include "view/profile_model.h"

#include <algorithm>
#include <cmath>

#include "civil/ground_profile.h"

namespace lvx::view {

using civil::Vec2;
using civil::VerticalCurveKind;

namespace {

/// However flat the curve and however odd the drawing, a picture has no more chords than this for one curve.
constexpr std::size_t kMostChords = 2000;

const civil::AlignmentObject* findIn(const civil::Site& site, civil::Handle handle) {
  for (const auto& alignment : site.alignments)
    if (alignment->handle == handle) return alignment.get();
  return nullptr;
}

const civil::AlignmentObject* find(const civil::Drawing& drawing, civil::Handle handle) {
  if (handle == 0) return nullptr;
  if (const auto* found = findIn(drawing.siteless, handle)) return found;
  for (const civil::Site& site : drawing.sites)
    if (const auto* found = findIn(site, handle)) return found;
  return nullptr;
}

Lines groundLegs(const civil::Profile& profile) {
  Lines lines;
  const auto gaps = profile.gaps();
  auto gap = gaps.begin();
  std::optional<civil::VerticalPoint> before;
  for (const civil::VerticalPoint& point : profile.points()) {
    const bool isBehindGap =
        before && gap != gaps.end() && before->station <= gap->startStation && point.station >= gap->endStation;
    if (isBehindGap) ++gap;
    if (!before || isBehindGap) lines.emplace_back();
    lines.back().push_back({point.station, point.elevation});
    before = point;
  }
  return lines;
}

Vec2 placeAt(const civil::Profile& profile, double station) {
  return {station, profile.elevationAt(station).value_or(0.0)};
}

/// Adds the inner points of a curve's chords.
void appendChords(const civil::Profile& profile, const civil::VerticalCurve& curve, Line& line) {
  const double run = curve.endStation - curve.startStation;
  const double bend = std::abs(curve.gradeOut - curve.gradeIn);
  if (!(run > 0.0) || !std::isfinite(run)) return;
  // A parabola leaves a chord of run / n by bend * run / (8 n^2); circles and unsymmetric halves bend up to twice as much.
  const double wanted = std::sqrt(2.0 * bend * run / (8.0 * kProfileChordError));
  const auto chords = static_cast<std::size_t>(std::clamp(std::ceil(wanted), 1.0, double{kMostChords}));
  for (std::size_t i = 0; i <= chords; ++i) {
    const double station = i == chords
                               ? curve.endStation
                               : curve.startStation + run * (static_cast<double>(i) / static_cast<double>(chords));
    line.push_back(placeAt(profile, station));
  }
}

ProfileMark markOf(const civil::VerticalPoint& point, double gradeIn, double gradeOut) {
  ProfileMark mark;
  mark.place = {point.station, point.elevation};
  mark.curveStart = mark.curveEnd = mark.place;
  mark.gradeIn = gradeIn;
  mark.gradeOut = gradeOut;
  return mark;
}

void addCurve(const civil::Profile& profile, const civil::VerticalPoint& point, const civil::VerticalCurve& curve,
              ProfileMark& mark) {
  mark.kind = point.kind;
  mark.curveStart = placeAt(profile, curve.startStation);
  mark.curveEnd = placeAt(profile, curve.endStation);
  mark.length = curve.endStation - curve.startStation;
  const double change = std::abs(curve.gradeOut - curve.gradeIn);
  switch (point.kind) {
    case VerticalCurveKind::None:
      break;
    case VerticalCurveKind::Parabola:
      if (change > 0.0) mark.radius = mark.length / change;
      break;
    case VerticalCurveKind::UnsymmetricParabola:
      mark.length = point.length;
      mark.lengthOut = point.lengthOut;
      break;
    case VerticalCurveKind::Circle:
      mark.radius = std::abs(point.radius);
      break;
  }
}

void drawDesign(const civil::Profile& profile, ProfileLine& picture) {
  const auto points = profile.points();
  const auto curves = profile.curves();
  auto curve = curves.begin();
  Line line;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto gradeTo = [&](std::size_t a, std::size_t b) {
      const double run = points[b].station - points[a].station;
      return run > 0.0 ? (points[b].elevation - points[a].elevation) / run : 0.0;
    };
    const double gradeIn = i > 0 ? gradeTo(i - 1, i) : 0.0;
    const double gradeOut = i + 1 < points.size() ? gradeTo(i, i + 1) : gradeIn;
    ProfileMark mark = markOf(points[i], i > 0 ? gradeIn : gradeOut, gradeOut);
    if (curve != curves.end() && curve->point == i) {
      addCurve(profile, points[i], *curve, mark);
      appendChords(profile, *curve, line);
      ++curve;
    } else {
      line.push_back(mark.place);
    }
    picture.marks.push_back(mark);
  }
  // Curves that run into each other, or past their neighbours, answer for each other's stations; the picture shows what
  // the profile answers, in order.
  const bool ascends = std::is_sorted(line.begin(), line.end(), [](Vec2 a, Vec2 b) { return a.x < b.x; });
  if (!ascends) {
    for (Vec2& place : line) place.y = profile.elevationAt(place.x).value_or(place.y);
    std::stable_sort(line.begin(), line.end(), [](Vec2 a, Vec2 b) { return a.x < b.x; });
  }
  if (!line.empty()) picture.lines.push_back(std::move(line));

  for (std::size_t i = 1; i < picture.marks.size(); ++i) {
    const Vec2 start = picture.marks[i - 1].curveEnd;
    const Vec2 end = picture.marks[i].curveStart;
    if (end.x - start.x > civil::kSamePoint) picture.tangents.push_back({start, end, picture.marks[i].gradeIn});
  }
}

ProfileLine pictureOf(const civil::ProfileObject& object) {
  ProfileLine picture;
  picture.handle = object.handle;
  picture.name = object.name;
  picture.isGround = object.profile.isGround();
  picture.profile = &object.profile;
  if (picture.isGround)
    picture.lines = groundLegs(object.profile);
  else
    drawDesign(object.profile, picture);
  return picture;
}

}  // namespace

bool ProfileLine::covers(double station) const {
  if (profile == nullptr || profile->isEmpty() || station < profile->startStation() || station > profile->endStation())
    return false;
  const auto gaps = profile->gaps();
  return std::none_of(gaps.begin(), gaps.end(), [station](const civil::ProfileGap& gap) {
    return station > gap.startStation && station < gap.endStation;
  });
}

double AxisElement::parameter() const {
  if (kind != civil::ElementKind::Clothoid || endCurvature == startCurvature) return 0.0;
  return std::sqrt(length() / std::abs(endCurvature - startCurvature));
}

double AxisElement::curvatureShareAt(double station) const {
  return length() > 0.0 ? civil::curvatureShare(kind, (station - startStation) / length()) : 0.0;
}

civil::Box ProfileModel::box() const {
  civil::Box box;
  for (const ProfileLine& profile : profiles) extend(box, profile.lines);
  return box;
}

std::optional<std::size_t> ProfileModel::hit(Vec2 place, Vec2 reach,
                                             const std::function<bool(std::size_t)>& isShown) const {
  std::optional<std::size_t> best;
  double nearest = 0.0;
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    if (isShown && !isShown(i)) continue;
    const auto distance = distanceTo(profiles[i].lines, place, reach);
    if (!distance || (best && *distance >= nearest)) continue;
    nearest = *distance;
    best = i;
  }
  return best;
}

const AxisElement* ProfileModel::elementAt(double station) const {
  const auto next = std::upper_bound(elements.begin(), elements.end(), station,
                                     [](double s, const AxisElement& element) { return s < element.endStation; });
  if (next != elements.end()) return station >= next->startStation ? &*next : nullptr;
  return !elements.empty() && station == elements.back().endStation ? &elements.back() : nullptr;
}

std::optional<ProfileModel> profilesOf(const civil::Drawing& drawing, civil::Handle alignment) {
  const civil::AlignmentObject* object = find(drawing, alignment);
  if (object == nullptr) return std::nullopt;
  ProfileModel model;
  model.alignment = object->handle;
  model.alignmentName = object->name;
  model.axis = &object->geometry;
  model.startStation = object->geometry.startStation();
  model.endStation = object->geometry.endStation();
  for (const bool ground : {false, true})
    for (const civil::ProfileObject& profile : object->profiles)
      if (profile.profile.isGround() == ground) model.profiles.push_back(pictureOf(profile));
  for (const civil::SurfaceObject& surface : drawing.surfaces)
    model.surfaces.push_back({surface.handle, surface.name, &surface.surface});

  const auto elements = object->geometry.elements();
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const double start = object->geometry.stationOfElement(i);
    const double end = object->geometry.stationOfElement(i + 1);
    if (end > start)
      model.elements.push_back({elements[i].kind, start, end, elements[i].startCurvature, elements[i].endCurvature});
  }
  return model;
}

Lines groundAlong(const civil::Alignment& axis, const civil::TinSurface& surface) {
  Lines lines;
  for (const auto& run : civil::groundAlong(axis, surface, kAxisChordError)) {
    Line& line = lines.emplace_back();
    for (const civil::GroundPoint& point : run) line.push_back({point.station, point.elevation});
  }
  return lines;
}

}  // namespace lvx::view

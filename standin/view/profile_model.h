#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "view/lines.h"

/// A longitudinal section as a picture: the profiles of an alignment over its stations, the ground of surfaces along its
/// axis, and what the axis does below them. Drawing units; grades as ratios, uphill positive.
///
///     if (auto picture = view::profilesOf(drawing, alignment))
///       for (const view::ProfileLine& profile : picture->profiles) draw(profile.lines, profile.marks);
namespace lvx::view {

/// A curve's chords leave it by no more than this, drawing units of elevation.
inline constexpr double kProfileChordError = 0.0005;
/// The chords along which surfaces are sampled leave the axis by no more than this, drawing units in plan.
inline constexpr double kAxisChordError = 0.01;

/// A point of vertical intersection.
struct ProfileMark {
  civil::Vec2 place;
  civil::VerticalCurveKind kind = civil::VerticalCurveKind::None;
  /// Where the curve begins and ends, on the profile; both the place itself without a curve.
  civil::Vec2 curveStart;
  civil::Vec2 curveEnd;
  /// Parabolas: horizontal length, before and after the point for an unsymmetric one (else `length` is all of it). Circle:
  /// the distance between begin and end along the stations.
  double length = 0.0;
  double lengthOut = 0.0;
  /// Circle: as it is drawn. Parabola: of its vertex, length over grade change, as it is staked out. 0 without a curve,
  /// for an unsymmetric parabola and between equal grades.
  double radius = 0.0;
  double gradeIn = 0.0;
  double gradeOut = 0.0;
  /// A hilltop, where labels have room above.
  [[nodiscard]] bool isCrest() const { return gradeOut <= gradeIn; }
};

/// A straight stretch of a design profile, between curves.
struct ProfileTangent {
  civil::Vec2 start;
  civil::Vec2 end;
  double grade = 0.0;
};

struct ProfileLine {
  civil::Handle handle = 0;
  std::string name;
  bool isGround = false;
  const civil::Profile* profile = nullptr;
  /// Ground: its legs, in pieces between its gaps. Design: one line, curves as chords within kProfileChordError.
  Lines lines;
  /// Design: its points of intersection and straight stretches; the lines between the points, without the curves.
  std::vector<ProfileMark> marks;
  std::vector<ProfileTangent> tangents;
  /// Whether elevations and grades of the profile are its own at `station`: not beyond its ends, not in a gap.
  [[nodiscard]] bool covers(double station) const;
};

/// A surface whose ground along the axis can be shown.
struct ProfileSurface {
  civil::Handle handle = 0;
  std::string name;
  const civil::TinSurface* surface = nullptr;
};

/// An element of the axis.
struct AxisElement {
  civil::ElementKind kind = civil::ElementKind::Line;
  double startStation = 0.0;
  double endStation = 0.0;
  /// 1 / radius, positive to the left.
  double startCurvature = 0.0;
  double endCurvature = 0.0;
  [[nodiscard]] double length() const { return endStation - startStation; }
  /// Clothoids: the parameter A, by A^2 = length / change of curvature; 0 for others.
  [[nodiscard]] double parameter() const;
  /// Which part of its change the curvature has made at `station`, from 0 to 1: straight for clothoids, by their law
  /// for other transitions.
  [[nodiscard]] double curvatureShareAt(double station) const;
};

/// Holds pointers into the drawing; lives no longer than that.
struct ProfileModel {
  civil::Handle alignment = 0;
  std::string alignmentName;
  const civil::Alignment* axis = nullptr;
  double startStation = 0.0;
  double endStation = 0.0;
  /// Designs before ground, each in the order of the drawing. Profiles without points too, with nothing to draw.
  std::vector<ProfileLine> profiles;
  std::vector<ProfileSurface> surfaces;
  /// Elements with a length, ascending.
  std::vector<AxisElement> elements;

  /// Of the profiles; empty where there are none.
  [[nodiscard]] civil::Box box() const;
  /// The nearest profile at most one reach away, by its index; of equals the first, which is drawn on top.
  [[nodiscard]] std::optional<std::size_t> hit(civil::Vec2 place, civil::Vec2 reach,
                                               const std::function<bool(std::size_t index)>& isShown = {}) const;
  /// The element at a station; at a joint the later one; null beyond the axis and in a gap. O(elements).
  [[nodiscard]] const AxisElement* elementAt(double station) const;
};

/// The profiles of an alignment; empty where the drawing has no such alignment. O(points of its profiles and the chords
/// of their curves); no surface is sampled.
[[nodiscard]] std::optional<ProfileModel> profilesOf(const civil::Drawing& drawing, civil::Handle alignment);

/// The ground of a surface along an axis, over its stations, in pieces where the axis leaves the surface. Costs what
/// sampling the surface does, so it is computed when somebody wants to see it.
[[nodiscard]] Lines groundAlong(const civil::Alignment& axis, const civil::TinSurface& surface);

}  // namespace lvx::view

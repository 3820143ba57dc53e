#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "view/alignment_shape.h"
#include "view/box_tree.h"
#include "view/plan_shapes.h"
#include "view/surface_tiles.h"
#include "view/visibility.h"

namespace lvx::view {

/// What lies under the mouse.
struct Hit {
  civil::Handle handle = 0;
  civil::ObjectKind kind = civil::ObjectKind::Alignment;
  std::string name;
  bool operator==(const Hit&) const = default;
};

/// What an object is called: the name, of a point its number where it has none.
struct Description {
  civil::ObjectKind kind = civil::ObjectKind::Alignment;
  std::string name;
  bool operator==(const Description&) const = default;
};

// ---------------------------------------------------------------- what is drawn

struct AlignmentShape {
  const civil::AlignmentObject* object = nullptr;
  civil::Box box;  ///< empty for one without length
};

struct SampleLineShape {
  const civil::SampleLine* line = nullptr;
  civil::Handle group = 0;
  civil::Box box;
};

struct SurfaceShape {
  const civil::SurfaceObject* object = nullptr;
  civil::Box box;
  /// The ground lies on the left of its border; holes have one too.
  LineSet border;
  std::unique_ptr<SurfaceTiles> tiles;
};

struct CorridorShape {
  const civil::Corridor* object = nullptr;
  civil::Box box;
  /// Through the outermost points of the sections on each side, region by region.
  LineSet edges;
  LineSet baselines;
};

struct VisiblePoints {
  /// In drawing order.
  std::vector<const civil::Point*> points;
  /// How many lie in the box; more than `points` where only some of them are given.
  std::size_t count = 0;
};

/// What is drawn of a drawing in plan, where its objects lie and what they are called. Built once, which takes a while
/// for large surfaces and may happen in a worker thread. It holds pointers into the drawing, which must live longer and
/// keep its lists, but for what refreshCorridors() and refreshLists() take over. Queries may run in several threads at
/// once, but none beside these two, surfaces apart.
///
///     PlanScene scene(drawing);
///     for (const AlignmentShape& shape : scene.alignments())
///       draw(polylines(shape.object->geometry, port.visible(), 0.25 / port.scale()));
///     if (const auto hit = scene.hit(mouse, 6 / port.scale(), {})) highlight(hit->handle);
class PlanScene {
 public:
  /// Told the part that is done, now and then; false gives up: the constructor throws Cancelled.
  using Progress = std::function<bool(double done)>;

  explicit PlanScene(const civil::Drawing& drawing, const Progress& progress = {});
  PlanScene(const PlanScene&) = delete;
  PlanScene& operator=(const PlanScene&) = delete;
  ~PlanScene();

  [[nodiscard]] const civil::Drawing& drawing() const { return drawing_; }
  /// After a rebuild: takes the corridors' sections over again. O(points of all sections).
  void refreshCorridors();
  /// After an edit of the drawing: takes over all lists but those of surfaces and points, which are the same. Nothing may
  /// be asked between the edit and this. O(objects, points apart).
  void refreshLists();

  /// What is hidden isn't found by hit(), hits() and inside() and isn't among visiblePoints(); the shapes of hidden objects
  /// are there, for whoever draws to leave out. O(hidden + points where one of them is hidden).
  void setVisibility(Visibility visibility);
  [[nodiscard]] const Visibility& visibility() const { return visibility_; }
  [[nodiscard]] bool isHidden(civil::Handle handle) const { return visibility_.isHidden(handle); }

  // All in drawing order.
  [[nodiscard]] std::span<const AlignmentShape> alignments() const { return alignments_; }
  [[nodiscard]] std::span<const SampleLineShape> sampleLines() const { return sampleLines_; }
  [[nodiscard]] std::span<const SurfaceShape> surfaces() const { return surfaces_; }
  [[nodiscard]] std::span<const CorridorShape> corridors() const { return corridors_; }
  /// At most `limit` of the points in the box. Of too many the same ones are given again while the view moves and its
  /// scale stays, spread as all of them are.
  [[nodiscard]] VisiblePoints visiblePoints(const civil::Box& box, std::size_t limit) const;

  /// Around everything that is drawn; empty for a drawing without.
  [[nodiscard]] const civil::Box& box() const { return box_; }
  /// Where an object lies: a site where its alignments do, a profile where its alignment does, a group where its
  /// members do. Empty for one that has no place and for no object. O(log objects), for a group O(members).
  [[nodiscard]] std::optional<civil::Box> boxOf(civil::Handle handle) const;
  /// Empty for no object. O(log objects).
  [[nodiscard]] std::optional<Description> describe(civil::Handle handle) const;

  /// The nearest object within `radius` drawing units: a point before a line (alignment, sample line, edge of a
  /// corridor, border of a surface, in this order at equal distances) before a surface with ground there; of surfaces
  /// the last in the drawing. Alignments are measured exactly, within their stations. Sites, profiles and groups aren't
  /// drawn and never hit. Quick enough for every move of the mouse: O(alignments + sample lines + log points).
  [[nodiscard]] std::optional<Hit> hit(civil::Vec2 place, double radius, KindSet kinds = {}) const;

  /// All that lies there, one above the other: in the order in which hit() prefers them, its answer first. Points cost
  /// O(log points + those within `radius`), the others what they cost hit().
  [[nodiscard]] std::vector<Hit> hits(civil::Vec2 place, double radius, KindSet kinds = {}) const;

  /// What lies wholly in the box, with `crossing` also what has a part in it; alignments and their sample lines first,
  /// then surfaces, points, corridors, each in drawing order. O(objects + points in the box).
  [[nodiscard]] std::vector<civil::Handle> inside(const civil::Box& box, bool crossing, KindSet kinds = {}) const;

  /// Memory beside the drawing's own, in bytes.
  [[nodiscard]] std::size_t bytes() const;

 private:
  struct Named;
  void addLists();
  void addAlignments(const civil::Site& site);
  void addPoints(const Progress& progress);
  void measure();
  [[nodiscard]] const Named* find(civil::Handle handle) const;
  [[nodiscard]] const civil::Point* findPoint(civil::Handle handle) const;
  [[nodiscard]] const civil::Point* nearestPoint(civil::Vec2 place, double radius) const;
  /// Everything but points that may lie within `radius`, with its distance; surfaces by their borders.
  /// Of a point by its place in the drawing's list.
  [[nodiscard]] bool isPointHidden(std::uint32_t index) const { return !hiddenPoints_.empty() && hiddenPoints_[index]; }
  template <class Offer>
  void offerLines(civil::Vec2 place, double radius, KindSet kinds, const Offer& offer) const;

  const civil::Drawing& drawing_;
  std::vector<AlignmentShape> alignments_;
  std::vector<SampleLineShape> sampleLines_;
  std::vector<SurfaceShape> surfaces_;
  std::vector<CorridorShape> corridors_;
  std::vector<std::uint32_t> pointOrder_;  // along a curve, runs of them in the order in which they are left out
  BoxTree pointRuns_;
  bool hasAscendingPoints_ = true;             // so that their handles can be searched where they are
  std::vector<std::uint32_t> pointsByHandle_;  // otherwise
  std::vector<Named> named_;                   // all objects but points, by handle
  civil::Box box_;
  Visibility visibility_;
  std::vector<bool> hiddenPoints_;  // empty where none is hidden
};

}  // namespace lvx::view

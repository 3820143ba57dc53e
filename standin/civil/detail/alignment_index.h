#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "civil/detail/clothoid_series.h"
#include "civil/detail/near_grid.h"
#include "civil/detail/transition_law.h"
#include "civil/element.h"

/// The search for the nearest foot on a chain of elements.
///
/// Elements are cut into pieces so short that each lies in a slim capsule around its chord; a tree of capsules (four to
/// a node, in the order of the chain) bounds the distance from below and above, and only pieces that can hold the
/// nearest foot are solved. What a piece answers is exact, and all local minima on it are found:
///  - a line and an arc have closed forms;
///  - a piece of a transition turns by less than pi to one side, its curvature rising or falling throughout. With t the
///    place of the point along the tangent and n to the left of it, g = -t (half the slope of the squared distance) obeys
///    g'' + g = rho' over the direction, rho the radius. As rho' keeps its sign, g has at most two zeros on the piece,
///    and at most one of them is a minimum. Signs of g at both ends bracket it, or rule it out but for one case: both
///    ends of one sign with two zeros between. Then g / cos(phi), phi the direction against the middle's, has one
///    extremum, where the evolute passes the point square to the middle's tangent; the sign of g there decides.
///
/// Most points lie beside a smooth stretch of the chain. For them a grid knows which few pieces hold the foot, so that
/// one piece is solved and the tree isn't asked: see alignment_runs.cpp. Which way a point takes changes no answer by
/// more than a rounding.
namespace lvx::civil::detail {

/// Where a local minimum of the distance lies on its piece.
enum class FootPlace : std::uint8_t { Start, Inside, End };

struct Foot {
  double distance = 0.0;
  double station = 0.0;
  double left = 0.0;  ///< of a foot inside: signed distance, positive to the left
  std::uint32_t piece = 0;
  FootPlace place = FootPlace::Inside;
};

class AlignmentIndex {
 public:
  /// `stations` are those of the elements' starts. Elements without length or finite geometry, and
  /// those that turn by more than 30 circles, are passed over.
  AlignmentIndex(std::span<const Element> elements, std::span<const double> stations);

  [[nodiscard]] bool isEmpty() const { return pieces_.empty(); }
  struct Answer {
    double station = 0.0;
    double offset = 0.0;
  };
  [[nodiscard]] std::optional<Answer> stationOffset(Vec2 point) const;

 private:
  struct Piece {
    ElementKind kind = ElementKind::Line;
    bool joinsNext = false;  ///< the next piece starts where this one ends
    double half = 0.0;
    double station = 0.0;  ///< of the middle
    double startStation = 0.0;
    double endStation = 0.0;
    Vec2 middle;  ///< against the origin
    Vec2 tangent;
    double curvature = 0.0;  ///< in the middle
    double rate = 0.0;       ///< of change in the middle
    std::uint32_t law = 0;   ///< of a transition other than a clothoid: its place in `laws_`
    // The ends in the frame of the middle.
    Vec2 startPoint;
    Vec2 startTangent;
    Vec2 endPoint;
    Vec2 endTangent;
    ClothoidSeries series;
  };
  /// The curvature along a piece of a transition other than a clothoid, as a series about the piece's middle. Each piece
  /// lies on one side of where a law changes, so that the series is exact within a rounding.
  struct CurvatureSeries {
    std::array<double, kLawTerms> terms{};
    double inverseHalf = 0.0;
    double sharpest = 0.0;     ///< largest curvature without sign
    double largestBend = 0.0;  ///< largest second derivative without sign
  };
  /// All points within `radius` of a segment.
  struct Capsule {
    Vec2 start;
    Vec2 end;
    double radius = 0.0;
  };
  /// Four capsules side by side. `child` is the first of `count` nodes, or pieces on a leaf.
  struct Node {
    std::array<double, 4> x{}, y{}, dx{}, dy{}, length{}, radius{};
    std::uint32_t child = 0;
    std::uint8_t count = 0;
    bool isLeaf = false;
  };

  /// Distances of this difference are equal where coordinates are small; large ones bring their own rounding.
  static constexpr double kEqualDistance = 1e-10;

  /// Of a piece, against the origin.
  struct End {
    Vec2 point;
    Vec2 tangent;
  };
  [[nodiscard]] static End startOf(const Piece& piece);
  [[nodiscard]] static End endOf(const Piece& piece);
  /// Largest curvature without sign.
  [[nodiscard]] double sharpestOf(const Piece& piece) const;

  void addElement(const Element& element, double station);
  void addPiece(const Element& element, double station, double from, double to, Vec2& at);
  void buildTree();
  [[nodiscard]] Capsule capsuleOf(const Piece& piece) const;

  /// Two numbers at a time, as every processor of today takes them: compilers don't see that they may.
  using Two = double __attribute__((vector_size(16)));
  /// Squares of the distances from the point to the axes of a node's capsules.
  [[gnu::always_inline]] [[nodiscard]] static std::array<Two, 2> squaresToAxes(Vec2 point, const Node& node);
  /// Calls `use(pieceNumber)` for every piece that may come within `limit` + `slack` of the point. `limit` drops as the
  /// search learns of nearer pieces, and `use` may lower it.
  template <class Use>
  void forEachNear(Vec2 point, double& limit, double slack, Use&& use) const;
  /// Calls `use(foot)` for every local minimum of the distance on a piece; its ends count where the distance doesn't
  /// fall towards the inside. At least one.
  template <class Use>
  void forEachFoot(std::uint32_t number, Vec2 point, Use&& use) const;
  [[nodiscard]] static double firstFoot(const Piece& piece, Vec2 local);
  /// `curvature(u)` gives curvature and its rate; `largestBend` bounds the rate's own rate.
  template <class Curvature>
  [[nodiscard]] static std::optional<double> footOnTransition(const Piece& piece, const Curvature& curvatureAt,
                                                              double largestBend, Vec2 local, double startSlope,
                                                              double endSlope, double& left);
  /// The same on any transition.
  [[nodiscard]] std::optional<double> footOn(const Piece& piece, Vec2 local, double startSlope, double endSlope,
                                             double& left) const;
  [[nodiscard]] bool isMinimumOfChain(const Foot& foot, Vec2 point) const;
  /// The nearest foot; its distance is infinite where there is none. `second` becomes the distance of the nearest one at
  /// another station.
  [[nodiscard]] Foot nearestFoot(Vec2 point, double slack, double& second) const;
  /// In the tree; empty where numbers get too large to tell.
  [[nodiscard]] std::optional<Answer> search(Vec2 point, double noise) const;
  [[nodiscard]] Answer answer(const Foot& foot, Vec2 point, double noise) const;

  // ---- Runs: the short way for points near the alignment. See alignment_runs.cpp.
  /// A run as the word of a cell: its first piece and how far from joints a foot must keep.
  struct Run {
    static constexpr std::uint32_t kUnknown = 0;
    static constexpr std::uint32_t kNone = 1;
    static constexpr std::uint32_t kClearances = 16;
    /// Joints that one look tells apart.
    static constexpr std::uint32_t kJoints = 4;
  };
  void buildRuns();
  [[nodiscard]] std::uint32_t runOf(NearGrid::Square square) const;
  static double angleByTangent(double square);
  /// First and last of the pieces that may come within `nearest` + `more` of a point, whose foot is `nearest` away at most.
  struct Stretch {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    double nearest = 0.0;
  };
  [[nodiscard]] Stretch stretchAround(Vec2 point, double more) const;
  [[gnu::always_inline]] [[nodiscard]] std::optional<Answer> answerNear(Vec2 point, double noise) const;

  Vec2 origin_;
  std::vector<Piece> pieces_;
  std::vector<CurvatureSeries> laws_;
  std::vector<Node> nodes_;
  std::uint32_t root_ = 0;
  NearGrid grid_;
  std::array<double, Run::kClearances> clearances_{};
  /// The line square to each piece's start: dx x + dy y - at is how far a point lies ahead of it. Behind the last one come
  /// kJoints lines that no point lies ahead of.
  struct StartLines {
    std::vector<double> dx, dy, at;
  };
  StartLines startLines_;
};

}  // namespace lvx::civil::detail

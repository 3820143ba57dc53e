#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "civil/detail/clothoid_series.h"
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
    double rate = 0.0;
    std::uint32_t law = 0;  ///< of a transition other than a clothoid: its place in `laws_`
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

  void addElement(const Element& element, double station);
  void addPiece(const Element& element, double station, double from, double to, Vec2& at);
  void buildTree();
  [[nodiscard]] Capsule capsuleOf(const Piece& piece) const;

  /// Calls `use(pieceNumber)` for every piece that may come within `limit` + `slack` of the point. `limit` drops as the
  /// search learns of nearer pieces, and `use` may lower it.
  template <class Use>
  void forEachNear(Vec2 point, double& limit, double slack, Use&& use) const;
  /// Calls `use(foot)` for every local minimum of the distance on a piece; its ends count where the distance doesn't
  /// fall towards the inside. At least one.
  template <class Use>
  void forEachFoot(std::uint32_t number, Vec2 point, Use&& use) const;
  /// `curvature(u)` gives curvature and its rate; `largestBend` bounds the rate's own rate.
  template <class Curvature>
  [[nodiscard]] static std::optional<double> footOnTransition(const Piece& piece, const Curvature& curvatureAt,
                                                              double largestBend, Vec2 local, double startSlope,
                                                              double endSlope, double& left);
  [[nodiscard]] bool isMinimumOfChain(const Foot& foot, Vec2 point) const;
  [[nodiscard]] Answer answer(const Foot& foot, Vec2 point, double noise) const;

  Vec2 origin_;
  std::vector<Piece> pieces_;
  std::vector<CurvatureSeries> laws_;
  std::vector<Node> nodes_;
  std::uint32_t root_ = 0;
};

}  // namespace lvx::civil::detail

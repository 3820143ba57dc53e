#pragma once

#include "peer.h"

namespace lvx::peers {

/// Samples of a segment from the faces that an index found near it: each edge and each corner once, in order.
class Clipper {
 public:
  explicit Clipper(const Tin& tin) : tin_(tin) {}

  const std::vector<Sample>& clip(const Segment& segment, const std::vector<std::uint32_t>& faces) {
    hits_.clear();
    for (const std::uint32_t face : faces) addFace(segment, face);
    std::sort(hits_.begin(), hits_.end(),
              [](const Hit& a, const Hit& b) { return a.key != b.key ? a.key < b.key : a.sample.t < b.sample.t; });
    hits_.erase(std::unique(hits_.begin(), hits_.end(), [](const Hit& a, const Hit& b) { return a.key == b.key; }),
                hits_.end());
    std::sort(hits_.begin(), hits_.end(), [](const Hit& a, const Hit& b) { return a.sample.t < b.sample.t; });
    samples_.clear();
    for (const Hit& hit : hits_) samples_.push_back(hit.sample);
    return samples_;
  }

 private:
  struct Hit {
    Sample sample;
    std::uint64_t key = 0;  // of an edge its corners, of a corner itself twice, of an end its number
  };
  static constexpr std::uint64_t kEnds = std::uint64_t{1} << 63U;

  void addFace(const Segment& segment, std::uint32_t face) {
    std::array<double, 3> sides{};
    for (std::size_t i = 0; i < 3; ++i) sides[i] = side(segment, tin_.corner(face, i));
    if (std::all_of(sides.begin(), sides.end(), [](double s) { return s > 0; }) ||
        std::all_of(sides.begin(), sides.end(), [](double s) { return s < 0; }))
      return;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::size_t k = (i + 1) % 3;
      const Xyz& corner = tin_.corner(face, i);
      if (sides[i] == 0) add({along(segment, corner.x, corner.y), corner.z}, tin_.faces[face][i], tin_.faces[face][i]);
      if ((sides[i] > 0 && sides[k] < 0) || (sides[i] < 0 && sides[k] > 0))
        add(crossing(segment, corner, tin_.corner(face, k), sides[i], sides[k]), tin_.faces[face][i],
            tin_.faces[face][k]);
    }
    const Xyz &a = tin_.corner(face, 0), &b = tin_.corner(face, 1), &c = tin_.corner(face, 2);
    if (contains(a, b, c, segment.a)) hits_.push_back({{0, planeZ(a, b, c, segment.a)}, kEnds});
    if (contains(a, b, c, segment.b)) hits_.push_back({{1, planeZ(a, b, c, segment.b)}, kEnds + 1});
  }
  void add(const Sample& sample, std::int32_t u, std::int32_t v) {
    if (!(sample.t > 0 && sample.t < 1)) return;
    const auto [low, high] = std::minmax(u, v);
    hits_.push_back({sample, static_cast<std::uint64_t>(low) << 32U | static_cast<std::uint64_t>(high)});
  }

  const Tin& tin_;
  std::vector<Hit> hits_;
  std::vector<Sample> samples_;
};

}  // namespace lvx::peers

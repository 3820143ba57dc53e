// The bound of sampling: a walk over plain arrays (points, faces, neighbours) in plain doubles, from a face of a coarse grid's
// cell, without any care for segments through corners or along edges.
//
//   peer_sample_bound data=FOLDER [runs=3 pick=all|scattered]
#include "peer.h"

namespace lvx::peers {
namespace {

/// A face near every place: cells of about four faces, each naming one whose middle lies in it.
class StartGrid {
 public:
  explicit StartGrid(const Tin& tin) {
    Xy high{-1e300, -1e300};
    for (const Xyz& point : tin.points) {
      low_ = {std::min(low_.x, point.x), std::min(low_.y, point.y)};
      high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
    const double width = high.x - low_.x;
    const double height = high.y - low_.y;
    cell_ = std::sqrt(4 * width * height / static_cast<double>(tin.faces.size()));
    columns_ = static_cast<std::size_t>(width / cell_) + 1;
    rows_ = static_cast<std::size_t>(height / cell_) + 1;
    faces_.assign(columns_ * rows_, 0);
    for (std::size_t face = 0; face < tin.faces.size(); ++face) {
      const Xyz &a = tin.corner(face, 0), &b = tin.corner(face, 1), &c = tin.corner(face, 2);
      faces_[cellOf({(a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3})] = static_cast<std::int32_t>(face);
    }
  }
  [[nodiscard]] std::int32_t near(Xy place) const { return faces_[cellOf(place)]; }

 private:
  [[nodiscard]] std::size_t cellOf(Xy place) const {
    const auto along = [this](double distance, std::size_t count) {
      return static_cast<std::size_t>(std::clamp(distance / cell_, 0.0, static_cast<double>(count - 1)));
    };
    return along(place.y - low_.y, rows_) * columns_ + along(place.x - low_.x, columns_);
  }
  Xy low_{1e300, 1e300};
  double cell_ = 1.0;
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  std::vector<std::int32_t> faces_;
};

class Walker {
 public:
  Walker(const Tin& tin, const std::vector<Face>& next, const StartGrid& grid) : tin_(tin), next_(next), grid_(grid) {}

  /// A start off the surface is walked from the other end; with both ends off it, nothing is found.
  const std::vector<Sample>& walk(const Segment& segment) {
    samples_.clear();
    if (const std::int32_t face = faceOf(segment.a); face >= 0) {
      walkFrom(static_cast<std::size_t>(face), segment);
    } else if (const std::int32_t last = faceOf(segment.b); last >= 0) {
      walkFrom(static_cast<std::size_t>(last), {segment.b, segment.a});
      std::reverse(samples_.begin(), samples_.end());
      for (Sample& sample : samples_) sample.t = 1 - sample.t;
    }
    return samples_;
  }

 private:
  /// -1 where the way there leaves the surface.
  [[nodiscard]] std::int32_t faceOf(Xy place) const {
    for (std::int32_t number = grid_.near(place); number >= 0;) {
      const auto face = static_cast<std::size_t>(number);
      std::size_t i = 0;
      for (; i < 3; ++i) {
        const Xyz &u = tin_.corner(face, (i + 1) % 3), &v = tin_.corner(face, (i + 2) % 3);
        if ((v.x - u.x) * (place.y - u.y) - (v.y - u.y) * (place.x - u.x) < 0) break;
      }
      if (i == 3) return number;
      number = next_[face][i];
    }
    return -1;
  }

  void addEnd(std::size_t face, double t, Xy place) {
    if (tin_.hidden[face] == 0)
      samples_.push_back({t, planeZ(tin_.corner(face, 0), tin_.corner(face, 1), tin_.corner(face, 2), place)});
  }

  void walkFrom(std::size_t face, const Segment& segment) {
    addEnd(face, 0, segment.a);
    std::array<double, 3> sides{};
    for (std::size_t i = 0; i < 3; ++i) sides[i] = side(segment, tin_.corner(face, i));
    // The way out is the edge with its first end to the right of the segment and its second to the left.
    std::size_t out = 0;
    while (!(sides[(out + 1) % 3] <= 0 && sides[(out + 2) % 3] > 0)) ++out;
    double right = sides[(out + 1) % 3];
    double left = sides[(out + 2) % 3];
    for (;;) {
      const Sample sample =
          crossing(segment, tin_.corner(face, (out + 1) % 3), tin_.corner(face, (out + 2) % 3), right, left);
      if (sample.t >= 1) return addEnd(face, 1, segment.b);
      const std::int32_t number = next_[face][out];
      const auto after = static_cast<std::size_t>(number);
      if (tin_.hidden[face] == 0 || (number >= 0 && tin_.hidden[after] == 0)) samples_.push_back(sample);
      if (number < 0) return;
      const std::size_t in = static_cast<std::size_t>(
          std::find(next_[after].begin(), next_[after].end(), static_cast<std::int32_t>(face)) - next_[after].begin());
      const double ahead = side(segment, tin_.corner(after, in));
      if (ahead > 0) {
        out = (in + 1) % 3;
        left = ahead;
      } else {
        out = (in + 2) % 3;
        right = ahead;
      }
      face = after;
    }
  }

  const Tin& tin_;
  const std::vector<Face>& next_;
  const StartGrid& grid_;
  std::vector<Sample> samples_;
};

void sample(const Arguments& arguments) {
  const std::string folder = arguments.text("data");
  const std::vector<Segment> segments = readSegments(folder, arguments);
  const Tin tin = readTin(folder);
  const Stopwatch watch;
  const std::vector<Face> next = neighboursOf(tin);
  const StartGrid grid(tin);
  Line line("plain walk", "sample");
  line.add("build_s", watch.seconds());
  Walker walker(tin, next, grid);
  measureSampling(line, arguments, tin, segments, [&](SampleSum& sum) {
    for (const Segment& segment : segments) sum.add(segment, walker.walk(segment));
  });
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::sample); }

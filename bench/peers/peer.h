#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <numeric>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "../measuring.h"

/// What the programs under bench/peers share: arguments, clock, the line that each prints, the data set on disk, and what
/// two ways of doing a job must agree on. They call public libraries, and nothing of the product's.
///
/// A data set is a folder that make_data writes, numbers in the machine's own byte order:
///
///     points.f64      x (easting), y (northing), z: three doubles a point
///     faces.i32       three corners from 0 a face, counter-clockwise
///     hidden.u8       1 for a face without ground
///     segments.f64    cross segments x1 y1 x2 y2, from left to right
///     alignment.f64   CurveElement's words, one element after the other
///     probes.f64      points beside the alignment: x y
///     tin.xml         surface and alignment as LandXML, every decimal of which parses to the double of the other files
namespace lvx::peers {

using bench::Stopwatch;

// ---------------------------------------------------------------- arguments, clock, line

/// Arguments of the form name=value. Throws std::invalid_argument for others, and for a count that isn't a number.
class Arguments {
 public:
  Arguments(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
      const std::string text = argv[i];
      const std::size_t equals = text.find('=');
      if (equals == std::string::npos) throw std::invalid_argument("expected name=value: " + text);
      values_[text.substr(0, equals)] = text.substr(equals + 1);
    }
  }
  [[nodiscard]] std::string text(const std::string& name, const std::string& otherwise = {}) const {
    const auto found = values_.find(name);
    return found == values_.end() ? otherwise : found->second;
  }
  [[nodiscard]] std::size_t count(const std::string& name, std::size_t otherwise) const {
    const std::string value = text(name);
    if (value.empty()) return otherwise;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size())
      throw std::invalid_argument(name + " isn't a count: " + value);
    return number;
  }

 private:
  std::map<std::string, std::string> values_;
};

/// The one line that a program prints: an object of JSON.
class Line {
 public:
  Line(const std::string& peer, const std::string& task) { add("peer", peer).add("task", task); }
  Line& add(const char* name, const std::string& text) { return raw(name, '"' + text + '"'); }
  Line& add(const char* name, double number) {
    std::array<char, 32> digits{};
    const char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::general, 15).ptr;
    return raw(name, {digits.data(), static_cast<std::size_t>(end - digits.data())});
  }
  Line& add(const char* name, std::integral auto number) { return raw(name, std::to_string(number)); }
  /// The median of several runs and the peak memory.
  Line& addTimes(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    add("seconds", 0.5 * (times[times.size() / 2] + times[(times.size() - 1) / 2]));
    return add("fastest", times.front()).add("rss_mb", bench::peakMegabytes());
  }
  void print() const { std::printf("{%s}\n", body_.c_str()); }

 private:
  Line& raw(const char* name, const std::string& value) {
    body_ += (body_.empty() ? "\"" : ", \"") + std::string(name) + "\": " + value;
    return *this;
  }
  std::string body_;
};

/// Runs a program's work; what it throws becomes one line on standard error and exit code 1.
template <class Work>
int run(int argc, char** argv, Work work) try {
  work(Arguments(argc, argv));
  return 0;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s: %s\n", argv[0], failure.what());
  return 1;
}

// ---------------------------------------------------------------- the data set

struct Xy {
  double x = 0.0;
  double y = 0.0;
};
struct Xyz {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};
struct Segment {
  Xy a;
  Xy b;
};
using Face = std::array<std::int32_t, 3>;

template <class T>
std::vector<T> readItems(const std::string& path) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) throw std::runtime_error("can't read " + path);
  std::vector<T> items(static_cast<std::size_t>(in.tellg()) / sizeof(T));
  in.seekg(0);
  in.read(static_cast<char*>(static_cast<void*>(items.data())), static_cast<std::streamsize>(items.size() * sizeof(T)));
  if (!in) throw std::runtime_error("can't read " + path);
  return items;
}

template <class T>
void writeItems(const std::string& path, const std::vector<T>& items) {
  std::ofstream out(path, std::ios::binary);
  out.write(static_cast<const char*>(static_cast<const void*>(items.data())),
            static_cast<std::streamsize>(items.size() * sizeof(T)));
  out.close();
  if (!out) throw std::runtime_error("can't write " + path);
}

struct Tin {
  std::vector<Xyz> points;
  std::vector<Face> faces;
  std::vector<std::uint8_t> hidden;

  [[nodiscard]] const Xyz& corner(std::size_t face, std::size_t i) const { return at(faces[face][i]); }
  [[nodiscard]] const Xyz& at(std::int32_t point) const { return points[static_cast<std::size_t>(point)]; }
};

inline Tin readTin(const std::string& folder) {
  return {readItems<Xyz>(folder + "/points.f64"), readItems<Face>(folder + "/faces.i32"),
          readItems<std::uint8_t>(folder + "/hidden.u8")};
}

/// All segments; with pick=scattered in an order without locality, so that nobody can live on the last answer.
inline std::vector<Segment> readSegments(const std::string& folder, const Arguments& arguments) {
  std::vector<Segment> all = readItems<Segment>(folder + "/segments.f64");
  if (arguments.text("pick", "all") != "scattered") return all;
  std::size_t stride = all.size() * 5 / 13;
  while (std::gcd(stride, all.size()) != 1) ++stride;
  std::vector<Segment> result(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) result[i] = all[i * stride % all.size()];
  return result;
}

/// Neighbours across the edge opposite to each corner; -1 at the rim.
inline std::vector<Face> neighboursOf(const Tin& tin) {
  // Half edges by their smaller corner, so that matching looks at a handful.
  struct Half {
    std::int32_t other = 0;
    std::size_t slot = 0;
  };
  std::vector<std::size_t> first(tin.points.size() + 1, 0);
  const auto eachHalf = [&tin](auto use) {
    for (std::size_t face = 0; face < tin.faces.size(); ++face)
      for (std::size_t i = 0; i < 3; ++i) {
        const auto [low, high] = std::minmax(tin.faces[face][(i + 1) % 3], tin.faces[face][(i + 2) % 3]);
        use(static_cast<std::size_t>(low), Half{high, 3 * face + i});
      }
  };
  eachHalf([&first](std::size_t low, Half) { ++first[low + 1]; });
  for (std::size_t i = 1; i < first.size(); ++i) first[i] += first[i - 1];
  std::vector<Half> halves(3 * tin.faces.size());
  std::vector<std::size_t> fill(first.begin(), first.end() - 1);
  eachHalf([&](std::size_t low, Half half) { halves[fill[low]++] = half; });

  std::vector<Face> result(tin.faces.size(), Face{-1, -1, -1});
  for (std::size_t low = 0; low + 1 < first.size(); ++low)
    for (std::size_t i = first[low]; i < first[low + 1]; ++i)
      for (std::size_t k = i + 1; k < first[low + 1]; ++k) {
        if (halves[i].other != halves[k].other) continue;
        result[halves[i].slot / 3][halves[i].slot % 3] = static_cast<std::int32_t>(halves[k].slot / 3);
        result[halves[k].slot / 3][halves[k].slot % 3] = static_cast<std::int32_t>(halves[i].slot / 3);
      }
  return result;
}

// ---------------------------------------------------------------- samples along a segment

struct Sample {
  double t = 0.0;  ///< 0 at the segment's start, 1 at its end
  double z = 0.0;
};

/// What two ways of sampling must agree on. A sample is a crossing with an edge that has ground on a side, a corner of such
/// an edge on the segment, or an end of the segment on ground; each counts once.
class SampleSum {
 public:
  void add(const Segment& segment, const std::vector<Sample>& samples) {
    const double length = std::hypot(segment.b.x - segment.a.x, segment.b.y - segment.a.y);
    for (const Sample& sample : samples) {
      elevations_ += sample.z;
      distances_ += sample.t * length;
    }
    count_ += samples.size();
    hash_ = (hash_ ^ samples.size()) * 1099511628211ULL;
  }
  void into(Line& line) const {
    line.add("samples", count_).add("sum_z", elevations_).add("sum_d", distances_).add("counts_hash", hash_ >> 12);
  }

 private:
  std::size_t count_ = 0;
  double elevations_ = 0.0;
  double distances_ = 0.0;
  std::uint64_t hash_ = 14695981039346656037ULL;
};

/// Twice the area between a segment's line and a place: above 0 to the left.
inline double side(const Segment& segment, const Xyz& place) {
  return (segment.b.x - segment.a.x) * (place.y - segment.a.y) - (segment.b.y - segment.a.y) * (place.x - segment.a.x);
}

/// Where a place lies along a segment.
inline double along(const Segment& segment, double x, double y) {
  const double dx = segment.b.x - segment.a.x;
  const double dy = segment.b.y - segment.a.y;
  return ((x - segment.a.x) * dx + (y - segment.a.y) * dy) / (dx * dx + dy * dy);
}

/// The crossing of a segment's line with the edge from u to v, which lie on different sides.
inline Sample crossing(const Segment& segment, const Xyz& u, const Xyz& v, double sideU, double sideV) {
  const double w = sideU / (sideU - sideV);
  return {along(segment, u.x + w * (v.x - u.x), u.y + w * (v.y - u.y)), u.z + w * (v.z - u.z)};
}

/// Elevation of a face's plane.
inline double planeZ(const Xyz& a, const Xyz& b, const Xyz& c, Xy p) {
  const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y, px = p.x - a.x, py = p.y - a.y;
  return a.z + ((px * cy - py * cx) * (b.z - a.z) + (bx * py - by * px) * (c.z - a.z)) / (bx * cy - by * cx);
}

inline bool contains(const Xyz& a, const Xyz& b, const Xyz& c, Xy p) {
  const auto isLeft = [p](const Xyz& u, const Xyz& v) {
    return (v.x - u.x) * (p.y - u.y) - (v.y - u.y) * (p.x - u.x) >= 0;
  };
  return isLeft(a, b) && isLeft(b, c) && isLeft(c, a);
}

/// Runs `sampleAll`, which fills a SampleSum, as often as the arguments say, and prints the line.
template <class SampleAll>
void measureSampling(Line line, const Arguments& arguments, const Tin& tin, const std::vector<Segment>& segments,
                     SampleAll sampleAll) {
  std::vector<double> times;
  SampleSum sum;
  for (std::size_t run = std::max<std::size_t>(1, arguments.count("runs", 3)); run > 0; --run) {
    sum = {};
    const Stopwatch watch;
    sampleAll(sum);
    times.push_back(watch.seconds());
  }
  line.add("faces", tin.faces.size()).add("segments", segments.size()).addTimes(times);
  sum.into(line);
  line.print();
}

// ---------------------------------------------------------------- alignments

enum class CurveKind : std::int64_t { Line, Arc, Clothoid, Bloss, Cosine, Biquadratic, Sinusoid };

/// An element of an alignment, as eight words of a file.
struct CurveElement {
  CurveKind kind = CurveKind::Line;
  double distance = 0.0;  ///< from the alignment's start
  double length = 0.0;
  double x = 0.0;
  double y = 0.0;
  double direction = 0.0;  ///< counter-clockwise from east, radians
  double startCurvature = 0.0;
  double endCurvature = 0.0;  ///< positive to the left
};

inline constexpr double kStartStation = 1000.0;
inline constexpr double kPi = 3.14159265358979323846;

struct CurvePose {
  double x = 0.0;
  double y = 0.0;
  double direction = 0.0;
};

/// The part of the rise of its curvature that a transition has made at the part `t` of its length.
inline double riseAt(CurveKind kind, double t) {
  switch (kind) {
    case CurveKind::Bloss:
      return t * t * (3 - 2 * t);
    case CurveKind::Cosine:
      return 0.5 * (1 - std::cos(kPi * t));
    case CurveKind::Biquadratic:
      return t <= 0.5 ? 2 * t * t : 1 - 2 * (1 - t) * (1 - t);
    case CurveKind::Sinusoid:
      return t - std::sin(2 * kPi * t) / (2 * kPi);
    default:
      return t;
  }
}

/// The integral of riseAt from 0 to `t`.
inline double turnAt(CurveKind kind, double t) {
  switch (kind) {
    case CurveKind::Bloss:
      return t * t * t * (1 - 0.5 * t);
    case CurveKind::Cosine:
      return 0.5 * t - std::sin(kPi * t) / (2 * kPi);
    case CurveKind::Biquadratic:
      return t <= 0.5 ? t * t * t * 2 / 3 : t - 0.5 + (1 - t) * (1 - t) * (1 - t) * 2 / 3;
    case CurveKind::Sinusoid:
      return 0.5 * t * t + (std::cos(2 * kPi * t) - 1) / (4 * kPi * kPi);
    default:
      return 0.5 * t * t;
  }
}

inline double curvatureAt(const CurveElement& element, double d) {
  return element.startCurvature +
         (element.endCurvature - element.startCurvature) * riseAt(element.kind, d / element.length);
}

/// The pose at the distance `d` from the element's start: direction in closed form, place by Gauss-Legendre of ten nodes.
inline CurvePose poseAt(const CurveElement& element, double d) {
  static constexpr std::array<double, 5> kPlaces{0.1488743389816312, 0.4333953941292472, 0.6794095682990244,
                                                 0.8650633666889845, 0.9739065285171717};
  static constexpr std::array<double, 5> kWeights{0.2955242247147529, 0.2692667193099963, 0.2190863625159820,
                                                  0.1494513491505806, 0.0666713443086881};
  const double rise = element.endCurvature - element.startCurvature;
  const auto angle = [&](double at) {
    if (element.kind == CurveKind::Arc) return element.direction + at * element.startCurvature;
    return element.direction + at * element.startCurvature +
           element.length * rise * turnAt(element.kind, at / element.length);
  };
  if (element.kind == CurveKind::Line)
    return {element.x + d * std::cos(element.direction), element.y + d * std::sin(element.direction),
            element.direction};
  if (element.kind == CurveKind::Arc) {
    const double radius = 1 / element.startCurvature;
    const double end = angle(d);
    return {element.x + radius * (std::sin(end) - std::sin(element.direction)),
            element.y - radius * (std::cos(end) - std::cos(element.direction)), end};
  }
  // A biquadratic has another law behind its middle.
  const double middle = element.kind == CurveKind::Biquadratic ? std::min(d, 0.5 * element.length) : d;
  double x = 0.0;
  double y = 0.0;
  for (const auto& [from, to] : {std::pair(0.0, middle), std::pair(middle, d)}) {
    if (!(to > from)) continue;
    const int panels = 1 + static_cast<int>(std::abs(angle(to) - angle(from)) / 0.8);
    const double half = 0.5 * (to - from) / panels;
    for (int panel = 0; panel < panels; ++panel) {
      const double centre = from + (2 * panel + 1) * half;
      for (std::size_t i = 0; i < kPlaces.size(); ++i) {
        const double a = angle(centre - half * kPlaces[i]);
        const double b = angle(centre + half * kPlaces[i]);
        x += half * kWeights[i] * (std::cos(a) + std::cos(b));
        y += half * kWeights[i] * (std::sin(a) + std::sin(b));
      }
    }
  }
  return {element.x + x, element.y + y, angle(d)};
}

// ---------------------------------------------------------------- tables

struct TableRow {
  std::array<std::string, 3> texts;
  std::array<double, 7> numbers{};
};

/// Surveyed points with numbers of three decimals, by integer arithmetic.
inline TableRow tableRow(std::uint32_t row) {
  static constexpr std::array<const char*, 8> kCodes{"EDGE", "AXIS", "KERB", "DITCH", "FENCE", "TREE", "WALL", "SPOT"};
  const auto thousandths = [row](std::uint64_t factor, std::uint64_t range) {
    return static_cast<double>((row * factor + 12345) % range) / 1000.0;
  };
  return {{"PT-" + std::to_string(100000 + row), kCodes[row * 7 % 8], "survey point " + std::to_string(row % 1000)},
          {thousandths(1, 10000000), thousandths(7919, 160000) - 80, 4810000 + thousandths(104729, 2000000),
           480000 + thousandths(1299709, 10000000), 200 + thousandths(15485863, 100000),
           thousandths(32452843, 60000) - 30, static_cast<double>(row)}};
}

}  // namespace lvx::peers

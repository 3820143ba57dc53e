// Ground along cross segments of a TIN surface: how many samples a second, and what the surface costs to build.
//
//   bench_sample [data=DIR] [pick=all|scattered] [limit=0] [stride=1] [runs=5]
//                [triangles=1000000] [order=grid|shuffled] [through=anywhere|vertices]
//
// data: a folder with points.f64 (x y z), faces.i32 (three corners from 0), hidden.u8 (1 for a face without ground) and
// segments.f64 (x1 y1 x2 y2), all in the machine's own byte order. Without it the bench makes a terrain of its own, with
// segments square to a winding line; through=vertices lays them along the lines of a regular lattice, the slowest case.
// pick=scattered takes the segments in an order without locality. Prints one JSON line; what it ran on goes to standard
// error first. The surface is checked against a plain scan over all triangles on a few segments before anything is timed.

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "civil/tin_surface.h"
#include "measuring.h"

namespace {

using lvx::civil::TinSurface;
using lvx::civil::Triangle;
using lvx::civil::Vec2;
using lvx::civil::Vec3;

class Arguments {
 public:
  Arguments(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
      const std::string text = argv[i];
      const auto equals = text.find('=');
      if (equals == std::string::npos) throw std::invalid_argument("expected name=value: " + text);
      values_[text.substr(0, equals)] = text.substr(equals + 1);
    }
  }
  [[nodiscard]] std::string text(const std::string& name, const std::string& fallback) const {
    const auto found = values_.find(name);
    return found == values_.end() ? fallback : found->second;
  }
  [[nodiscard]] std::size_t count(const std::string& name, std::size_t fallback) const {
    const std::string value = text(name, "");
    if (value.empty()) return fallback;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size())
      throw std::invalid_argument(name + " is not a count: " + value);
    return number;
  }

 private:
  std::map<std::string, std::string> values_;
};

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Segment {
  Vec2 a;
  Vec2 b;
};

struct Job {
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  std::vector<Segment> segments;
};

template <class T>
std::vector<T> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) throw std::runtime_error("can't read " + path);
  std::vector<T> items(static_cast<std::size_t>(in.tellg()) / sizeof(T));
  in.seekg(0);
  in.read(reinterpret_cast<char*>(items.data()), static_cast<std::streamsize>(items.size() * sizeof(T)));
  return items;
}

Job readJob(const std::string& folder) {
  Job job{readFile<Vec3>(folder + "/points.f64"), readFile<Triangle>(folder + "/faces.i32"),
          readFile<Segment>(folder + "/segments.f64")};
  const auto hidden = readFile<std::uint8_t>(folder + "/hidden.u8");
  std::size_t kept = 0;
  for (std::size_t t = 0; t < job.triangles.size(); ++t)
    if (hidden[t] == 0) job.triangles[kept++] = job.triangles[t];
  job.triangles.resize(kept);
  return job;
}

/// A strip eight times as long as wide, in cells of 5 m.
Job makeJob(const Arguments& arguments) {
  constexpr double kCell = 5.0;
  constexpr double kHalf = 50.0;
  const bool isRegular = arguments.text("through", "anywhere") == "vertices";
  const auto rows = std::max<std::size_t>(
      30, static_cast<std::size_t>(std::sqrt(static_cast<double>(arguments.count("triangles", 1'000'000)) / 16)));
  const std::size_t columns = 8 * rows;
  std::mt19937_64 random(1);
  const auto noise = [&] { return static_cast<double>(random() >> 11) * 0x1p-53 - 0.5; };
  Job job;
  for (std::size_t r = 0; r <= rows; ++r)
    for (std::size_t c = 0; c <= columns; ++c) {
      const double jitter = isRegular ? 0.0 : 0.46 * kCell;
      const double x = 480'000 + kCell * static_cast<double>(c) + jitter * noise();
      const double y = 4'810'000 + kCell * static_cast<double>(r) + jitter * noise();
      job.points.push_back({x, y, 250 + 40 * std::sin(x / 700) * std::cos(y / 430) + 0.3 * noise()});
    }
  for (std::size_t r = 0; r < rows; ++r)
    for (std::size_t c = 0; c < columns; ++c) {
      const auto a = static_cast<std::int32_t>(r * (columns + 1) + c);
      const auto d = static_cast<std::int32_t>(a + static_cast<std::int32_t>(columns) + 1);
      job.triangles.push_back({a, a + 1, d + 1});
      job.triangles.push_back({a, d + 1, d});
    }
  if (arguments.text("order", "grid") == "shuffled") {
    std::vector<std::int32_t> numbers(job.points.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), random);
    std::vector<Vec3> points(job.points.size());
    const auto number = [&](std::int32_t corner) { return numbers[static_cast<std::size_t>(corner)]; };
    for (std::size_t i = 0; i < points.size(); ++i) points[static_cast<std::size_t>(numbers[i])] = job.points[i];
    job.points.swap(points);
    for (Triangle& t : job.triangles) t = {number(t.a), number(t.b), number(t.c)};
    std::shuffle(job.triangles.begin(), job.triangles.end(), random);
  }
  const double middle = 4'810'000 + kCell * static_cast<double>(rows / 2);
  const double end = kCell * static_cast<double>(columns) - 2 * kHalf;
  for (double along = 2 * kHalf; along < end; along += isRegular ? kCell : 1.0) {
    const double turn = isRegular ? 0.0 : 0.3 * std::sin(along / 150);
    const Vec2 at{480'000 + along, middle + (isRegular ? 0.0 : 30 * std::sin(along / 200))};
    const Vec2 across{-kHalf * std::sin(turn), kHalf * std::cos(turn)};
    job.segments.push_back({at + across, at - across});
  }
  return job;
}

/// Those the arguments pick; scattered ones in an order that no last answer helps.
std::vector<Segment> picked(const std::vector<Segment>& all, const Arguments& arguments) {
  std::size_t stride = std::max<std::size_t>(1, arguments.count("stride", 1));
  std::size_t count = (all.size() + stride - 1) / stride;
  if (arguments.text("pick", "all") == "scattered") {
    stride = count * 5 / 13;
    while (std::gcd(stride, count) != 1) ++stride;
  }
  const std::size_t limit = arguments.count("limit", 0);
  if (limit > 0) count = std::min(count, limit);
  std::vector<Segment> result(count);
  for (std::size_t i = 0; i < count; ++i) result[i] = all[i * stride % all.size()];
  return result;
}

/// What two ways of sampling must agree on.
class Sum {
 public:
  void add(const Segment& segment, const std::vector<Vec3>& samples) {
    const Vec2 d = segment.b - segment.a;
    const double perLength = 1.0 / lvx::civil::length(d);
    for (const Vec3& p : samples) {
      elevation += p.z;
      distance += ((p.x - segment.a.x) * d.x + (p.y - segment.a.y) * d.y) * perLength;
    }
    count += samples.size();
    hash = (hash ^ samples.size()) * 1099511628211ULL;
  }

  std::size_t count = 0;
  double elevation = 0.0;
  double distance = 0.0;
  std::uint64_t hash = 14695981039346656037ULL;
};

/// Every fiftieth edge crossing or so by a plain scan: the number of samples strictly between the ends. Edges are told
/// apart by their corners.
void checkByScan(const Job& job, const TinSurface& surface) {
  const std::span<const Vec3> points = surface.points();
  std::vector<Vec3> samples;
  const std::size_t stride = std::max<std::size_t>(1, job.segments.size() / 5);
  for (std::size_t i = stride / 2; i < job.segments.size(); i += stride) {
    const auto [a, b] = job.segments[i];
    std::vector<std::pair<std::int32_t, std::int32_t>> edges;
    std::vector<std::int32_t> vertices;
    for (const Triangle& t : surface.triangles()) {
      const std::int32_t corners[3] = {t.a, t.b, t.c};
      for (std::size_t k = 0; k < 3; ++k) {
        const auto [low, high] = std::minmax(corners[k], corners[(k + 1) % 3]);
        const auto plan = [&](std::int32_t n) {
          const Vec3& p = points[static_cast<std::size_t>(n)];
          return Vec2{p.x, p.y};
        };
        const Vec2 p = plan(low), q = plan(high);
        const double sideP = cross(b - a, p - a), sideQ = cross(b - a, q - a);
        const double sideA = cross(q - p, a - p), sideB = cross(q - p, b - p);
        if (sideP * sideQ < 0 && sideA * sideB < 0) edges.emplace_back(low, high);
        if (sideP == 0 && dot(b - a, p - a) > 0 && dot(a - b, p - b) > 0) vertices.push_back(low);
      }
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    std::sort(vertices.begin(), vertices.end());
    vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
    samples.clear();
    surface.sample(a, b, samples);
    std::size_t between = samples.size();
    if (!samples.empty() && samples.front().x == a.x && samples.front().y == a.y) --between;
    if (samples.size() > 1 && samples.back().x == b.x && samples.back().y == b.y) --between;
    if (between != edges.size() + vertices.size())
      throw std::runtime_error("segment " + std::to_string(i) + ": " + std::to_string(between) +
                               " samples, a scan finds " + std::to_string(edges.size() + vertices.size()));
  }
}

void tellMachine() {
  std::ifstream in("/proc/cpuinfo");
  std::string line;
  while (std::getline(in, line) && line.rfind("model name", 0) != 0) {
  }
  std::fprintf(stderr, "compiler %s, %s, %s\n", __VERSION__,
#ifdef NDEBUG
               "optimised build",
#else
               "debug build: its times mean nothing",
#endif
               line.c_str());
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return 0.5 * (values[values.size() / 2] + values[(values.size() - 1) / 2]);
}

}  // namespace

int main(int argc, char** argv) try {
  const Arguments arguments(argc, argv);
  tellMachine();
  const std::string folder = arguments.text("data", "");
  Job job = folder.empty() ? makeJob(arguments) : readJob(folder);
  const std::size_t faces = job.triangles.size();
  const std::vector<Segment> segments = picked(job.segments, arguments);

  const auto buildStart = std::chrono::steady_clock::now();
  const TinSurface surface(std::move(job.points), std::move(job.triangles));
  const double buildSeconds = secondsSince(buildStart);
  const double peak = lvx::bench::peakMegabytes();
  checkByScan(job, surface);

  std::vector<double> times;
  std::vector<Vec3> samples;
  Sum sum;
  for (std::size_t run = std::max<std::size_t>(1, arguments.count("runs", 5)); run > 0; --run) {
    sum = {};
    const auto start = std::chrono::steady_clock::now();
    for (const Segment& segment : segments) {
      samples.clear();
      surface.sample(segment.a, segment.b, samples);
      sum.add(segment, samples);
    }
    times.push_back(secondsSince(start));
  }
  const double seconds = medianOf(times);
  const std::string made = arguments.text("through", "anywhere") + " " + arguments.text("order", "grid");
  std::printf("{\"peer\": \"lvx\", \"task\": \"sample\", \"data\": \"%s\", \"pick\": \"%s\", \"build_s\": %.12g, ",
              folder.empty() ? made.c_str() : folder.c_str(), arguments.text("pick", "all").c_str(), buildSeconds);
  std::printf("\"faces\": %zu, \"segments\": %zu, \"seconds\": %.12g, \"fastest\": %.12g, ", faces, segments.size(),
              seconds, *std::min_element(times.begin(), times.end()));
  std::printf("\"samples_per_s\": %.12g, \"samples\": %zu, \"sum_z\": %.12g, \"sum_d\": %.12g, \"counts_hash\": %llu, ",
              static_cast<double>(sum.count) / seconds, sum.count, sum.elevation, sum.distance,
              static_cast<unsigned long long>(sum.hash >> 12));
  std::printf("\"rss_mb\": %.12g}\n", peak);
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  std::fprintf(stderr, "bench_sample: %s\n", error.what());
  return EXIT_FAILURE;
}

// Writes a data set (see peer.h), the same numbers on every machine: hills under a jittered grid, an alignment that swings
// about its middle line, segments of 50 to each side of it every metre, points within 80 of it.
//
//   make_data out=FOLDER [triangles=1000000 points=1000000 order=grid|shuffled|lattice holes=0 law=clothoid xml=0]
//
// order=shuffled numbers points and faces without any locality; order=lattice leaves the grid as it is and lays the segments
// along its lines. The alignment starts and ends off the terrain, so its first and last segments lie partly or wholly
// outside. Segments go through no corner but on a lattice.
#include <cstring>
#include <filesystem>
#include <memory>

#include "peer.h"

namespace lvx::peers {
namespace {

constexpr double kSpacing = 5.0;
constexpr double kHalf = 50.0;
constexpr double kWest = 480000.0;
constexpr double kSouth = 4810000.0;

/// A double in [0, 1) from a seed and a counter.
double noise(std::uint64_t seed, std::uint64_t i) {
  std::uint64_t z = seed * 0x9e3779b97f4a7c15ULL + i * 0xd1342543de82ef95ULL + 0x632be59bd9b4e019ULL;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
  return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
}

double rounded(double value, double perUnit) { return std::round(value * perUnit) / perUnit; }

/// Hills of several sizes, and a little roughness.
double elevation(double x, double y, std::uint64_t i) {
  x -= kWest;
  y -= kSouth;
  return 250 + 40 * std::sin(x / 700) * std::cos(y / 430) + 12 * std::sin(x / 130 + 1.3 * std::cos(y / 90)) +
         3 * std::cos(x / 31 - y / 27) + 0.3 * noise(7, i);
}

struct Grid {
  std::size_t rows = 0;
  std::size_t columns = 0;
  bool isRegular = false;
  [[nodiscard]] double width() const { return kSpacing * static_cast<double>(columns); }
  [[nodiscard]] double height() const { return kSpacing * static_cast<double>(rows); }
};

/// Corners jittered so that every cell stays convex and the rim a rectangle.
Tin makeTin(const Grid& grid) {
  Tin tin;
  const auto number = [&grid](std::size_t row, std::size_t column) {
    return static_cast<std::int32_t>(row * (grid.columns + 1) + column);
  };
  for (std::size_t row = 0; row <= grid.rows; ++row)
    for (std::size_t column = 0; column <= grid.columns; ++column) {
      const auto i = static_cast<std::uint64_t>(number(row, column));
      const bool isFixedX = grid.isRegular || column == 0 || column == grid.columns;
      const bool isFixedY = grid.isRegular || row == 0 || row == grid.rows;
      const double jitterX = isFixedX ? 0 : 0.46 * (noise(1, i) - 0.5);
      const double jitterY = isFixedY ? 0 : 0.46 * (noise(2, i) - 0.5);
      const double x = rounded(kWest + kSpacing * (static_cast<double>(column) + jitterX), 1000);
      const double y = rounded(kSouth + kSpacing * (static_cast<double>(row) + jitterY), 1000);
      tin.points.push_back({x, y, rounded(elevation(x, y, i), 1000)});
    }
  for (std::size_t row = 0; row < grid.rows; ++row)
    for (std::size_t column = 0; column < grid.columns; ++column) {
      const std::int32_t a = number(row, column), b = number(row, column + 1);
      const std::int32_t d = number(row + 1, column), e = number(row + 1, column + 1);
      if (noise(3, static_cast<std::uint64_t>(a)) < 0.5) {
        tin.faces.push_back({a, b, e});
        tin.faces.push_back({a, e, d});
      } else {
        tin.faces.push_back({a, b, d});
        tin.faces.push_back({b, e, d});
      }
    }
  tin.hidden.assign(tin.faces.size(), 0);
  return tin;
}

/// Takes the ground off the faces within rectangles along the middle of the terrain.
void hide(Tin& tin, std::size_t holes, const Grid& grid) {
  for (std::size_t hole = 0; hole < holes; ++hole) {
    const double x = kWest + grid.width() * (static_cast<double>(hole) + 0.5) / static_cast<double>(holes);
    const double y = kSouth + 0.5 * grid.height() + 80 * (noise(4, hole) - 0.5);
    for (std::size_t face = 0; face < tin.faces.size(); ++face) {
      const Xyz& corner = tin.corner(face, 0);
      if (std::abs(corner.x - x) < 20 + 20 * noise(5, hole) && std::abs(corner.y - y) < 15 + 15 * noise(6, hole))
        tin.hidden[face] = 1;
    }
  }
}

std::vector<std::int32_t> shuffledNumbers(std::size_t count, std::uint64_t seed) {
  std::vector<std::int32_t> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 0);
  for (std::size_t i = count; i > 1; --i)
    std::swap(numbers[i - 1], numbers[static_cast<std::size_t>(noise(seed, i) * static_cast<double>(i))]);
  return numbers;
}

/// As after years of editing.
void shuffle(Tin& tin) {
  const std::vector<std::int32_t> pointNumbers = shuffledNumbers(tin.points.size(), 11);
  const std::vector<std::int32_t> faceNumbers = shuffledNumbers(tin.faces.size(), 12);
  Tin result = tin;
  for (std::size_t i = 0; i < tin.points.size(); ++i)
    result.points[static_cast<std::size_t>(pointNumbers[i])] = tin.points[i];
  for (std::size_t face = 0; face < tin.faces.size(); ++face) {
    const auto to = static_cast<std::size_t>(faceNumbers[face]);
    for (std::size_t i = 0; i < 3; ++i)
      result.faces[to][i] = pointNumbers[static_cast<std::size_t>(tin.faces[face][i])];
    result.hidden[to] = tin.hidden[face];
  }
  tin = std::move(result);
}

/// Groups of line, transition, arc, transition from before the terrain's west rim to behind its east rim.
std::vector<CurveElement> makeAlignment(const Grid& grid, CurveKind law) {
  std::vector<CurveElement> elements;
  CurvePose at{kWest - 120, kSouth + 0.5 * grid.height(), 0.15};
  double distance = 0.0;
  const auto append = [&](CurveKind kind, double length, double from, double to) {
    elements.push_back({kind, distance, length, at.x, at.y, at.direction, from, to});
    at = poseAt(elements.back(), length);
    distance += length;
  };
  for (std::uint64_t group = 0; at.x < kWest + grid.width() + 40; ++group) {
    const double line = 20 + 30 * noise(21, group);
    const double transition = 20 + 15 * noise(22, group);
    const double arc = 35 + 35 * noise(23, group);
    const double drift = (at.y - kSouth - 0.5 * grid.height()) / (0.5 * grid.height());
    const double swing = (group % 2 == 1 ? 1 : -1) * (0.06 + 0.1 * noise(24, group)) - 0.3 * drift;
    const double curvature = (swing - at.direction) / (arc + transition);
    append(CurveKind::Line, line, 0, 0);
    append(law, transition, 0, curvature);
    append(CurveKind::Arc, arc, curvature, curvature);
    append(law, transition, curvature, 0);
  }
  append(CurveKind::Line, 50, 0, 0);
  return elements;
}

class TextFile {
 public:
  explicit TextFile(const std::string& path) : file_(std::fopen(path.c_str(), "wb")) {
    if (!file_) throw std::runtime_error("can't write " + path);
  }
  TextFile& operator<<(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size())
      throw std::runtime_error("can't write a drawing");
    return *this;
  }
  TextFile& operator<<(std::int32_t number) {
    std::array<char, 16> digits{};
    return *this << std::string_view(digits.data(),
                                     std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
  }
  TextFile& fixed(double number, int decimals) {
    std::array<char, 48> digits{};
    char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, decimals).ptr;
    return *this << std::string_view(digits.data(), end);
  }
  void finish() {
    if (std::fclose(file_.release()) != 0) throw std::runtime_error("can't write a drawing");
  }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> file_;
};

void writePlace(TextFile& out, const char* name, double x, double y) {
  (out << "<" << name << ">").fixed(y, 9);
  (out << " ").fixed(x, 9) << "</" << name << ">";
}

void writeElement(TextFile& out, const CurveElement& element) {
  const CurvePose end = poseAt(element, element.length);
  const double curvature = element.startCurvature != 0 ? element.startCurvature : element.endCurvature;
  const char* const rotation = curvature > 0 ? "ccw" : "cw";
  const auto writeRadius = [&out](const char* name, double bend) {
    out << " " << name << "=\"";
    if (bend == 0)
      out << "INF\"";
    else
      out.fixed(std::abs(1 / bend), 9) << "\"";
  };
  const char* name = "Line";
  if (element.kind == CurveKind::Line) {
    (out << "<Line length=\"").fixed(element.length, 9) << "\">";
  } else if (element.kind == CurveKind::Arc) {
    name = "Curve";
    out << "<Curve rot=\"" << rotation << "\" crvType=\"arc\"";
    writeRadius("radius", curvature);
    (out << " length=\"").fixed(element.length, 9) << "\">";
  } else {
    name = "Spiral";
    (out << "<Spiral length=\"").fixed(element.length, 9) << "\"";
    writeRadius("radiusStart", element.startCurvature);
    writeRadius("radiusEnd", element.endCurvature);
    out << " rot=\"" << rotation << "\" spiType=\"" << (element.kind == CurveKind::Bloss ? "bloss" : "clothoid")
        << "\">";
  }
  writePlace(out, "Start", element.x, element.y);
  if (element.kind == CurveKind::Arc)
    writePlace(out, "Center", element.x - std::sin(element.direction) / curvature,
               element.y + std::cos(element.direction) / curvature);
  if (element.kind > CurveKind::Arc) {  // where the tangents of both ends meet
    const double turn = std::sin(end.direction - element.direction);
    const double to =
        ((element.x - end.x) * std::sin(end.direction) - (element.y - end.y) * std::cos(end.direction)) / -turn;
    writePlace(out, "PI", element.x + to * std::cos(element.direction), element.y + to * std::sin(element.direction));
  }
  writePlace(out, "End", end.x, end.y);
  out << "</" << name << ">\n";
}

void writeLandXml(const std::string& path, const Tin& tin, const std::vector<CurveElement>& alignment) {
  TextFile out(path);
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\" date=\"2024-01-01\" "
         "time=\"12:00:00\">\n<Units><Metric areaUnit=\"squareMeter\" linearUnit=\"meter\" volumeUnit=\"cubicMeter\" "
         "temperatureUnit=\"celsius\" pressureUnit=\"milliBars\" directionUnit=\"decimal degrees\" "
         "angularUnit=\"decimal degrees\"/></Units>\n<Project name=\"Synthetic terrain\"/>\n"
         "<Alignments name=\"\">\n<Alignment name=\"Axis\" length=\"";
  out.fixed(alignment.back().distance + alignment.back().length, 9) << "\" staStart=\"";
  out.fixed(kStartStation, 3) << "\">\n<CoordGeom>\n";
  for (const CurveElement& element : alignment) writeElement(out, element);
  out << "</CoordGeom>\n</Alignment>\n</Alignments>\n<Surfaces>\n<Surface name=\"Ground\">\n"
         "<Definition surfType=\"TIN\">\n<Pnts>\n";
  for (std::size_t i = 0; i < tin.points.size(); ++i) {
    out << "<P id=\"" << static_cast<std::int32_t>(i) + 1 << "\">";
    out.fixed(tin.points[i].y, 3) << " ";
    out.fixed(tin.points[i].x, 3) << " ";
    out.fixed(tin.points[i].z, 3) << "</P>\n";
  }
  out << "</Pnts>\n<Faces>\n";
  for (std::size_t face = 0; face < tin.faces.size(); ++face) {
    const auto& [a, b, c] = tin.faces[face];
    out << (tin.hidden[face] != 0 ? "<F i=\"1\">" : "<F>") << a + 1 << " " << b + 1 << " " << c + 1 << "</F>\n";
  }
  out << "</Faces>\n</Definition>\n</Surface>\n</Surfaces>\n</LandXML>\n";
  out.finish();
}

CurveKind lawNamed(const std::string& name) {
  static const std::map<std::string, CurveKind> kLaws{{"clothoid", CurveKind::Clothoid},
                                                      {"bloss", CurveKind::Bloss},
                                                      {"cosine", CurveKind::Cosine},
                                                      {"biquadratic", CurveKind::Biquadratic},
                                                      {"sinusoid", CurveKind::Sinusoid}};
  const auto found = kLaws.find(name);
  if (found == kLaws.end()) throw std::invalid_argument("no transition is named '" + name + "'");
  return found->second;
}

void makeData(const Arguments& arguments) {
  const std::string folder = arguments.text("out");
  const std::string order = arguments.text("order", "grid");
  if (folder.empty()) throw std::invalid_argument("out=FOLDER is missing");
  const std::size_t triangles = arguments.count("triangles", 1000000);
  Grid grid;
  grid.isRegular = order == "lattice";
  grid.rows = static_cast<std::size_t>(std::sqrt(static_cast<double>(triangles) / 16));
  grid.columns = (triangles / 2 + grid.rows - 1) / grid.rows;

  Tin tin = makeTin(grid);
  hide(tin, arguments.count("holes", 0), grid);
  if (order == "shuffled") shuffle(tin);
  const std::vector<CurveElement> alignment = makeAlignment(grid, lawNamed(arguments.text("law", "clothoid")));
  const double length = alignment.back().distance + alignment.back().length;

  const auto poseOn = [&alignment](double distance) {
    auto element = std::upper_bound(alignment.begin(), alignment.end(), distance,
                                    [](double at, const CurveElement& one) { return at < one.distance; });
    --element;
    return poseAt(*element, distance - element->distance);
  };
  const auto beside = [](const CurvePose& pose, double offset, double perUnit) {  // positive to the right
    return Xy{rounded(pose.x + offset * std::sin(pose.direction), perUnit),
              rounded(pose.y - offset * std::cos(pose.direction), perUnit)};
  };
  std::vector<Segment> segments;
  if (grid.isRegular) {
    const double middle = kSouth + kSpacing * static_cast<double>(grid.rows / 2);
    for (std::size_t column = 1; column < grid.columns; ++column) {
      const double x = kWest + kSpacing * static_cast<double>(column);
      segments.push_back({{x, middle + kHalf}, {x, middle - kHalf}});
    }
  } else {
    for (double distance = 0; distance <= length; distance += 1.0) {
      const CurvePose pose = poseOn(distance);
      segments.push_back({beside(pose, -kHalf, 1e6), beside(pose, kHalf, 1e6)});
    }
  }
  std::vector<Xy> probes(arguments.count("points", 1000000));
  for (std::size_t i = 0; i < probes.size(); ++i)  // clear of the ends, where a foot is none
    probes[i] = beside(poseOn(1 + (length - 2) * noise(31, i)), 160 * (noise(32, i) - 0.5), 1e4);

  std::filesystem::create_directories(folder);
  writeItems(folder + "/points.f64", tin.points);
  writeItems(folder + "/faces.i32", tin.faces);
  writeItems(folder + "/hidden.u8", tin.hidden);
  writeItems(folder + "/alignment.f64", alignment);
  writeItems(folder + "/segments.f64", segments);
  writeItems(folder + "/probes.f64", probes);
  if (arguments.count("xml", 0) != 0) writeLandXml(folder + "/tin.xml", tin, alignment);
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::makeData); }

#include "landxml/detail/sample_line_markup.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "civil/ground_walk.h"
#include "landxml/detail/file_editor.h"
#include "landxml/detail/tree.h"
#include "text/number_text.h"

namespace lvx::landxml::detail {

using civil::Vec2;

namespace {

/// Decimals of grounds in the file: a tenth of a millimetre where the unit is a metre. They are for other programs; the
/// line itself stands in its vertices.
constexpr int kGroundDecimals = 4;
/// A line turned by less runs square to the alignment; radians.
constexpr double kSquare = 1e-9;

/// Distance along the line from its first vertex to its place nearest to `point`.
double distanceAlong(const std::vector<Vec2>& vertices, Vec2 point) {
  double nearest = std::numeric_limits<double>::infinity();
  double result = 0.0;
  double before = 0.0;
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) {
    const Vec2 leg = vertices[i + 1] - vertices[i];
    const double square = civil::dot(leg, leg);
    const double t = square > 0.0 ? std::clamp(civil::dot(point - vertices[i], leg) / square, 0.0, 1.0) : 0.0;
    const double distance = civil::length(point - (vertices[i] + t * leg));
    const double legLength = std::sqrt(square);
    if (distance < nearest) {
      nearest = distance;
      result = before + t * legLength;
    }
    before += legLength;
  }
  return result;
}

double lengthOf(const std::vector<Vec2>& vertices) {
  double sum = 0.0;
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) sum += civil::length(vertices[i + 1] - vertices[i]);
  return sum;
}

bool meets(const civil::Box& box, const std::vector<Vec2>& vertices) {
  const auto [left, right] =
      std::minmax_element(vertices.begin(), vertices.end(), [](Vec2 a, Vec2 b) { return a.x < b.x; });
  const auto [low, high] =
      std::minmax_element(vertices.begin(), vertices.end(), [](Vec2 a, Vec2 b) { return a.y < b.y; });
  return left->x <= box.maxX && right->x >= box.minX && low->y <= box.maxY && high->y >= box.minY;
}

/// "45.3025" for 45 degrees, 30 minutes, 25 seconds; to a ten-thousandth of a second.
std::string degreesMinutesSeconds(double degrees) {
  constexpr std::int64_t kParts = 10'000;
  const auto parts = static_cast<std::int64_t>(std::llround(std::abs(degrees) * 3600.0 * kParts));
  const auto padded = [](std::int64_t value, std::size_t width) {
    const std::string digits = std::to_string(value);
    return std::string(width > digits.size() ? width - digits.size() : 0, '0') + digits;
  };
  const std::int64_t seconds = parts / kParts;
  return (degrees < 0.0 ? "-" : "") + std::to_string(seconds / 3600) + '.' + padded(seconds / 60 % 60, 2) +
         padded(seconds % 60, 2) + padded(parts % kParts, 4);
}

}  // namespace

SampleLineMarkup::SampleLineMarkup(const civil::Drawing& drawing, const FileTerms& terms, const SectionMarkup& markup,
                                   Node root)
    : drawing_(drawing), terms_(terms), markup_(markup) {
  const Node units = child(root, "Units");
  Node unit = child(units, "Metric");
  if (!unit) unit = child(units, "Imperial");
  const std::string_view name = unit ? attribute(unit, "angularUnit") : std::string_view();
  if (name.ends_with("grads"))
    angularUnit_ = AngularUnit::Grads;
  else if (name.ends_with("dd.mm.ss"))
    angularUnit_ = AngularUnit::DegreesMinutesSeconds;
  else if (name.ends_with("degrees"))
    angularUnit_ = AngularUnit::Degrees;
}

bool SampleLineMarkup::isSampled(const std::string& entry) const {
  return entry == kExtentName || std::any_of(drawing_.surfaces.begin(), drawing_.surfaces.end(),
                                             [&](const auto& surface) { return surface.name == entry; });
}

std::string SampleLineMarkup::verticesText(const civil::SampleLine& line) const {
  std::string text;
  for (const Vec2 vertex : line.vertices) text += (text.empty() ? "" : " ") + terms_.placeText(vertex);
  return text;
}

std::string SampleLineMarkup::skewText(const civil::AlignmentObject& alignment, const civil::SampleLine& line) const {
  const auto pose = alignment.geometry.poseAt(line.station);
  const Vec2 across = line.vertices.back() - line.vertices.front();
  if (!pose || civil::length(across) == 0.0) return {};
  const double skew =
      std::remainder(pose->direction - civil::kPi / 2.0 - std::atan2(across.y, across.x), 2.0 * civil::kPi);
  if (std::abs(skew) <= kSquare) return {};
  switch (angularUnit_) {
    case AngularUnit::Radians:
      break;
    case AngularUnit::Grads:
      return numberText(skew * 200.0 / civil::kPi);
    case AngularUnit::Degrees:
      return numberText(skew * 180.0 / civil::kPi);
    case AngularUnit::DegreesMinutesSeconds:
      return degreesMinutesSeconds(skew * 180.0 / civil::kPi);
  }
  return numberText(skew);
}

std::string SampleLineMarkup::groundsText(const civil::AlignmentObject& alignment, const civil::SampleLine& line,
                                          Node like, const std::string& lead) const {
  const auto pose = alignment.geometry.poseAt(line.station);
  const double middle = pose ? distanceAlong(line.vertices, pose->point) : lengthOf(line.vertices) / 2.0;
  const auto shown = [&](double length) { return text::shortText(length / terms_.lengthFactor, kGroundDecimals); };
  const std::string surfaceName = FileEditor::nameLike(like, "CrossSectSurf");
  const std::string listName = FileEditor::nameLike(like, "PntList2D");
  std::string text;
  const auto add = [&](const std::string& name, const std::vector<std::string>& lists) {
    text += lead + '<' + surfaceName + " name=\"" + escapedAttribute(name) + "\">";
    for (const std::string& list : lists) text += '<' + listName + '>' + list + "</" + listName + '>';
    text += "</" + surfaceName + '>';
  };
  for (const civil::SurfaceObject& surface : drawing_.surfaces) {
    if (surface.surface.box().isEmpty() || !meets(surface.surface.box(), line.vertices)) continue;
    civil::GroundWalk walk(surface.surface);
    std::vector<double> starts{0.0};
    for (std::size_t i = 0; i + 1 < line.vertices.size(); ++i) {
      walk.add(line.vertices[i], line.vertices[i + 1]);
      starts.push_back(starts.back() + civil::length(line.vertices[i + 1] - line.vertices[i]));
    }
    std::vector<std::string> lists;
    for (const civil::GroundWalk::Piece& piece : walk.pieces()) {
      std::string list;
      std::string last;
      for (const civil::GroundWalk::Sample& sample : piece) {
        const Vec2 place{sample.place.x, sample.place.y};
        const double along = starts[sample.leg] + civil::length(place - line.vertices[sample.leg]);
        std::string entry = shown(along - middle) + ' ' + shown(sample.place.z);
        if (entry == last) continue;
        list += (list.empty() ? "" : " ") + entry;
        last = std::move(entry);
      }
      lists.push_back(std::move(list));
    }
    if (!lists.empty()) add(surface.name, lists);
  }
  if (text.empty()) {
    const std::string left = shown(-middle);
    const std::string right = shown(lengthOf(line.vertices) - middle);
    add(std::string(kExtentName), {left + " 0" + (left == "0" || right == "0" ? "" : " 0 0") + ' ' + right + " 0"});
  }
  return text;
}

Markup SampleLineMarkup::featureOf(const civil::SampleLine& line, Node like) const {
  std::vector<std::pair<std::string, std::string>> properties;
  // 1.0 has no name for a CrossSect.
  if (!markup_.hasSectionNames()) properties.emplace_back("name", line.name);
  properties.emplace_back("handle", terms_.handleText(line.handle));
  properties.emplace_back("vertices", verticesText(line));
  return markup_.featureMarkup(like, {}, "lvx_sampleLine", properties);
}

std::string SampleLineMarkup::lineText(const civil::AlignmentObject& alignment, const civil::SampleLine& line,
                                       Node like, const Layout& layout) const {
  const std::string name = FileEditor::nameLike(like, "CrossSect");
  const Layout inner = layout.inner();
  std::string text = '<' + name + " sta=\"" + terms_.lengthText(line.station) + '"';
  if (markup_.hasSectionNames()) text += " name=\"" + escapedAttribute(line.name) + '"';
  if (const std::string skew = skewText(alignment, line); !skew.empty()) text += " angleSkew=\"" + skew + '"';
  text += '>' + groundsText(alignment, line, like, inner.lead) + inner.lead;
  featureOf(line, like).print(inner, text);
  return text + layout.lead + "</" + name + '>';
}

}  // namespace lvx::landxml::detail

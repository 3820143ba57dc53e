#include "civil/element_list.h"

#include <algorithm>

namespace lvx::civil {
namespace {

/// A shorter polyline takes no more memory as elements than with what finds it.
constexpr std::size_t kLeastPolyline = 4;

void scaleElement(Element& element, double factor) {
  element.start = factor * element.start;
  element.givenEnd = factor * element.givenEnd;
  element.length *= factor;
  element.startCurvature /= factor;
  element.endCurvature /= factor;
}

template <class Value>
void shrink(std::vector<Value>& values) {
  // A copy for the sake of a few bytes would take more for a while.
  if (values.capacity() > values.size() + values.size() / 8) values.shrink_to_fit();
}

}  // namespace

void ElementList::add(const Element& element) { whole_.push_back(element); }

void ElementList::addPolyline(std::vector<Vec2> points) {
  if (points.size() < 2) return;
  const std::size_t count = points.size() - 1;
  if (count < kLeastPolyline || (polylines_ && polylines_->factor != 1.0)) {
    for (std::size_t i = 0; i < count; ++i) whole_.push_back(makeLine(points[i], points[i + 1]));
    return;
  }
  const std::size_t first = size();
  const std::size_t before = inPolylines();
  Polylines& lines = polylines_.made();
  lines.runs.push_back({static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(count),
                        static_cast<std::uint32_t>(lines.points.size()), static_cast<std::uint32_t>(before)});
  if (lines.points.empty())
    lines.points = std::move(points);
  else
    lines.points.insert(lines.points.end(), points.begin(), points.end());
}

void ElementList::shrinkToFit() {
  shrink(whole_);
  if (!polylines_) return;
  shrink(polylines_->points);
  shrink(polylines_->runs);
}

ElementList::Place ElementList::placeOf(std::size_t index) const {
  if (!polylines_) return {false, index};
  const auto& runs = polylines_->runs;
  const auto behind =
      std::upper_bound(runs.begin(), runs.end(), index, [](std::size_t i, const Run& run) { return i < run.first; });
  if (behind == runs.begin()) return {false, index};
  const Run& run = *(behind - 1);
  if (index - run.first < run.count) return {true, run.firstPoint + (index - run.first)};
  return {false, index - run.before - run.count};
}

Element ElementList::at(std::size_t index) const {
  const Place place = placeOf(index);
  if (!place.isInPolyline) return whole_[place.index];
  Element line = makeLine(polylines_->points[place.index], polylines_->points[place.index + 1]);
  if (polylines_->factor != 1.0) scaleElement(line, polylines_->factor);
  return line;
}

double ElementList::lengthAt(std::size_t index) const {
  const Place place = placeOf(index);
  if (!place.isInPolyline) return whole_[place.index].length;
  const double own = length(polylines_->points[place.index + 1] - polylines_->points[place.index]);
  return own * polylines_->factor;
}

std::size_t ElementList::count(ElementKind kind) const {
  const auto whole = std::count_if(whole_.begin(), whole_.end(), [&](const Element& e) { return e.kind == kind; });
  return static_cast<std::size_t>(whole) + (kind == ElementKind::Line ? inPolylines() : 0);
}

void ElementList::scale(double factor) {
  if (polylines_ && polylines_->factor != 1.0) {
    // Two factors in a row round otherwise than their product.
    std::vector<Element> elements;
    elements.reserve(size());
    for (std::size_t i = 0; i < size(); ++i) elements.push_back(at(i));
    polylines_.reset();
    whole_ = std::move(elements);
  }
  for (Element& element : whole_) scaleElement(element, factor);
  if (polylines_) polylines_->factor = factor;
}

}  // namespace lvx::civil

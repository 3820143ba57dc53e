#include "civil/section_shape.h"

#include <algorithm>
#include <cmath>

namespace lvx::civil {

namespace {

/// Whether parts and points pair up, the points by `isAlike`.
template <class Alike>
bool pairUp(const CorridorSection& a, const CorridorSection& b, Alike isAlike) {
  return std::equal(a.parts.begin(), a.parts.end(), b.parts.begin(), b.parts.end(),
                    [&](const SectionPart& p, const SectionPart& q) {
                      return p.codes == q.codes &&
                             std::equal(p.points.begin(), p.points.end(), q.points.begin(), q.points.end(), isAlike);
                    });
}

}  // namespace

bool haveSameShape(const CorridorSection& a, const CorridorSection& b) {
  return pairUp(a, b, [](const SectionPoint& p, const SectionPoint& q) { return p.codes == q.codes; });
}

bool isSamePlace(const SectionPoint& a, const SectionPoint& b) {
  return std::abs(a.offset - b.offset) <= kSameSectionLength &&
         std::abs(a.elevation - b.elevation) <= kSameSectionLength;
}

bool haveSamePoints(const CorridorSection& a, const CorridorSection& b) {
  return pairUp(a, b,
                [](const SectionPoint& p, const SectionPoint& q) { return p.codes == q.codes && isSamePlace(p, q); });
}

}  // namespace lvx::civil

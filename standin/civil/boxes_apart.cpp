#include "civil/boxes_apart.h"

namespace lvx::civil {

namespace {

bool meet(const Box& a, const Box& b, double reach) {
  return a.minX <= b.maxX + reach && b.minX <= a.maxX + reach && a.minY <= b.maxY + reach && b.minY <= a.maxY + reach;
}

}  // namespace

Box withAxesSwapped(const Box& box) { return {box.minY, box.minX, box.maxY, box.maxX}; }

std::optional<BoxesApart> boxesApart(const Box& first, const Box& second, double reach) {
  if (first.isEmpty() || second.isEmpty() || meet(first, second, reach)) return std::nullopt;
  return BoxesApart{first, second, meet(first, withAxesSwapped(second), reach)};
}

}  // namespace lvx::civil

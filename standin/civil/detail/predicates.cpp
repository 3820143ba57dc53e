#include "civil/detail/predicates.h"

#include <array>
#include <cstddef>

namespace lvx::civil::detail {
namespace {

/// A number as the exact sum of a rounded one and what the rounding lost.
struct Pair {
  double high;
  double low;
};

Pair exactSum(double a, double b) {
  const double sum = a + b;
  const double bPart = sum - a;
  const double aPart = sum - bPart;
  return {sum, (a - aPart) + (b - bPart)};
}

Pair exactProduct(double a, double b) {
  const double product = a * b;
  return {product, std::fma(a, b, -product)};
}

/// An exact sum of doubles, kept as parts of growing magnitude that don't overlap in their bits: the last part alone
/// gives the sign, and adding up from the first loses next to nothing.
class ExactSum {
 public:
  void add(double term) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      const Pair sum = exactSum(term, parts_[i]);
      if (sum.low != 0.0) parts_[kept++] = sum.low;
      term = sum.high;
    }
    if (term != 0.0) parts_[kept++] = term;
    count_ = kept;
  }

  void addProduct(double a, double b) {
    if (a == 0.0 || b == 0.0) return;
    const Pair product = exactProduct(a, b);
    add(product.low);
    add(product.high);
  }

  [[nodiscard]] double rounded() const {
    double sum = 0.0;
    for (std::size_t i = 0; i < count_; ++i) sum += parts_[i];
    return sum;
  }

 private:
  std::array<double, 16> parts_{};  // two products of two pairs have 16 parts
  std::size_t count_ = 0;
};

}  // namespace

double exactSide(Vec2 a, Vec2 b, Vec2 p) {
  const Pair dx = exactSum(b.x, -a.x);
  const Pair dy = exactSum(b.y, -a.y);
  const Pair px = exactSum(p.x, -a.x);
  const Pair py = exactSum(p.y, -a.y);
  if (dx.low == 0.0 && dy.low == 0.0 && px.low == 0.0 && py.low == 0.0) {
    // The usual case, and for points on one line the usual end of it.
    const Pair forward = exactProduct(dx.high, py.high);
    const Pair backward = exactProduct(dy.high, px.high);
    if (forward.high == backward.high) return forward.low - backward.low;
  }
  ExactSum area;
  area.addProduct(dx.low, py.low);
  area.addProduct(-dy.low, px.low);
  area.addProduct(dx.low, py.high);
  area.addProduct(dx.high, py.low);
  area.addProduct(-dy.low, px.high);
  area.addProduct(-dy.high, px.low);
  area.addProduct(dx.high, py.high);
  area.addProduct(-dy.high, px.high);
  return area.rounded();
}

}  // namespace lvx::civil::detail

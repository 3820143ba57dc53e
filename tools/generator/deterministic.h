#pragma once

#include <cstdint>

/// What makes a generated drawing the same, byte for byte, on every machine: random numbers, sine and cosine, and
/// permutations built from integer arithmetic and + - * / alone. The standard library's distributions and the
/// trigonometric functions of C libraries differ between makers in order or in their last bit.
namespace lvx::generator {

inline constexpr double kPi = 3.14159265358979323846;

struct SinCos {
  double sine = 0.0;
  double cosine = 1.0;
};

/// Sine and cosine of an angle in radians; error below 1e-15 for |angle| up to 100, and nowhere a call into libm.
[[nodiscard]] SinCos sinCos(double angle);

/// Arc tangent of a grade, |grade| up to 0.3 with an error below 1e-12.
[[nodiscard]] double atanOfGrade(double grade);

/// A number in [0, 1) that depends on nothing but the two arguments, so that the n-th of a million points needs no
/// state.
[[nodiscard]] double noise(std::uint64_t seed, std::uint64_t index);

/// A sequence of random numbers; equal seeds give equal sequences.
class Random {
 public:
  explicit Random(std::uint64_t seed) : seed_(seed) {}
  /// In [low, high).
  double between(double low, double high) { return low + (high - low) * noise(seed_, index_++); }
  /// In [0, count).
  std::uint32_t below(std::uint32_t count);

 private:
  std::uint64_t seed_;
  std::uint64_t index_ = 0;
};

/// A one-to-one map of [0, count) onto itself without locality, in constant memory: numbering millions of points at
/// random must not need a table of them. A balanced Feistel network over the next even power of two, walked until the
/// value falls inside; the expected number of steps is below 4.
class Permutation {
 public:
  Permutation(std::uint64_t count, std::uint64_t seed);
  [[nodiscard]] std::uint64_t operator()(std::uint64_t index) const;
  [[nodiscard]] std::uint64_t inverse(std::uint64_t value) const;

 private:
  [[nodiscard]] std::uint64_t forward(std::uint64_t value) const;
  [[nodiscard]] std::uint64_t backward(std::uint64_t value) const;

  std::uint64_t count_;
  std::uint64_t seed_;
  unsigned halfBits_ = 1;
};

}  // namespace lvx::generator

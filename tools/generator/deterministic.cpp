#include "generator/deterministic.h"

#include <cmath>

namespace lvx::generator {
namespace {

std::uint64_t mix(std::uint64_t z) {
  z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27U)) * 0x94d049bb133111ebULL;
  return z ^ (z >> 31U);
}

constexpr unsigned kRounds = 4;

}  // namespace

SinCos sinCos(double angle) {
  // pi / 2 in two parts, the first with trailing zero bits, so that the reduction loses nothing.
  constexpr double kHalfPiHigh = 1.57079632673412561417e+00;
  constexpr double kHalfPiLow = 6.07710050650619224932e-11;
  const double quadrant = std::floor(angle / (kPi / 2.0) + 0.5);
  const double x = (angle - quadrant * kHalfPiHigh) - quadrant * kHalfPiLow;
  const double x2 = x * x;
  // Taylor series; |x| <= pi / 4 leaves the first omitted terms below 1e-17.
  double sine = 0.0;
  for (int n = 17; n >= 3; n -= 2) sine = (sine + 1.0) * -x2 / (n * (n - 1));
  sine = x + x * sine;
  double cosine = 0.0;
  for (int n = 18; n >= 2; n -= 2) cosine = (cosine + 1.0) * -x2 / (n * (n - 1));
  cosine += 1.0;
  switch (static_cast<std::int64_t>(quadrant) & 3) {
    case 0:
      return {sine, cosine};
    case 1:
      return {cosine, -sine};
    case 2:
      return {-sine, -cosine};
    default:
      return {-cosine, sine};
  }
}

double atanOfGrade(double grade) {
  const double g2 = grade * grade;
  double sum = 0.0;
  for (int n = 21; n >= 1; n -= 2) sum = 1.0 / n - g2 * sum;
  return grade * sum;
}

double noise(std::uint64_t seed, std::uint64_t index) {
  const std::uint64_t bits = mix(seed * 0x9e3779b97f4a7c15ULL + index * 0xd1342543de82ef95ULL + 0x632be59bd9b4e019ULL);
  return static_cast<double>(bits >> 11U) * 0x1p-53;
}

std::uint32_t Random::below(std::uint32_t count) { return static_cast<std::uint32_t>(between(0.0, count)); }

Permutation::Permutation(std::uint64_t count, std::uint64_t seed) : count_(count), seed_(seed) {
  while ((1ULL << (2 * halfBits_)) < count_) ++halfBits_;
}

std::uint64_t Permutation::operator()(std::uint64_t index) const {
  do index = forward(index);
  while (index >= count_);
  return index;
}

std::uint64_t Permutation::inverse(std::uint64_t value) const {
  do value = backward(value);
  while (value >= count_);
  return value;
}

std::uint64_t Permutation::forward(std::uint64_t value) const {
  const std::uint64_t mask = (1ULL << halfBits_) - 1;
  std::uint64_t left = value >> halfBits_;
  std::uint64_t right = value & mask;
  for (unsigned round = 0; round < kRounds; ++round) {
    const std::uint64_t next = left ^ (mix(right + seed_ * 0x9e3779b97f4a7c15ULL + round) & mask);
    left = right;
    right = next;
  }
  return left << halfBits_ | right;
}

std::uint64_t Permutation::backward(std::uint64_t value) const {
  const std::uint64_t mask = (1ULL << halfBits_) - 1;
  std::uint64_t left = value >> halfBits_;
  std::uint64_t right = value & mask;
  for (unsigned round = kRounds; round-- > 0;) {
    const std::uint64_t before = right ^ (mix(left + seed_ * 0x9e3779b97f4a7c15ULL + round) & mask);
    right = left;
    left = before;
  }
  return left << halfBits_ | right;
}

}  // namespace lvx::generator

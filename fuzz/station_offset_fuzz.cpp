// Any alignment of moderate size against looking everywhere along it. The first line is the alignment as text
// (Alignment::fromText); each byte behind it is half of a point, on a grid over the alignment's surroundings.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "../tests/civil/reference_axis.h"

namespace {

using namespace lvx::civil;

/// What the reference can follow in time and without losing digits.
bool isModerate(const Alignment& axis) {
  constexpr double kLongest = 2000.0;
  constexpr double kShortest = 1e-3;
  constexpr double kMostTurns = 12.0;  // radians
  constexpr double kFarthest = 1e7;
  if (axis.isEmpty() || axis.elements().size() > 8 || !(axis.length() > kShortest) || axis.length() > kLongest)
    return false;
  if (!(std::abs(axis.startStation()) < kFarthest)) return false;
  return std::all_of(axis.elements().begin(), axis.elements().end(), [](const Element& element) {
    const double bend = std::max(std::abs(element.startCurvature), std::abs(element.endCurvature));
    const bool isNear = std::abs(element.start.x) < kFarthest && std::abs(element.start.y) < kFarthest;
    const bool isLong = element.length == 0.0 || element.length > kShortest;
    return isNear && isLong && std::isfinite(element.direction) && bend * element.length < kMostTurns;
  });
}

void compare(const Alignment& axis, const test::ReferenceAxis& reference, Vec2 point) {
  const auto found = axis.stationOffset(point);
  const test::ReferenceFoot wanted = reference.nearest(point);
  const auto fail = [&] {
    std::fprintf(stderr,
                 "point %.17g %.17g: station %.12g offset %.12g, but by looking everywhere %.12Lg %.12Lg (margin %Lg, "
                 "conditioning %Lg)\n",
                 point.x, point.y, found ? found->station : NAN, found ? found->offset : NAN, wanted.station,
                 wanted.offset, wanted.margin, wanted.conditioning);
    std::abort();
  };
  if (!found) fail();
  const auto station = static_cast<double>(wanted.station);
  // Which of two places is meant is open where they are equally near, and where on a circle near its centre.
  const double rounding = 1e-12 + 1e-15 * (std::abs(point.x) + std::abs(point.y));
  if (wanted.margin < 1e-8L || wanted.marginBeside < rounding || wanted.conditioning < 1e-2L) {
    const auto isBeyond = [&](double s) { return s < axis.startStation() || s > axis.endStation(); };
    if (isBeyond(found->station) || isBeyond(station)) return;
    if (std::abs(std::abs(found->offset) - static_cast<double>(wanted.distance)) > 1e-7) fail();
    return;
  }
  const double stationTolerance = 1e-7 / std::min(1.0, static_cast<double>(wanted.conditioning));
  if (!(std::abs(found->station - station) < stationTolerance)) fail();
  const auto offset = static_cast<double>(wanted.offset);
  if (!(std::abs(found->offset - (wanted.isSideOpen ? std::copysign(offset, found->offset) : offset)) < 1e-7)) fail();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(input.find('\n'), input.size());
  Alignment axis;
  try {
    axis = Alignment::fromText(input.substr(0, end));
  } catch (const std::invalid_argument&) {
    return 0;
  }
  if (!isModerate(axis)) return 0;
  input.remove_prefix(std::min(end + 1, input.size()));

  const test::ReferenceAxis reference(axis);
  const Vec2 middle = axis.poseAt(axis.startStation() + axis.length() / 2.0)->point;
  constexpr std::size_t kMostPoints = 16;
  const auto place = [&](char half) {
    return axis.length() * (static_cast<double>(static_cast<unsigned char>(half)) / 128.0 - 1.0);
  };
  for (std::size_t i = 0; i + 1 < std::min(input.size(), 2 * kMostPoints); i += 2) {
    const double across = place(input[i + 1]);
    // Some lie on the axis.
    if (input[i] % 4 == 0)
      compare(axis, reference, axis.pointLocation(axis.startStation() + std::abs(place(input[i])), 0.0)->point);
    else
      compare(axis, reference, {middle.x + place(input[i]), middle.y + across});
  }
  return 0;
}

#include "projection/projection_computation.h"

#include <cmath>
#include <vector>

#include "projection/detail/host_triples.h"

namespace lvx::projection {

namespace {

enum class Side : std::uint8_t { Left, Right };

/// One side's samples in the order of the walk, from the alignment outward.
struct Walk {
  std::vector<tpt3> points;
  std::vector<double> offsets;
};

void sampleSegment(host::QmtSurface& surface, const tpt3& inner, const tpt3& outer, Side side, tpt3list& scratch,
                   Walk& walk) {
  scratch.empty();
  detail::takeTriples(surface.sampleElevations(inner.first, inner.second, outer.first, outer.second), scratch);
  const double start = inner.third;
  for (const tpt3& sample : scratch) {
    const double dx = sample.first - inner.first;
    const double dy = sample.second - inner.second;
    const double distance = std::sqrt(dx * dx + dy * dy);
    walk.points.push_back(sample);
    walk.offsets.push_back(side == Side::Left ? start - distance : distance + start);
  }
}

/// Appends the walk to the emptied lists. Each grows once: appended one by one, a long list would be moved again and
/// again.
void store(const Walk& walk, tpt3list& points, tpt3list& offsets) {
  points.reserveForAppending(static_cast<std::int32_t>(walk.points.size()));
  offsets.reserveForAppending(static_cast<std::int32_t>(walk.offsets.size()));
  for (const tpt3& point : walk.points) points.append(point);
  for (const double offset : walk.offsets) offsets.append({offset, 0.0, 0.0});
}

}  // namespace

void projectSampleLines(const host::Ref<host::QmtDocument>& document, const CString& surfaceName,
                        const SampleLineList& list) {
  for (tsl* record : list) projectSampleLine(document, surfaceName, *record);
}

std::int32_t projectSampleLine(const host::Ref<host::QmtDocument>& document, const CString& surfaceName, tsl& record) {
  const auto surfaces = document ? document->surfaces() : nullptr;
  if (!surfaces) return 0;
  const auto surface = surfaces->item(surfaceName);
  if (!surface) return 0;

  record.leftPoints.empty();
  record.leftOffsets.empty();
  record.rightPoints.empty();
  record.rightOffsets.empty();
  tpt3list scratch;

  Walk left;
  const tpt3list& leftVertices = record.leftVertices;
  for (std::int32_t i = leftVertices.count() - 1; i >= 1; --i)
    sampleSegment(*surface, leftVertices[i], leftVertices[i - 1], Side::Left, scratch, left);
  store(left, record.leftPoints, record.leftOffsets);
  // Each sample of the walk stands in front of all samples before it. One reversal at the end gives that order in
  // linear time, where an insertion at index 0 for each sample would move the whole list every time.
  record.leftPoints.reverse();
  record.leftOffsets.reverse();

  Walk right;
  const tpt3list& rightVertices = record.rightVertices;
  for (std::int32_t j = 0; j + 1 < rightVertices.count(); ++j)
    sampleSegment(*surface, rightVertices[j], rightVertices[j + 1], Side::Right, scratch, right);
  store(right, record.rightPoints, record.rightOffsets);
  return 1;
}

}  // namespace lvx::projection

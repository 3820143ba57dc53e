#pragma once

#include <cstdint>
#include <memory>

#include "framework/text.h"
#include "host/host_array.h"

/// The civil object model of the open drawing, as far as the module asks for it: one abstract class per model object,
/// with the operations' own names.
///
/// For all of it:
/// - An object that an operation hands out is shared with the caller, who holds it as long as it is needed, at most
///   until the command ends.
/// - An operation that fails leaves its output empty: an empty reference, the number 0, an empty text, no array. There
///   is no status to read.
/// - Collections count from 0; `item` outside gives an empty reference.
/// - Coordinates and lengths are in drawing units, x to the east, y to the north. Stations are continuous: station
///   equations are never applied. A negative offset lies on the left of the direction of travel.
/// - All calls come from the host's main thread.
///
///     auto alignments = document->sitelessAlignments();
///     for (std::int32_t i = 0; i < alignments->count(); ++i) use(alignments->item(i)->name());
namespace lvx::host {

using framework::CString;

/// Identifies the drawing object behind a model object; 0 for none. The run time's functions understand it.
struct VnDbObjectId {
  std::uint64_t value = 0;
  bool operator==(const VnDbObjectId&) const = default;
};

/// Root of the model's objects, so that `QmtDocument::objectFromId` can hand out any of them.
class QmtObject {
 public:
  QmtObject() = default;
  QmtObject(const QmtObject&) = delete;
  QmtObject& operator=(const QmtObject&) = delete;
  virtual ~QmtObject() = default;
};

template <class T>
using Ref = std::shared_ptr<T>;

/// A collection that is asked by index.
template <class T>
class QmtCollection : public QmtObject {
 public:
  [[nodiscard]] virtual std::int32_t count() = 0;
  [[nodiscard]] virtual Ref<T> item(std::int32_t index) = 0;
};

/// A collection that is asked by name too: the first object of exactly that name, or an empty reference.
template <class T>
class QmtNamedCollection : public QmtCollection<T> {
 public:
  using QmtCollection<T>::item;
  [[nodiscard]] virtual Ref<T> item(const CString& name) = 0;
};

// ---------------------------------------------------------------- sample lines

/// One vertex of a sample line, or several where the host packs them.
class QmtSampleLineVertex : public QmtObject {
 public:
  /// x, y, z. A reader takes every complete triple.
  [[nodiscard]] virtual HostArray<double> location() = 0;
};

using QmtSampleLineVertexList = QmtCollection<QmtSampleLineVertex>;

/// A line across an alignment along which the ground is sampled. It may be skewed or bent.
class QmtSampleLine : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  /// Station at which the line belongs to its alignment.
  [[nodiscard]] virtual double station() = 0;
  [[nodiscard]] virtual std::int64_t sampleLineId() = 0;
  [[nodiscard]] virtual Ref<QmtSampleLineVertexList> vertices() = 0;
};

using QmtSampleLineList = QmtCollection<QmtSampleLine>;

class QmtSampleLineGroup : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual CString description() = 0;
  [[nodiscard]] virtual VnDbObjectId objectId() = 0;
  [[nodiscard]] virtual Ref<QmtSampleLineList> sampleLines() = 0;
};

using QmtSampleLineGroupList = QmtCollection<QmtSampleLineGroup>;

// ---------------------------------------------------------------- alignments and sites

/// A point of an alignment.
struct PointLocation {
  double x = 0.0;
  double y = 0.0;
  /// Azimuth of the direction of travel: radians clockwise from north, in [0, 2 pi).
  double direction = 0.0;
};

/// Where a point lies against an alignment.
struct StationOffset {
  double station = 0.0;
  /// Negative on the left.
  double offset = 0.0;
};

class QmtAlignment : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual CString description() = 0;
  [[nodiscard]] virtual VnDbObjectId objectId() = 0;
  /// Handle text: upper-case hexadecimal.
  [[nodiscard]] virtual CString handle() = 0;
  [[nodiscard]] virtual Ref<QmtSampleLineGroupList> sampleLineGroups() = 0;
  /// The point at `station` and `offset`; a station beyond an end by more than `tolerance` (and the millimetre by which
  /// files round) fails.
  [[nodiscard]] virtual PointLocation pointLocation(double station, double offset, double tolerance) = 0;
  /// The nearest foot of a perpendicular from (x, y); beyond an end, against the end's tangent drawn on.
  [[nodiscard]] virtual StationOffset stationOffset(double x, double y) = 0;
};

using QmtAlignmentList = QmtCollection<QmtAlignment>;

class QmtSite : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual Ref<QmtAlignmentList> alignments() = 0;
};

using QmtSiteList = QmtCollection<QmtSite>;

// ---------------------------------------------------------------- surfaces

class QmtSurface : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual CString handle() = 0;
  /// The ground along the segment from (x1, y1) to (x2, y2), in that order, as flat triples x, y, z: the ends where
  /// they lie on the surface and every crossing with an edge of a visible triangle. Nothing stands where there is no
  /// ground; a segment that misses the surface gives an empty array.
  [[nodiscard]] virtual HostArray<double> sampleElevations(double x1, double y1, double x2, double y2) = 0;
};

using QmtSurfaceList = QmtNamedCollection<QmtSurface>;

// ---------------------------------------------------------------- points

/// A survey point.
class QmtPoint : public QmtObject {
 public:
  /// The point's own name; empty where it has only its number.
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual std::int32_t number() = 0;
  [[nodiscard]] virtual double easting() = 0;
  [[nodiscard]] virtual double northing() = 0;
  /// 0.0 where the point has none.
  [[nodiscard]] virtual double elevation() = 0;
  [[nodiscard]] virtual CString description() = 0;
  [[nodiscard]] virtual CString fullDescription() = 0;
};

class QmtPointList : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtPoint> itemByNumber(std::int32_t number) = 0;
};

class QmtPointGroup : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual HostArray<std::int32_t> pointNumbers() = 0;
  [[nodiscard]] virtual std::int32_t pointCount() = 0;
};

using QmtPointGroupList = QmtNamedCollection<QmtPointGroup>;

// ---------------------------------------------------------------- the drawing

class QmtDocument : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtSurfaceList> surfaces() = 0;
  /// The alignments that belong to no site.
  [[nodiscard]] virtual Ref<QmtAlignmentList> sitelessAlignments() = 0;
  [[nodiscard]] virtual Ref<QmtPointGroupList> pointGroups() = 0;
  [[nodiscard]] virtual Ref<QmtPointList> points() = 0;
  /// The model object of a drawing object, or an empty reference.
  [[nodiscard]] virtual Ref<QmtObject> objectFromId(VnDbObjectId id) = 0;
};

class QmtDatabase : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtSiteList> sites() = 0;
};

}  // namespace lvx::host

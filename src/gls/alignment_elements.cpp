#include "gls/alignment_elements.h"

#include "host/collections.h"
#include "host/site_tree.h"

namespace lvx::gls {

using host::QmtAlignment;
using host::Ref;
using host::tvert;

namespace {

Ref<QmtAlignment> foundInSites(host::QmtDatabase& database, const CString& siteName, const CString& alignmentName) {
  Ref<QmtAlignment> found;
  host::forEachObject(database.sites(), [&](const Ref<host::QmtSite>& site) {
    if (site->name() == siteName) found = host::firstNamed(site->alignments(), alignmentName);
    return !found;
  });
  return found;
}

/// The end is set once the piece behind it is known.
std::unique_ptr<tverticalElement> tangentFrom(double station, double elevation, double grade) {
  auto tangent = std::make_unique<tverticalElement>();
  tangent->startStation = station;
  tangent->startElevation = elevation;
  tangent->startGrade = grade;
  return tangent;
}

std::unique_ptr<tverticalElement> curveAt(const tvert& point) {
  auto curve = std::make_unique<tverticalElement>();
  curve->startStation = point.station - point.halfLength;
  curve->startElevation = point.elevation - point.gradeIn * point.halfLength;
  curve->startGrade = point.gradeIn;
  curve->endStation = point.station + point.halfLength;
  curve->endElevation = point.gradeOut * point.halfLength + point.elevation;
  curve->endGrade = point.gradeOut;
  curve->radius = point.gradeIn > point.gradeOut ? -point.radius : point.radius;
  curve->halfLength = point.halfLength;
  return curve;
}

}  // namespace

std::int32_t findAlignment(const Ref<host::QmtDocument>& document, const Ref<host::QmtDatabase>& database,
                           const CString& siteName, const CString& alignmentName, Ref<QmtAlignment>& alignment) {
  Ref<QmtAlignment> found;
  if (host::meansNoSite(siteName)) {
    if (document) found = host::firstNamed(document->sitelessAlignments(), alignmentName);
  } else if (database) {
    found = foundInSites(*database, siteName, alignmentName);
  }
  if (!found) return 0;
  alignment = found;
  return 1;
}

void buildVerticalElements(const host::RecordList<tvert>& records, VerticalElementList& elements) {
  const framework::ArrayIndex count = records.size();
  if (count < 2) return;
  tverticalElement* tangent =
      elements.append(tangentFrom(records[0]->station, records[0]->elevation, records[1]->gradeIn));
  for (framework::ArrayIndex k = 1; k < count - 1; ++k) {
    const tvert& point = *records[k];
    tangent->endStation = point.station - point.halfLength;
    elements.append(curveAt(point));
    // The difference is the half length as the stations round it, so that the chain meets at its own stations.
    const double curveEnd = point.station + point.halfLength;
    tangent = elements.append(
        tangentFrom(curveEnd, (curveEnd - point.station) * point.gradeOut + point.elevation, point.gradeOut));
  }
  tangent->endStation = records[count - 1]->station;
}

}  // namespace lvx::gls

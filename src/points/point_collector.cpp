#include "points/point_collector.h"

#include <utility>
#include <vector>

#include "host/collections.h"
#include "host/site_tree.h"
#include "points/point_groups.h"
#include "services/message_catalogue.h"

namespace lvx::points {

namespace {

using host::Ref;
using services::getMessage;
using services::Message;

/// The text that the dialog handed over is that of its list, where the row for no site has words of its own.
CString siteNameOf(const CString& siteText) { return siteText == getMessage(Message::NoSite) ? CString() : siteText; }

/// The numbers of a group's points; none where the drawing has no such group, or hands out something else than a plain
/// list.
std::vector<std::int32_t> numbersOfGroup(const Ref<host::QmtPointGroupList>& groups, const CString& name) {
  const Ref<host::QmtPointGroup> group = groups ? groups->item(name) : nullptr;
  if (!group) return {};
  host::HostArray<std::int32_t> numbers = group->pointNumbers();
  return numbers.isOneDimensional() ? std::move(numbers.values) : std::vector<std::int32_t>();
}

tpoint rowOf(std::int32_t number, const Ref<host::QmtPointList>& points, host::QmtAlignment& alignment,
             const CString& alignmentText) {
  tpoint row;
  row.number = number;
  row.alignmentName = alignmentText;
  const Ref<host::QmtPoint> point = points ? points->itemByNumber(number) : nullptr;
  if (!point) return row;
  row.easting = point->easting();
  row.northing = point->northing();
  row.elevation = point->elevation();
  row.name = point->name();
  row.description = point->description();
  row.fullDescription = point->fullDescription();
  const host::StationOffset place = alignment.stationOffset(row.easting, row.northing);
  row.station = place.station;
  row.offset = place.offset;
  return row;
}

}  // namespace

void collectPoints(const Ref<host::QmtDocument>& document, const Ref<host::QmtDatabase>& database,
                   const CString& siteText, const CString& alignmentText, const CString& groupText,
                   const PickedNumbers& pickedNumbers, PointList& rows) {
  const Ref<host::QmtAlignment> alignment =
      host::alignmentNamed(document, database, siteNameOf(siteText), alignmentText);
  if (!alignment || !document) return;

  const Ref<host::QmtPointGroupList> groups = document->pointGroups();
  const Ref<host::QmtPointList> points = document->points();
  const auto collect = [&](const auto& numbers) {
    rows.reserve(rows.size() + static_cast<framework::ArrayIndex>(numbers.size()));
    for (const std::int32_t number : numbers) rows.add(rowOf(number, points, *alignment, alignmentText));
  };
  if (groupText == getMessage(Message::PickedPoints))
    collect(pickedNumbers);
  else
    collect(numbersOfGroup(groups, groupText));
}

}  // namespace lvx::points

#include "points/point_groups.h"

#include <memory>
#include <utility>

#include "services/message_catalogue.h"

namespace lvx::points {

namespace {

void addRow(PointGroupList& list, CString name, std::int32_t count) {
  auto row = std::make_unique<tptgroup>();
  row->name = std::move(name);
  row->count = count;
  list.append(std::move(row));
}

}  // namespace

std::int32_t loadPointGroups(const host::Ref<host::QmtDocument>& document,
                             const host::Ref<host::QmtDatabase>& /*database*/, PointGroupList& list) {
  releasePointGroups(list);
  if (document) {
    const host::Ref<host::QmtPointGroupList> groups = document->pointGroups();
    const std::int32_t count = groups ? groups->count() : 0;
    // A group that the host fails to hand out keeps its row, so that rows and groups have the same positions.
    for (std::int32_t i = 0; i < count; ++i) {
      const host::Ref<host::QmtPointGroup> group = groups->item(i);
      addRow(list, group ? group->name() : CString(), group ? group->pointCount() : 0);
    }
  }
  addRow(list, services::getMessage(services::Message::PickedPoints), 0);
  return 1;
}

void releasePointGroups(PointGroupList& list) noexcept { framework::destroyAll(list); }

}  // namespace lvx::points

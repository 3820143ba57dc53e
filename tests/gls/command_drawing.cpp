#include "command_drawing.h"

#include <utility>

#include "host/picking.h"

namespace lvx::gls {

CommandDrawing::CommandDrawing(const platform::PlatformSettings& settings) : ReportDrawing(settings), roadway(host) {
  companion.fillElements = [this](const host::Ref<host::QmtAlignment>& alignment, double& start,
                                  host::RecordList<host::taxel>& list) {
    if (!alignment) return;
    const Axis& axis = axes_.at(alignment->handle());
    start = axis.start;
    for (const host::taxel& element : axis.elements) list.add(new host::taxel(element));
  };
  // Names of alignments are unique in these drawings, so that the site's isn't needed.
  companion.fillVerticals = [this](const CString&, const CString& alignment, const CString& profile,
                                   host::RecordList<host::tvert>& list) {
    const auto fill = [&](test::FakeAlignments& alignments) {
      for (const auto& item : alignments.items)
        if (item->nameText == alignment)
          for (const Profile& made : axes_.at(item->handleText).profiles)
            if (made.name == profile)
              for (const host::tvert& point : made.points) list.add(new host::tvert(point));
    };
    fill(*drawing.document->alignments);
    for (const auto& site : drawing.database->siteList->items) fill(*site->alignmentList);
  };
}

host::Ref<test::FakeAlignment> CommandDrawing::addAlignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                                            Axis axis) {
  const auto made = ReportDrawing::addAlignment(site, name, axis.handle);
  for (const Profile& profile : axis.profiles) {
    made->profiles.push_back({profile.name, handleText(profile.handle)});
    if (profile.handle != 0) runTime.addObject(host::kClassProfile, profile.handle);
  }
  axes_[made->handleText] = std::move(axis);
  return made;
}

}  // namespace lvx::gls

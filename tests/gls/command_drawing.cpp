#include "command_drawing.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "host/picking.h"

namespace lvx::gls {

int GlsUser::runModal(dialogs::DialogBehaviour& dialog, void*) {
  if (dialog.dialogTemplate().name == "CMyDialog4") {
    ++questions;
    return answer;
  }
  DialogState state(dialog);
  if (openings < steps.size())
    steps[openings](state);
  else
    state.userCloses();
  ++openings;
  return state.closedWith().value_or(dialogs::kIdCancel);
}

test::PickingRunTime& CommandDrawing::installPicking(test::FakeHost& fake) {
  auto made = std::make_unique<test::PickingRunTime>();
  test::PickingRunTime& installed = *made;
  fake.replaceRunTime(std::move(made));
  return installed;
}

CommandDrawing::CommandDrawing(const platform::PosixSettings& settings)
    : host(settings), run(installPicking(host)), roadway(host) {
  host.setDialogRunner(&user);
  companion.document = drawing.document;
  companion.database = drawing.database;
  companion.fillSites = [this](host::SiteTree& sites) { fillTree(sites); };
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

void CommandDrawing::fillTree(host::SiteTree& sites) const {
  const auto add = [&](const CString& name, test::FakeAlignments& alignments) {
    host::tsite* site = test::newSite(name, {});
    for (const auto& item : alignments.items) {
      host::tsiteAlignment* record = test::newSiteAlignment(item->nameText, item->handleText);
      for (const Profile& profile : axes_.at(item->handleText).profiles) {
        auto* made = new host::tprofile;
        made->name = profile.name;
        made->handle = handleText(profile.handle);
        record->children.add(made);
      }
      site->alignments.add(record);
    }
    sites.add(site);
  };
  add(L"", *drawing.document->alignments);
  for (const auto& site : drawing.database->siteList->items) add(site->nameText, *site->alignmentList);
}

host::Ref<test::FakeAlignment> CommandDrawing::addAlignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                                            Axis axis) {
  const auto made = drawing.addAlignment(site, name);
  made->id.value = axis.handle;
  made->handleText = handleText(axis.handle);
  run.addObject(host::kClassAlignment, axis.handle);
  for (const Profile& profile : axis.profiles)
    if (profile.handle != 0) run.addObject(host::kClassProfile, profile.handle);
  axes_[made->handleText] = std::move(axis);
  return made;
}

GlsUser::Step CommandDrawing::okWith(CString stem, std::initializer_list<int> forms) {
  return [forms = std::vector<int>(forms), stem = std::move(stem)](DialogState& state) {
    state.userTypes(dialogs::kIdOutputStem, stem);
    for (const int form : {dialogs::kIdCheckAscii, dialogs::kIdCheckExcel, dialogs::kIdCheckThird})
      state.userTicks(form, std::find(forms.begin(), forms.end(), form) != forms.end());
    EXPECT_EQ(state.userClicks(dialogs::kIdOk), runtime::Refusal::None);
  };
}

GlsUser::Step CommandDrawing::click(int id) {
  return [id](DialogState& state) { EXPECT_EQ(state.userClicks(id), runtime::Refusal::None); };
}

CString CommandDrawing::handleText(std::uint64_t handle) {
  wchar_t buffer[32];
  host::VnDbHandle(handle).getIntoAsciiBuffer(buffer);
  return buffer;
}

}  // namespace lvx::gls

#include "report_drawing/report_drawing.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "host/dialog_controls.h"
#include "host/picking.h"
#include "platform/utf8.h"
#include "support/golden.h"

namespace lvx::test {

using windowless::DialogState;

int SteppingUser::runModal(host::DialogBehaviour& dialog, void*) {
  if (dialog.dialogTemplate().name == host::kAddSectionsDialog) {
    ++questions;
    return answer;
  }
  DialogState state(dialog);
  if (openings < steps.size())
    steps[openings](state);
  else
    state.userCloses();
  const std::size_t opening = openings++;
  return opening < codes.size() ? codes[opening] : state.closedWith().value_or(host::kIdCancel);
}

PickingRunTime& ReportDrawing::installPicking(FakeHost& fake) {
  auto made = std::make_unique<PickingRunTime>();
  PickingRunTime& installed = *made;
  fake.replaceRunTime(std::move(made));
  return installed;
}

ReportDrawing::ReportDrawing(const platform::PlatformSettings& settings)
    : host(settings), runTime(installPicking(host)) {
  host.setDialogRunner(&user);
  companion.document = drawing.document;
  companion.database = drawing.database;
  companion.fillSites = [this](host::SiteTree& sites) { fillSiteTree(sites); };
}

Ref<FakeAlignment> ReportDrawing::addAlignment(const Ref<FakeSite>& site, const CString& name, std::uint64_t handle) {
  const auto made = drawing.addAlignment(site, name);
  if (handle != 0) made->id.value = handle;
  made->handleText = handleText(made->id.value);
  runTime.addObject(host::kClassAlignment, made->id.value);
  return made;
}

CString ReportDrawing::handleText(std::uint64_t handle) {
  wchar_t buffer[32];
  host::VnDbHandle(handle).getIntoAsciiBuffer(buffer);
  return buffer;
}

void ReportDrawing::fillSiteTree(host::SiteTree& sites) const {
  const auto add = [&sites](const CString& name, const FakeAlignments& alignments) {
    host::tsite* site = newSite(name, {});
    for (const auto& alignment : alignments.items) {
      host::tsiteAlignment* record = newSiteAlignment(alignment->nameText, alignment->handleText);
      for (const FakeAlignment::Profile& profile : alignment->profiles) {
        auto* made = new host::tprofile;
        made->name = profile.name;
        made->handle = profile.handle;
        record->children.add(made);
      }
      site->alignments.add(record);
    }
    sites.add(site);
  };
  add(L"", *drawing.document->alignments);
  for (const auto& site : drawing.database->siteList->items) add(site->nameText, *site->alignmentList);
}

SteppingUser::Step ReportDrawing::okWith(std::initializer_list<int> forms, const CString& stem) {
  return [forms = std::vector<int>(forms), typed = stem.empty() ? this->stem() : stem](DialogState& state) {
    state.userTypes(host::kIdOutputStem, typed);
    for (const int form : {host::kIdCheckAscii, host::kIdCheckExcel, host::kIdCheckHtml})
      state.userTicks(form, std::find(forms.begin(), forms.end(), form) != forms.end());
    EXPECT_EQ(state.userClicks(host::kIdOk), windowless::Refusal::None);
  };
}

SteppingUser::Step ReportDrawing::click(int id) {
  return [id](DialogState& state) { EXPECT_EQ(state.userClicks(id), windowless::Refusal::None); };
}

std::string ReportDrawing::fileText(const CString& ending) { return readBytes(platform::toUtf8(stem() + ending)); }

bool ReportDrawing::stands(const CString& ending) { return std::filesystem::exists(platform::toUtf8(stem() + ending)); }

void ReportDrawing::write(const CString& ending, const std::string& text) {
  std::ofstream(platform::toUtf8(stem() + ending), std::ios::binary) << text;
}

std::wstring rows(const DialogState& state, int id) {
  const DialogState::Control& list = *state.find(id);
  std::wstring text;
  for (int row = 0; row < static_cast<int>(list.rows.size()); ++row) {
    if (row > 0) text += L"|";
    text += row == list.row ? L"[" + list.rows[row] + L"]" : list.rows[row];
  }
  return text;
}

}  // namespace lvx::test

#include "gls/add_sections_dialog.h"

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "host/dialog_controls.h"
#include "services/message_catalogue.h"
#include "windowless/dialog_state.h"

namespace lvx::gls {

using namespace host;
using framework::CString;
namespace {

using windowless::DialogState;
using windowless::Refusal;

TEST(QuestionDialog, JoinsTheTwoHalvesOfItsText) {
  test::FakeHost host;
  host.useMessageBytes("345 One\r\n348 two.\r\n347 Title\r\n8 Yes\r\n4 No\r\n5 Help\r\n");
  CMyDialog4 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.text(host::kIdQuestion), L"Onetwo.");
  EXPECT_EQ(state.title(), L"Title");
  EXPECT_EQ(state.text(host::kIdOk), L"Yes");
  EXPECT_EQ(state.text(host::kIdCancel), L"No");
  EXPECT_EQ(state.text(host::kIdHelp), L"Help");
}

TEST(QuestionDialog, ClosesWithTheCodeOfItsAnswer) {
  test::FakeHost host;
  for (const int code : {host::kIdOk, host::kIdCancel, host::kIdYes, host::kIdNo}) {
    CMyDialog4 dialog(host);
    DialogState state(dialog);
    dialog.onClick(state, code);
    EXPECT_EQ(state.closedWith(), code);
  }
}

TEST(QuestionDialog, StaysOpenAtHelpWhichLeadsToThePageOfTheGlsReport) {
  test::FakeHost host;
  CMyDialog4 dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(state.userClicks(host::kIdHelp), Refusal::None);
  EXPECT_FALSE(state.closedWith());
  EXPECT_EQ(host.users().helpTopics,
            std::vector<CString>{L"Vantor Lorvix Extension.chm::/project-resources/LVX_015_003.html"});
}

}  // namespace
}  // namespace lvx::gls

#include "gls/add_sections_dialog.h"

#include <array>

#include "dialogs/dialog_services.h"
#include "services/message_catalogue.h"

namespace lvx::gls {

using dialogs::Caption;
using dialogs::kHelpGls;
using dialogs::setCaptions;
using dialogs::showHelp;
using host::ControlKind;
using host::ControlTemplate;
using host::DialogTemplate;
using host::DialogWindow;
using host::kIdCancel;
using host::kIdHelp;
using host::kIdOk;
using services::getMessage;
using services::Message;

namespace {

constexpr std::array<ControlTemplate, 4> kControls{{
    {kIdOk, ControlKind::PushButton, L"Ok", {79, 97, 50, 14}},
    {kIdCancel, ControlKind::PushButton, L"Cancel", {136, 97, 50, 14}},
    {CMyDialog4::kIdStatic, ControlKind::Label, L"Static", {8, 7, 234, 81}},
    {kIdHelp, ControlKind::PushButton, L"Help", {192, 97, 50, 14}},
}};

constexpr DialogTemplate kTemplate{"CMyDialog4", L"Dialog", 252, 118, kControls};

constexpr std::array<Caption, 3> kCaptions{
    {{kIdOk, Message::OkButton}, {kIdCancel, Message::CancelButton}, {kIdHelp, Message::HelpButton}}};

constexpr int kAnswerYes = 6;
constexpr int kAnswerNo = 7;

}  // namespace

const DialogTemplate& CMyDialog4::dialogTemplate() const { return kTemplate; }

void CMyDialog4::onOpening(DialogWindow& window) {
  window.setTitle(getMessage(Message::AddSectionsTitle));
  setCaptions(window, kCaptions);
  window.setText(kIdStatic, getMessage(Message::AddSectionsQuestion) + getMessage(Message::AddSectionsAnswers));
}

void CMyDialog4::onClick(DialogWindow& window, int id) {
  switch (id) {
    case kIdOk:
    case kIdCancel:
    case kAnswerYes:
    case kAnswerNo:
      window.end(id);
      break;
    case kIdHelp:
      showHelp(host_, host::CString(kHelpGls));  // the page of the dialog whose report asks
      break;
    default:
      break;
  }
}

}  // namespace lvx::gls

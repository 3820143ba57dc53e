#include "gls/add_sections_dialog.h"

#include <array>

#include "dialogs/dialog_services.h"
#include "host/dialog_controls.h"
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
using services::getMessage;
using services::Message;

namespace {

constexpr std::array<ControlTemplate, 4> kControls{{
    {host::kIdOk, ControlKind::PushButton, L"Ok", {79, 97, 50, 14}},
    {host::kIdCancel, ControlKind::PushButton, L"Cancel", {136, 97, 50, 14}},
    {host::kIdQuestion, ControlKind::Label, L"Static", {8, 7, 234, 81}},
    {host::kIdHelp, ControlKind::PushButton, L"Help", {192, 97, 50, 14}},
}};

constexpr DialogTemplate kTemplate{host::kAddSectionsDialog, L"Dialog", 252, 118, kControls};

constexpr std::array<Caption, 3> kCaptions{
    {{host::kIdOk, Message::OkButton}, {host::kIdCancel, Message::CancelButton}, {host::kIdHelp, Message::HelpButton}}};

}  // namespace

const DialogTemplate& CMyDialog4::dialogTemplate() const { return kTemplate; }

void CMyDialog4::onOpening(DialogWindow& window) {
  window.setTitle(getMessage(Message::AddSectionsTitle));
  setCaptions(window, kCaptions);
  window.setText(host::kIdQuestion, getMessage(Message::AddSectionsQuestion) + getMessage(Message::AddSectionsAnswers));
}

void CMyDialog4::onClick(DialogWindow& window, int id) {
  switch (id) {
    case host::kIdOk:
    case host::kIdCancel:
    case host::kIdYes:
    case host::kIdNo:
      window.end(id);
      break;
    case host::kIdHelp:
      showHelp(host_, host::CString(kHelpGls));  // the page of the dialog whose report asks
      break;
    default:
      break;
  }
}

}  // namespace lvx::gls

#include "dialogs/dialog_services.h"

#include <array>
#include <optional>

#include "host/dialog_controls.h"
#include "host/host.h"
#include "services/message_catalogue.h"

namespace lvx::dialogs {

using services::getMessage;
using services::Message;

namespace {

constexpr std::size_t kHelpPathSize = 1024;

bool cutOff(CString& path, std::wstring_view ending) {
  if (!path.ends_with(ending)) return false;
  path.resize(path.size() - ending.size());
  return true;
}

Colour faceColour(host::Host& host) {
  const std::uint32_t value = host.userInterface().buttonFaceColour();
  return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
          static_cast<std::uint8_t>(value >> 16)};
}

}  // namespace

void setCaptions(DialogWindow& window, std::span<const Caption> captions) {
  for (const Caption& caption : captions) window.setText(caption.id, getMessage(caption.message));
}

void setPictures(host::Host& host, DialogWindow& window, std::span<const PictureOn> small,
                 std::span<const PictureOn> others) {
  const Colour face = faceColour(host);
  for (const PictureOn& entry : small) {
    const PictureBits* picture = findPicture(entry.picture);
    if (picture == nullptr) continue;
    PictureBits treated = *picture;
    replaceWhite(treated.bytes, face);
    window.setPicture(entry.id, treated);
  }
  for (const PictureOn& entry : others)
    if (const PictureBits* picture = findPicture(entry.picture)) window.setPicture(entry.id, *picture);
}

void setFormChecks(DialogWindow& window) {
  static constexpr std::array<Caption, 3> kForms{{{host::kIdCheckAscii, Message::AsciiForm},
                                                  {host::kIdCheckExcel, Message::ExcelForm},
                                                  {host::kIdCheckHtml, Message::HtmlForm}}};
  setCaptions(window, kForms);
  for (const Caption& form : kForms) window.tick(form.id, true);
}

CString stemOfChosenPath(const CString& path) {
  CString stem = path;
  if (!cutOff(stem, L".txt")) cutOff(stem, L".xls");
  cutOff(stem, L".html");
  return stem;
}

bool runOutputFileBox(host::Host& host, DialogWindow& window) {
  const std::optional<CString> chosen =
      host.userInterface().saveFileBox(getMessage(Message::FileFilter), host::kHideReadOnly | host::kPromptCreate);
  if (!chosen) return false;
  window.setText(host::kIdOutputStem, stemOfChosenPath(*chosen));
  window.setTip(host::kIdOutputStem, *chosen);
  return true;
}

CString helpFilePath(host::Host& host) {
  CString path = L"Vantor Lorvix Extension.chm";
  CString found;
  if (host.runTime().vnedFindFile(path, found, kHelpPathSize) == host::kNormal) path = found;
  return path;
}

void showHelp(host::Host& host, const CString& page) { host.userInterface().showHelp(helpFilePath(host) + page); }

}  // namespace lvx::dialogs

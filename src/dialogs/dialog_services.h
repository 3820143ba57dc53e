#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "dialogs/picture.h"
#include "host/dialog_window.h"
#include "services/messages.h"

namespace lvx::host {
class Host;
}

/// What the report dialogs share: captions from the catalogue, pictures, the output file box with its tip, the three
/// form check boxes, help.
namespace lvx::dialogs {

using host::ControlKind;
using host::ControlTemplate;
using host::CString;
using host::DialogBehaviour;
using host::DialogTemplate;
using host::DialogWindow;

/// A control and the message that is its caption.
struct Caption {
  int id = 0;
  services::Message message{};
};
void setCaptions(DialogWindow& window, std::span<const Caption> captions);

/// A control and the name of its picture.
struct PictureOn {
  int id = 0;
  std::string_view picture;
};
/// Puts every picture on its control, those of `small` with white turned into the scheme's face colour, those of
/// `others` as they are. A picture that isn't there leaves its control without one.
void setPictures(host::Host& host, DialogWindow& window, std::span<const PictureOn> small,
                 std::span<const PictureOn> others);

/// The captions of the three form check boxes, all ticked: at each opening, whatever the user had chosen before.
void setFormChecks(DialogWindow& window);

/// A chosen path without the report extensions: ".txt" or ".xls" is cut off first, then ".html", each once and by exact
/// case, so "a.html.txt" loses both and "a.txt.html" keeps ".txt".
[[nodiscard]] CString stemOfChosenPath(const CString& path);

/// Opens the output file box over the dialog. On OK the stem goes into the edit box, which raises its change event, and
/// the tip becomes the path as chosen, extension and all; the result is true.
bool runOutputFileBox(host::Host& host, DialogWindow& window);

/// The help file where the host's support paths have it, else its bare name.
[[nodiscard]] CString helpFilePath(host::Host& host);
/// Shows a page of the help file; `page` begins with "::/".
void showHelp(host::Host& host, const CString& page);

inline constexpr std::wstring_view kHelpProjection = L"::/project-resources/LVX_015_001.html";
inline constexpr std::wstring_view kHelpPoints = L"::/project-resources/LVX_015_002.html";
inline constexpr std::wstring_view kHelpGls = L"::/project-resources/LVX_015_003.html";

}  // namespace lvx::dialogs

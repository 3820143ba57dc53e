#pragma once

#include <QString>
#include <string>

#include "framework/text.h"

/// Texts between the host and its windows.
namespace lvx::desktop {

[[nodiscard]] QString toQt(const framework::CString& text);
/// From UTF-8, as drawings and paths have it.
[[nodiscard]] QString toQt(const std::string& text);
[[nodiscard]] framework::CString toWide(const QString& text);
[[nodiscard]] std::string toUtf8(const QString& text);

}  // namespace lvx::desktop

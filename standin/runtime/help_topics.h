#pragma once

#include <filesystem>

#include "framework/text.h"

namespace lvx::runtime {

/// File of the page that a help topic asks for, or an empty path.
///
/// A topic is what a module hands to a help viewer: the help file, "::/", the page in it. The help file may stand with
/// the path on which it was found or with its bare name. `folder` is the help folder of one language, which holds the
/// help file's pages as files of their own.
///     helpPage(L"Vantor Lorvix Extension.chm::/project-resources/LVX_015_001.html", "share/lvxhost/help/de")
///     // "share/lvxhost/help/de/project-resources/LVX_015_001.html"
///
/// Empty for another help file, a topic without a page, a page that isn't there, and a page name that could lead out of
/// `folder` (empty and dotted parts, backslashes, drive letters) or that isn't a ".html" of letters, digits, "_", "-" and
/// ".". Never throws for what a topic says.
[[nodiscard]] std::filesystem::path helpPage(const framework::CString& topic, const std::filesystem::path& folder);

}  // namespace lvx::runtime

#pragma once

#include "framework/text.h"

namespace lvx::host {
class Host;
}

/// What the commands ask before a form of a report replaces a file.
namespace lvx::services {

using framework::CString;

/// True where something stands under the name of a file to be written, be it a folder.
[[nodiscard]] bool fileExists(host::Host& host, const CString& path);
/// The same of the folder of a file to be written, be it a file.
[[nodiscard]] bool pathExists(host::Host& host, const CString& path);

/// True where nothing stands under `name`, or the user agreed to overwrite it.
[[nodiscard]] bool mayWriteReport(host::Host& host, const CString& name);

/// The same for a workbook, whose former file has to go first: it is tried for writing, again and again as long as the
/// user says so, then removed. A spreadsheet program that then fails leaves no file at all.
[[nodiscard]] bool mayWriteWorkbook(host::Host& host, const CString& name);

/// The folder of an output stem: what stands before the last mark between folders.
enum class StemFolder { Exists, Missing, None };
[[nodiscard]] StemFolder folderOfStem(host::Host& host, const CString& stem);

/// True where an output stem has a folder and that is there. A stem without any gets a word; a folder that is missing
/// gets none: users' scripts rely on a command never stopping there.
[[nodiscard]] bool mayWriteUnderStem(host::Host& host, const CString& stem);

}  // namespace lvx::services

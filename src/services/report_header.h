#pragma once

#include <cstdint>
#include <cstdio>

#include "framework/text.h"
#include "services/excel_driver.h"
#include "services/messages.h"

/// The block that opens every report: title, host release, output path, date and time, in its three forms.
namespace lvx::services {

using framework::CString;

/// Text of the host's current release as the header shows it; empty where the host has none.
[[nodiscard]] CString hostReleaseText();
/// -1 without the key, 0 without the value, 1 with it; `out` is assigned only from a plain string.
int readRegistryText(const CString& subKey, const CString& valueName, CString& out);
/// A release code as the header shows it: every leading R removed, a known release number replaced by its year.
[[nodiscard]] CString mapHostRelease(const CString& text);

/// The current time, read once by each writer before its header.
[[nodiscard]] std::int64_t headerTime();

void writeAsciiHeader(std::FILE* stream, Message title, const CString& path, std::int64_t time);
void writeExcelHeader(ExcelLink& link, Message title, const CString& path, std::int64_t time);
void appendHtmlHeader(CString& text, Message title, const CString& path, std::int64_t time);

}  // namespace lvx::services

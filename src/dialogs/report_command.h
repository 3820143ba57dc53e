#pragma once

#include <functional>

#include "dialogs/report_dialog.h"

/// What the report commands do alike around their dialogs.
namespace lvx::dialogs {

/// Opens the dialog again and again until the user presses OK: true; or gives up: false. In between the user picks an
/// alignment, or what the dialog's other pick button is for, by `pickSecond`; false from there ends the command too.
[[nodiscard]] bool runUntilOk(host::Host& host, ReportDialog& dialog, const std::function<bool()>& pickSecond);

/// The writers of a report's three forms, each called with the name of its file.
struct FormWriters {
  std::function<void(const CString& name)> ascii;
  std::function<void(const CString& name)> excel;
  std::function<void(const CString& name)> html;
};
/// Writes the ticked forms beside each other under the dialog's stem. A file that stands is written over only where the
/// user agrees; a form that is skipped doesn't stop the next one.
void writeTickedForms(host::Host& host, const ReportDialog& dialog, const FormWriters& writers);

}  // namespace lvx::dialogs

#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "runtime/installation.h"
#include "runtime/standin_host.h"

namespace lvx::runtime {

/// What a user chooses of a host, whatever the front end.
struct HostChoices {
  std::string language = "en";
  /// Message file in place of the language's own; none: that one.
  std::optional<std::string> messages;
  /// Module in place of the program's own; none: that one.
  std::optional<std::string> module;
  /// Host release that report headers show.
  std::optional<std::string> release = "R24.3";
  /// Single-byte code page of the reports, by its iconv name; none: U+0000 to U+00FF as bytes.
  std::optional<std::string> reportCodePage;
  /// Code page of message files, by its iconv name.
  std::string messageCodePage = "WINDOWS-1252";
  /// Who writes workbooks: "excel" (the spreadsheet program), "file" (this program); none: the spreadsheet program where one
  /// is registered, else this program.
  std::optional<std::string> workbook;
  /// Folder that the program's files are looked for from.
  std::filesystem::path bin = programFolder();
};

/// The module that `choices` ask for.
[[nodiscard]] std::filesystem::path chosenModule(const HostChoices& choices);

/// The message file that `choices` ask for.
[[nodiscard]] std::filesystem::path chosenMessages(const HostChoices& choices);

/// The host's options for `choices`, with the moment of SOURCE_DATE_EPOCH where the environment sets one. Throws
/// std::invalid_argument for a message file that isn't there, an epoch that is no number of seconds and a spreadsheet program on a system where none can be worked; an unknown code
/// page is told by the host itself.
[[nodiscard]] HostOptions hostOptions(const HostChoices& choices);

}  // namespace lvx::runtime

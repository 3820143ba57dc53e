#pragma once

#include <string>
#include <vector>

namespace lvx::package_texts {

/// A page of the system's manual.
struct ManPage {
  /// "lvxhost-info"; its file is lvxhost-info.1.
  std::string name;
  /// In the language of man(7).
  std::string text;
};

/// What every page shows in its first and last line.
struct ManPageEdition {
  std::string version;
  /// "2026-11-22"
  std::string date;
};

/// A page for lvxhost, one for each of its commands and one for lvxhost-desktop, from the description of commands, options
/// and exit codes that the programs themselves read.
[[nodiscard]] std::vector<ManPage> manPages(const ManPageEdition& edition);

/// Text as man(7) wants it in the middle of a line: nothing in it is taken for a request or for a hyphen.
[[nodiscard]] std::string inRoff(const std::string& text);

}  // namespace lvx::package_texts

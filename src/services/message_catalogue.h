#pragma once

#include <cstdint>
#include <string_view>

#include "framework/arrays.h"
#include "framework/text.h"
#include "services/messages.h"

namespace lvx::host {
class Host;
}

namespace lvx::services {

using framework::CString;

/// The module's message file, which is looked for in the host's support paths.
inline constexpr const wchar_t* kMessageFile = L"LVX_MIRELREPORT.txt";

/// Every word that a user reads, by number, from one plain text file beside the module. One instance serves the whole
/// module: getMessage builds it at the first lookup, whether or not the file could be read, and never again.
///
/// A line is a message where its first character after white space is a digit; anything else is a comment. Of two lines
/// with one number the earlier wins. A number that isn't there gives the number between stars ("*110*").
class CxMsg {
 public:
  struct msgstr {
    std::uint32_t id = 0;
    CString text;
  };

  /// Loads `fileName` from the host's support paths, or as it stands where they don't have it. Never fails: a file that
  /// can't be opened gives one line on the console and an empty catalogue.
  CxMsg(host::Host& host, const CString& fileName);
  ~CxMsg();
  CxMsg(const CxMsg&) = delete;
  CxMsg& operator=(const CxMsg&) = delete;

  [[nodiscard]] CString lookup(std::uint32_t id) const;

  /// Empty until a file was opened.
  [[nodiscard]] const CString& fileName() const { return fileName_; }
  /// The entries in the order of the file, duplicates included.
  [[nodiscard]] const framework::CTypedPtrArray<framework::CPtrArray, msgstr*>& messages() const { return messages_; }

 private:
  CxMsg() = default;
  void addLine(host::Host& host, std::string_view line);

  CString fileName_;
  framework::CTypedPtrArray<framework::CPtrArray, msgstr*> messages_;
};

/// Replaces the escapes of a message text. Not a left-to-right scan: after each replacement the search starts again at
/// the first escape of the list and the head of the text, so a doubled backslash doesn't protect what follows it.
/// Message files in the field are written for that.
[[nodiscard]] CString replaceEscapes(CString text);

/// The text of a message, a copy.
[[nodiscard]] CString getMessage(Message message);

/// Forgets the module's one catalogue, so that the next lookup loads it anew: what unloading the module does.
void releaseMessages() noexcept;

}  // namespace lvx::services

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "landxml/detail/safe_file.h"
#include "landxml/detail/scanner.h"
#include "standin_platform/text_converter.h"

namespace lvx::landxml::detail {

/// The text of a file that is edited, by the places that the scanner found in it: the file's bytes themselves, or for an
/// encoding of several bytes a letter, as UTF-16, the UTF-8 that it was converted to, which goes back into the encoding.
class EditedSource {
 public:
  /// All must outlive the source. `path` is for messages. Throws SaveError where the system can't write the encoding.
  EditedSource(const SourceFile& file, const ScannedDocument& scanned, std::string path);

  [[nodiscard]] std::uint64_t size() const;
  /// Up to `size` bytes of the text from `offset`.
  [[nodiscard]] std::string text(std::uint64_t offset, std::size_t size) const;
  /// The same without a part of a letter at its end, for copying it piece by piece.
  [[nodiscard]] std::string letters(std::uint64_t offset, std::size_t size) const;

  /// What stands in the file before the text: the byte order mark of a converted one.
  [[nodiscard]] std::string_view head() const { return scanned_.converted.byteOrderMark; }
  /// UTF-8, of the text or new, as the file has it. Letters that the encoding hasn't got become "&#8364;".
  [[nodiscard]] std::string inFile(std::string_view utf8) const;
  [[nodiscard]] bool isConverted() const { return scanned_.converted.text != nullptr; }
  /// The encoding of a converted text.
  [[nodiscard]] const std::string& encoding() const { return scanned_.converted.encoding; }

 private:
  const SourceFile& file_;
  const ScannedDocument& scanned_;
  std::string path_;
  std::unique_ptr<standin_platform::TextConverter> toFile_;
};

/// Bytes of the UTF-8 letter that begins with `lead`, which stands in well-formed text.
[[nodiscard]] std::size_t letterLength(char lead);
/// "&#8364;" for a letter in UTF-8.
[[nodiscard]] std::string letterReference(std::string_view letter);

}  // namespace lvx::landxml::detail

#include "landxml/detail/edited_source.h"

#include <algorithm>
#include <utility>

namespace lvx::landxml::detail {

using standin_platform::TextConverter;

EditedSource::EditedSource(const SourceFile& file, const ScannedDocument& scanned, std::string path)
    : file_(file), scanned_(scanned), path_(std::move(path)) {
  if (!isConverted()) return;
  toFile_ = std::make_unique<TextConverter>("UTF-8", encoding());
  if (!toFile_->isKnown()) failSaving("text can't be written in the encoding " + encoding() + " here", path_);
}

std::uint64_t EditedSource::size() const { return isConverted() ? scanned_.converted.text->size() : file_.size(); }

std::string EditedSource::text(std::uint64_t offset, std::size_t size) const {
  if (!isConverted()) return file_.text(offset, size);
  const std::string& all = *scanned_.converted.text;
  return offset < all.size() ? all.substr(static_cast<std::size_t>(offset), size) : std::string();
}

std::string EditedSource::letters(std::uint64_t offset, std::size_t size) const {
  std::string piece = text(offset, size);
  if (!isConverted() || offset + piece.size() >= scanned_.converted.text->size()) return piece;
  std::size_t lead = piece.size();
  while (lead > 0 && (static_cast<unsigned char>(piece[lead - 1]) & 0xC0U) == 0x80U) --lead;
  if (lead > 0 && lead - 1 + letterLength(piece[lead - 1]) > piece.size()) piece.resize(lead - 1);
  return piece;
}

std::string EditedSource::inFile(std::string_view utf8) const {
  std::string bytes;
  if (!isConverted()) return bytes.append(utf8);
  for (;;) {
    std::size_t done = 0;
    if (toFile_->convert(utf8, bytes, done) == TextConverter::End::Complete) return bytes;
    utf8.remove_prefix(done);
    if (utf8.empty()) return bytes;
    const std::string_view letter = utf8.substr(0, letterLength(utf8.front()));
    (void)toFile_->convert(letterReference(letter), bytes, done);
    utf8.remove_prefix(letter.size());
  }
}

std::size_t letterLength(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  return byte < 0x80U ? 1 : byte < 0xE0U ? 2 : byte < 0xF0U ? 3 : 4;
}

std::string letterReference(std::string_view letter) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(letter[i]); };
  std::uint32_t code = letter.size() == 2 ? byte(0) & 0x1FU : letter.size() == 3 ? byte(0) & 0x0FU : byte(0) & 7U;
  for (std::size_t i = 1; i < letter.size(); ++i) code = (code << 6U) | (byte(i) & 0x3FU);
  return "&#" + std::to_string(code) + ";";
}

}  // namespace lvx::landxml::detail

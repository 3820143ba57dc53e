#include "support/workbook_reader.h"

#include <charconv>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <minizip/unzip.h>
#include <pugixml.hpp>

namespace lvx::test {

namespace {

[[noreturn]] void unsound(const std::string& what) { throw std::runtime_error("not a sound workbook: " + what); }

void appendUtf8(unsigned c, std::string& out) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

/// Undoes the workbook's own escape _xHHHH_.
std::string unescaped(const std::string& text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    unsigned value = 0;
    if (text.compare(at, 2, "_x") == 0 && at + 7 <= text.size() && text[at + 6] == '_' &&
        std::from_chars(text.data() + at + 2, text.data() + at + 6, value, 16).ptr == text.data() + at + 6) {
      appendUtf8(value, out);
      at += 7;
    } else {
      out += text[at++];
    }
  }
  return out;
}

pugi::xml_document parsed(const std::map<std::string, std::string>& parts, const std::string& name) {
  const auto part = parts.find(name);
  if (part == parts.end()) unsound("no part " + name);
  pugi::xml_document document;
  const auto result = document.load_buffer(part->second.data(), part->second.size(),
                                           pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_eol);
  if (!result) unsound(name + ": " + result.description());
  return document;
}

}  // namespace

std::map<std::string, std::string> readWorkbookParts(const std::filesystem::path& path) {
  const auto close = [](void* zip) { unzClose(zip); };
  const std::unique_ptr<void, decltype(close)> zip(unzOpen64(path.string().c_str()), close);
  if (!zip) unsound("not an archive");
  std::map<std::string, std::string> parts;
  for (int step = unzGoToFirstFile(zip.get()); step == UNZ_OK; step = unzGoToNextFile(zip.get())) {
    char name[256];
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(zip.get(), &info, name, sizeof name, nullptr, 0, nullptr, 0) != UNZ_OK)
      unsound("directory");
    std::string bytes(info.uncompressed_size, '\0');
    if (unzOpenCurrentFile(zip.get()) != UNZ_OK) unsound(name);
    const bool whole =
        bytes.empty() || unzReadCurrentFile(zip.get(), bytes.data(), static_cast<unsigned>(bytes.size())) ==
                             static_cast<int>(bytes.size());
    if (unzCloseCurrentFile(zip.get()) != UNZ_OK || !whole) unsound(std::string(name) + ": checksum");
    if (!parts.emplace(name, std::move(bytes)).second) unsound(std::string(name) + " stands twice");
  }
  return parts;
}

std::map<std::string, WorkbookCell> readWorkbook(const std::filesystem::path& path) {
  const auto parts = readWorkbookParts(path);
  for (const auto& [name, bytes] : parts)
    if (name.ends_with(".xml") || name.ends_with(".rels")) (void)parsed(parts, name);

  const auto styles = parsed(parts, "xl/styles.xml");
  std::map<int, std::string> formatTexts{{0, "General"}};
  for (const auto& format : styles.child("styleSheet").child("numFmts"))
    formatTexts[format.attribute("numFmtId").as_int()] = format.attribute("formatCode").value();
  std::vector<std::string> formats;
  for (const auto& xf : styles.child("styleSheet").child("cellXfs"))
    formats.push_back(formatTexts[xf.attribute("numFmtId").as_int()]);

  std::map<std::string, WorkbookCell> cells;
  const auto sheet = parsed(parts, "xl/worksheets/sheet1.xml");
  int rowBefore = 0;
  for (const auto& row : sheet.child("worksheet").child("sheetData")) {
    const int number = row.attribute("r").as_int();
    if (number <= rowBefore) unsound("rows out of order");
    rowBefore = number;
    std::size_t lengthBefore = 0;
    std::string nameBefore;
    for (const auto& c : row) {
      const std::string name = c.attribute("r").value();
      const bool ascends = name.size() != lengthBefore ? name.size() > lengthBefore : name > nameBefore;
      if (!ascends || !name.ends_with(std::to_string(number))) unsound("cell " + name + " out of place");
      lengthBefore = name.size();
      nameBefore = name;
      if (c.child("f")) unsound("cell " + name + " is a formula");
      WorkbookCell cell;
      cell.format = formats.at(c.attribute("s").as_uint());
      if (std::strcmp(c.attribute("t").value(), "inlineStr") == 0) {
        cell.text = unescaped(c.child("is").child("t").text().get());
      } else if (c.attribute("t").empty()) {
        cell.text = c.child("v").text().get();
        cell.number = !cell.text.empty();
      } else {
        unsound("cell " + name + " of an unknown type");
      }
      cells.emplace(name, std::move(cell));
    }
  }
  return cells;
}

}  // namespace lvx::test

#include "workbook/detail/archive_check.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string_view>

#include <minizip/unzip.h>
#include <pugixml.hpp>

#include "workbook/detail/sheet_check.h"

namespace lvx::workbook::detail {

namespace {

constexpr std::string_view kSheet = kSheetPart;
constexpr std::string_view kTypes = "[Content_Types].xml";
constexpr std::string_view kRelations = "_rels/.rels";
constexpr std::string_view kBookRelations = "xl/_rels/workbook.xml.rels";
constexpr std::string_view kBook = "xl/workbook.xml";

struct Closer {
  void operator()(void* zip) const { unzClose(zip); }
};
using Archive = std::unique_ptr<void, Closer>;

std::string unsound(std::string_view part) { return "its part '" + std::string(part) + "' isn't whole"; }

/// Gives the part at which the archive stands to `use`, piece by piece. False where it isn't as long as the directory says,
/// has another checksum, can't be read, or where `use` says so.
/// `piece` holds what is read at a time; all parts of an archive share it, since most are small.
template <class Use>
bool readPart(void* zip, const unz_file_info64& info, std::string& piece, Use use) {
  if (unzOpenCurrentFile(zip) != UNZ_OK) return false;
  std::uint64_t size = 0;
  bool isSound = true;
  int count = 0;
  while (isSound && (count = unzReadCurrentFile(zip, piece.data(), static_cast<unsigned>(piece.size()))) > 0) {
    size += static_cast<std::uint64_t>(count);
    isSound = use(std::string_view(piece).substr(0, static_cast<std::size_t>(count)));
  }
  const bool isChecked = unzCloseCurrentFile(zip) == UNZ_OK;
  return isSound && isChecked && count == 0 && size == info.uncompressed_size;
}

/// A part as the archive's directory describes it.
struct PartMark {
  std::uint64_t size = 0;
  std::uint64_t checksum = 0;
  bool operator==(const PartMark&) const = default;
};
using PartMarks = std::map<std::string, PartMark, std::less<>>;

PartMark markOf(const unz_file_info64& info) { return {info.uncompressed_size, info.crc}; }

/// Of all parts but the sheet; empty where the archive can't be read.
PartMarks marksOf(const std::filesystem::path& path) {
  const Archive archive(unzOpen64(path.string().c_str()));
  PartMarks marks;
  int state = archive ? unzGoToFirstFile(archive.get()) : UNZ_ERRNO;
  for (; state == UNZ_OK; state = unzGoToNextFile(archive.get())) {
    std::array<char, 256> name{};
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(archive.get(), &info, name.data(), name.size() - 1, nullptr, 0, nullptr, 0) != UNZ_OK)
      return {};
    if (name.data() != kSheet) marks.emplace(name.data(), markOf(info));
  }
  return state == UNZ_END_OF_LIST_OF_FILE ? marks : PartMarks();
}

/// What the parts that name others name, as paths in the archive.
class Names {
 public:
  void takeTypes(const pugi::xml_document& types) {
    for (const pugi::xml_node& part : types.child("Types").children("Override"))
      add(std::string_view(part.attribute("PartName").value()), "");
  }
  void takeRelations(const pugi::xml_document& relations, std::string_view folder) {
    for (const pugi::xml_node& relation : relations.child("Relationships").children("Relationship"))
      if (std::string_view(relation.attribute("TargetMode").value()) != "External")
        add(std::string_view(relation.attribute("Target").value()), folder);
  }
  [[nodiscard]] const std::set<std::string, std::less<>>& all() const { return names_; }

 private:
  void add(std::string_view name, std::string_view folder) {
    if (name.starts_with('/'))
      names_.emplace(name.substr(1));
    else
      names_.insert(std::string(folder).append(name));
  }
  std::set<std::string, std::less<>> names_;
};

}  // namespace

std::string whatIsWrong(const std::filesystem::path& path, SheetCells& cells, const std::filesystem::path& twin) {
  constexpr const char* kNoArchive = "its archive has no sound directory";
  const Archive archive(unzOpen64(path.string().c_str()));
  void* const zip = archive.get();
  unz_global_info64 global{};
  if (zip == nullptr || unzGetGlobalInfo64(zip, &global) != UNZ_OK) return kNoArchive;

  std::set<std::string, std::less<>> found;
  PartMarks marks;
  Names named;
  std::string piece(std::size_t{1} << 18, '\0');
  int state = unzGoToFirstFile(zip);
  for (; state == UNZ_OK; state = unzGoToNextFile(zip)) {
    std::array<char, 256> name{};
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(zip, &info, name.data(), name.size() - 1, nullptr, 0, nullptr, 0) != UNZ_OK)
      return kNoArchive;
    const std::string_view part = name.data();
    if (!found.emplace(part).second) return "its part '" + std::string(part) + "' stands there twice";
    if (part == kSheet) {
      SheetCheck check(cells);
      if (!readPart(zip, info, piece, [&check](std::string_view text) { return check.take(text); }) || !check.finish())
        return unsound(part);
      continue;
    }
    marks.emplace(part, markOf(info));
    std::string text;
    const bool isRead = readPart(zip, info, piece, [&text](std::string_view more) {
      text += more;
      return true;
    });
    pugi::xml_document document;
    if (!isRead || !readDocument(text, document)) return unsound(part);
    if (part == kTypes) named.takeTypes(document);
    if (part == kRelations) named.takeRelations(document, "");
    if (part == kBookRelations) named.takeRelations(document, "xl/");
  }
  if (state != UNZ_END_OF_LIST_OF_FILE || found.size() != global.number_entry) return kNoArchive;

  for (const std::string_view needed : {kTypes, kRelations, kBook, kBookRelations, kSheet})
    if (!found.contains(needed)) return "its part '" + std::string(needed) + "' is missing";
  for (const std::string_view needed : {kBook, kSheet})
    if (!named.all().contains(needed)) return "no part of it names '" + std::string(needed) + "'";
  for (const std::string& name : named.all())
    if (!found.contains(name)) return "its part '" + name + "' is missing";
  for (const PartMarks twins = marksOf(twin); const auto& [name, mark] : marks)
    if (const auto other = twins.find(name); other == twins.end() || other->second != mark) return unsound(name);
  return {};
}

}  // namespace lvx::workbook::detail

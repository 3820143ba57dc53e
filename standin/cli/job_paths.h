#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lvx::cli {

/// The files that the jobs of a job file write and read, by which jobs are found that get into each other's way. Two
/// spellings of one path are one file, through links too. Each folder is looked at once.
class JobPaths {
 public:
  /// Bits of the forms of a report.
  static constexpr unsigned kText = 1;
  static constexpr unsigned kWorkbook = 2;
  static constexpr unsigned kPage = 4;
  /// Of a file that is read for no drawing.
  static constexpr std::uint32_t kNoDrawing = 0xffffffff;

  struct Conflict {
    std::size_t line = 0;
    std::string words;
  };

  /// Makes room for so many jobs.
  void reserve(std::size_t jobs) { writers_.reserve(jobs); }

  /// The path from the root on, without links.
  [[nodiscard]] std::string wholePath(const std::string& path);

  /// A report's forms, as bits of those above.
  void writes(std::size_t line, const std::string& stem, unsigned forms);
  /// A file under its whole name.
  void writesFile(std::size_t line, const std::string& path);
  /// A book under its whole name. How many sheets it has isn't known, so an SVG may be any number of files.
  void writesBook(std::size_t line, const std::string& path);
  /// The drawing's file, or another one; `inPlace` where it is the file that the job's drawing was read from.
  void saves(std::size_t line, const std::string& path, std::uint32_t drawing, bool inPlace);
  /// A file that is added to the job's drawing, which is saved in place: it is written where something of it changed.
  void maySave(std::size_t line, const std::string& path, std::uint32_t drawing);
  /// `what` stands in messages where the file belongs to no line.
  void reads(std::size_t line, const std::string& path, std::uint32_t drawing, const std::string& what = {});

  /// Those of all that was told so far, by ascending line. Each names both lines, and stands at the one that writes.
  /// `canChange` is asked of a file that may be saved and is read for another drawing too, once for each: whether it holds
  /// anything that a save could change.
  [[nodiscard]] std::vector<Conflict> conflicts(const std::function<bool(const std::string& path)>& canChange);

 private:
  struct Writer {
    std::uint32_t line = 0;
    std::uint32_t drawing = kNoDrawing;
    std::uint8_t forms = 0;  ///< kOther for a file with another ending
    bool saves = false;
    bool inPlace = false;
  };
  struct Reader {
    std::uint32_t line = 0;
    std::uint32_t drawing = kNoDrawing;
    std::uint32_t what = 0;  ///< by its place in `kinds_`
  };
  struct Folder {
    /// From the root on, without links, with a slash behind it.
    std::string whole;
    bool exists = false;
    /// Its links by name, with where they lead; null where it has none.
    std::unique_ptr<std::unordered_map<std::string, std::string>> links;
  };
  /// A file by its path without one of the endings of reports, and which of them it has.
  struct Named {
    std::string stem;
    std::uint8_t form = 0;
  };
  [[nodiscard]] static Named named(const std::string& whole);
  /// By a path that ends with a slash, or is empty.
  [[nodiscard]] const Folder& folderOf(const std::string& path);
  [[nodiscard]] Folder seenFolder(const std::string& path);
  /// A picture by its whole path: a book, or another file that has the name of one.
  struct Picture {
    std::string whole;
    std::string given;
    std::uint32_t line = 0;
    bool isBook = false;
  };
  void addPicture(std::size_t line, const std::string& path, bool isBook);
  /// Files that would be a sheet of another job's book.
  void addSheets(std::vector<Conflict>& all) const;
  void addPossible(const std::function<bool(const std::string& path)>& canChange, std::vector<Conflict>& all) const;
  void add(std::string wholeStem, const std::string& given, const Writer& writer);

  std::unordered_map<std::string, Folder> folders_;
  std::unordered_multimap<std::string, Writer> writers_;
  std::unordered_multimap<std::string, Reader> readers_;
  /// Of each drawing that is saved in place: its added files, each by the first line that may save it.
  std::map<std::pair<std::string, std::uint32_t>, std::uint32_t> maySave_;
  std::vector<Picture> pictures_;
  std::vector<std::string> kinds_{""};
  std::vector<Conflict> conflicts_;
};

}  // namespace lvx::cli

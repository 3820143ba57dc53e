// The table of folders in docs/architecture.md against the targets as they are built: which there are, and whose headers a
// source of each can include.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;

const fs::path kTree = test::inSource("");
constexpr const char* kDocument = "docs/architecture.md";

/// A folder that is a target.
struct Library {
  /// "standin/desktop/plan"
  std::string folder;
  /// What its headers' names begin with in an include, and what the table calls it: "desktop/plan".
  std::string name;
  /// Where a source of its own looks for headers.
  std::vector<std::string> includeDirectories;
};

std::vector<std::string> split(const std::string& text, char mark) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, mark);) parts.push_back(part);
  return parts;
}

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" `");
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" `") - first + 1);
}

std::string joined(const std::set<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "nothing" : text;
}

/// Every folder that is a target, as CMake lists them.
std::vector<Library> readLibraries() {
  std::vector<Library> libraries;
  std::ifstream file(test::inBuild("/libraries.txt"));
  for (std::string line; std::getline(file, line);) {
    std::vector<std::string> fields = split(line, '\t');
    Library& library = libraries.emplace_back();
    library.folder = fields.at(0);
    library.name = fields.at(1);
    std::copy_if(fields.begin() + 2, fields.end(), std::back_inserter(library.includeDirectories),
                 [](const std::string& directory) { return !directory.empty(); });
  }
  if (libraries.empty()) throw std::runtime_error("libraries.txt of the build folder names no target");
  return libraries;
}

const std::vector<Library>& libraries() {
  static const std::vector<Library> all = readLibraries();
  return all;
}

/// Rows of the table: what each folder may include, as it stands there.
std::map<std::string, std::string> readTable() {
  std::map<std::string, std::string> rows;
  std::ifstream file(kTree / kDocument);
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("## ", 0) == 0) inside = line == "## Folders";
    if (!inside || line.rfind("| `", 0) != 0) continue;
    const std::vector<std::string> cells = split(line, '|');
    for (const std::string& folder : split(cells.at(1), ',')) rows[trimmed(folder)] = trimmed(cells.at(3));
  }
  if (rows.empty()) throw std::runtime_error("docs/architecture.md has no table of folders");
  return rows;
}

std::set<std::string> namesIn(const std::string& cell) {
  std::set<std::string> names;
  if (cell != "nothing")
    for (const std::string& name : split(cell, ',')) names.insert(trimmed(name));
  return names;
}

/// A header as sources include it, whose it is, and whether it is its folder's own affair.
struct Header {
  std::string name;
  std::string owner;
  bool isDetail;
};

std::vector<Header> findHeaders() {
  std::vector<Header> all;
  for (const Library& library : libraries()) {
    const fs::path folder = kTree / library.folder;
    for (auto entry = fs::recursive_directory_iterator(folder); entry != fs::recursive_directory_iterator(); ++entry) {
      if (fs::exists(entry->path() / "CMakeLists.txt")) entry.disable_recursion_pending();  // a target of its own
      if (entry->path().extension() != ".h") continue;
      const std::string name = fs::relative(entry->path(), folder).string();
      all.push_back({library.name + '/' + name, library.name, ('/' + name).find("/detail/") != std::string::npos});
    }
  }
  return all;
}

const std::vector<Header>& headers() {
  static const std::vector<Header> all = findHeaders();
  return all;
}

/// Runs the preprocessor as for a source of that folder.
test::RunResult preprocess(const Library& library, const std::string& source) {
  const test::TemporaryFolder folder;
  std::ofstream(folder / "source.cpp") << source;
  test::RunRequest request;
  request.program = LVX_CXX_COMPILER;
  request.arguments = {"-E", "-P"};
  for (const std::string& directory : library.includeDirectories) request.arguments.push_back("-I" + directory);
  request.arguments.push_back((folder / "source.cpp").string());
  return test::runProgram(request);
}

/// Names of the headers that a source of that folder can include.
std::set<std::string> seenFrom(const Library& library) {
  std::string source;
  for (const Header& header : headers())
    source += "#if __has_include(\"" + header.name + "\")\nseen " + header.name + "\n#endif\n";
  const test::RunResult result = preprocess(library, source);
  if (result.exitCode != 0) throw std::runtime_error(result.errors);
  std::set<std::string> seen;
  for (const std::string& line : split(result.output, '\n'))
    if (line.rfind("seen ", 0) == 0) seen.insert(line.substr(5));
  return seen;
}

/// The folders, other than its own, of which a source of that folder sees a header.
std::set<std::string> foldersSeenFrom(const Library& library) {
  const std::set<std::string> seen = seenFrom(library);
  std::set<std::string> folders;
  for (const Header& header : headers())
    if (header.owner != library.name && seen.contains(header.name)) folders.insert(header.owner);
  return folders;
}

TEST(FolderTable, HasARowForEveryTarget) {
  const auto rows = readTable();
  for (const Library& library : libraries())
    EXPECT_TRUE(rows.contains(library.folder))
        << kDocument << " lacks a row: | `" << library.folder << "` | … | " << joined(foldersSeenFrom(library)) << " |";
}

TEST(FolderTable, HasARowForEveryFolderOfTheTree) {
  const auto rows = readTable();
  const auto isCovered = [&](const std::string& folder) {
    return std::any_of(rows.begin(), rows.end(),
                       [&](const auto& row) { return row.first == folder || row.first.rfind(folder + "/", 0) == 0; });
  };
  for (const char* parent : {"", "src", "standin", "tools"})
    for (const auto& entry : fs::directory_iterator(kTree / parent)) {
      const std::string folder = fs::relative(entry.path(), kTree).string();
      if (!entry.is_directory() || folder.front() == '.' || folder == "build" || folder == "out") continue;
      EXPECT_TRUE(isCovered(folder)) << kDocument << " lacks a row for " << folder;
    }
}

TEST(FolderTable, NamesNoFolderThatIsNotThere) {
  for (const auto& [folder, mayInclude] : readTable())
    EXPECT_TRUE(fs::is_directory(kTree / folder.substr(0, folder.find("/<"))))
        << kDocument << " has a row of " << folder;
}

TEST(FolderTable, SaysWhatASourceOfEachFolderCanInclude) {
  const auto rows = readTable();
  for (const Library& library : libraries()) {
    const auto row = rows.find(library.folder);
    if (row == rows.end()) continue;  // another test tells
    const std::set<std::string> seen = foldersSeenFrom(library);
    EXPECT_EQ(namesIn(row->second), seen)
        << kDocument << ", row of " << library.folder << ": should say: " << joined(seen);
  }
}

/// Every pair of folders, and every header: those of a folder that the table allows are seen, all others aren't.
TEST(IncludeFence, ShowsTheHeadersOfAllowedFoldersAndNoOtherAndNobodysDetail) {
  const auto rows = readTable();
  std::size_t refused = 0;
  for (const Library& library : libraries()) {
    const auto row = rows.find(library.folder);
    if (row == rows.end()) continue;
    const std::set<std::string> allowed = namesIn(row->second);
    const std::set<std::string> seen = seenFrom(library);
    std::set<std::string> wronglySeen;
    std::set<std::string> wronglyHidden;
    for (const Header& header : headers()) {
      const bool mayBeSeen = header.owner == library.name || (allowed.contains(header.owner) && !header.isDetail);
      if (!mayBeSeen) ++refused;
      if (seen.contains(header.name) && !mayBeSeen) wronglySeen.insert(header.name);
      if (!seen.contains(header.name) && mayBeSeen) wronglyHidden.insert(header.name);
    }
    EXPECT_EQ(joined(wronglySeen), "nothing") << "can be included in " << library.folder;
    EXPECT_EQ(joined(wronglyHidden), "nothing") << "can't be included in " << library.folder;
  }
  EXPECT_GT(refused, 1000U);
}

TEST(IncludeFence, EndsTheCompilationOfAWrongInclude) {
  for (const Library& library : libraries()) {
    if (library.name != "framework") continue;
    EXPECT_EQ(preprocess(library, "#include \"framework/exceptions.h\"\n").exitCode, 0);
    const test::RunResult wrong = preprocess(library, "#include \"host/host.h\"\n");
    EXPECT_NE(wrong.exitCode, 0);
    EXPECT_NE(wrong.errors.find("host/host.h"), std::string::npos) << wrong.errors;
  }
}

}  // namespace
}  // namespace lvx

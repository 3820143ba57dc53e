#include "cli/job_paths.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

#include "sheets/book.h"

namespace lvx::cli {

namespace fs = std::filesystem;

namespace {

struct Ending {
  std::string_view text;
  std::uint8_t form;
};
constexpr std::array<Ending, 3> kEndings{
    {{".txt", JobPaths::kText}, {".xls", JobPaths::kWorkbook}, {".html", JobPaths::kPage}}};
constexpr std::uint8_t kOther = 8;

}  // namespace

JobPaths::Named JobPaths::named(const std::string& whole) {
  for (const Ending& ending : kEndings)
    if (whole.ends_with(ending.text)) return {whole.substr(0, whole.size() - ending.text.size()), ending.form};
  return {whole, kOther};
}

const JobPaths::Folder& JobPaths::folderOf(const std::string& path) {
  if (const auto found = folders_.find(path); found != folders_.end()) return found->second;
  Folder folder = seenFolder(path);
  return folders_.emplace(path, std::move(folder)).first->second;
}

JobPaths::Folder JobPaths::seenFolder(const std::string& path) {
  Folder folder;
  std::error_code error;
  const std::size_t slash = path.size() < 2 ? std::string::npos : path.rfind('/', path.size() - 2);
  const std::string above = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
  const std::string name = path.size() < 2 ? std::string() : path.substr(above.size(), path.size() - above.size() - 1);
  const bool isPlain = !name.empty() && name != "." && name != "..";
  if (isPlain) {
    // As the folder above is known already: one look at this name.
    const Folder& upper = folderOf(above);
    folder.whole = upper.whole + name + "/";
    const bool isLink = upper.links != nullptr && upper.links->contains(name);
    if (isLink) folder.whole = upper.links->at(name) + "/";
    folder.exists = upper.exists && fs::is_directory(folder.whole, error);
  } else {
    fs::path whole = fs::weakly_canonical(fs::absolute(path.empty() ? "." : path), error);
    if (error) whole = fs::absolute(path).lexically_normal();
    folder.whole = whole.string();
    if (!folder.whole.ends_with('/')) folder.whole += '/';
    folder.exists = fs::is_directory(folder.whole, error);
  }
  if (!folder.exists) return folder;
  fs::directory_iterator entries(folder.whole, error);
  for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
    std::error_code notKnown;
    if (!entries->is_symlink(notKnown)) continue;
    const fs::path target = fs::weakly_canonical(entries->path(), notKnown);
    if (notKnown) continue;
    if (!folder.links) folder.links = std::make_unique<std::unordered_map<std::string, std::string>>();
    folder.links->emplace(entries->path().filename().string(), target.string());
  }
  return folder;
}

std::string JobPaths::wholePath(const std::string& path) {
  const std::size_t start = path.rfind('/') + 1;
  const std::string name = path.substr(start);
  if (name.empty() || name == "." || name == "..") {
    std::string whole = folderOf(name.empty() ? path : path + "/").whole;
    if (whole.size() > 1) whole.pop_back();
    return whole;
  }
  const Folder& folder = folderOf(path.substr(0, start));
  if (folder.links) {
    if (const auto link = folder.links->find(name); link != folder.links->end()) return link->second;
  }
  return folder.whole + name;
}

void JobPaths::add(std::string wholeStem, const std::string& given, const Writer& writer) {
  const auto [first, last] = writers_.equal_range(wholeStem);
  for (auto at = first; at != last; ++at) {
    const Writer& other = at->second;
    if ((other.forms & writer.forms) == 0) continue;
    // They run one after the other, and each of them reads what the one before saved.
    if (other.inPlace && writer.inPlace && other.drawing == writer.drawing) continue;
    const std::string verb = writer.saves ? "saves the same file as line " : "writes the same files as line ";
    const std::string words =
        other.line == writer.line ? "saves into a file of its own report: " : verb + std::to_string(other.line) + ": ";
    conflicts_.push_back({writer.line, words + given});
    return;
  }
  writers_.emplace(std::move(wholeStem), writer);
}

void JobPaths::writes(std::size_t line, const std::string& stem, unsigned forms) {
  const std::size_t start = stem.rfind('/') + 1;
  const Folder& folder = folderOf(stem.substr(0, start));
  Writer writer;
  writer.line = static_cast<std::uint32_t>(line);
  for (const Ending& ending : kEndings) {
    if ((forms & ending.form) == 0) continue;
    const auto* const links = folder.links.get();
    const auto link =
        links == nullptr ? decltype(links->end()){} : links->find(stem.substr(start) + std::string(ending.text));
    if (links == nullptr || link == links->end()) {
      writer.forms |= ending.form;
      continue;
    }
    const Named target = named(link->second);
    Writer through = writer;
    through.forms = target.form;
    add(target.stem, stem + std::string(ending.text), through);
  }
  // A stem is no file itself, so that a link of its name counts for nothing.
  if (writer.forms != 0) add(folder.whole + stem.substr(start), stem, writer);
}

void JobPaths::writesFile(std::size_t line, const std::string& path) {
  const Named file = named(wholePath(path));
  add(file.stem, path, {static_cast<std::uint32_t>(line), kNoDrawing, file.form, false, false});
}

void JobPaths::addPicture(std::size_t line, const std::string& path, bool isBook) {
  if (sheets::isBookName(path) && sheets::formatOf(path) == canvas::FileFormat::Svg)
    pictures_.push_back({wholePath(path), path, static_cast<std::uint32_t>(line), isBook});
}

void JobPaths::writesBook(std::size_t line, const std::string& path) {
  writesFile(line, path);
  addPicture(line, path, true);
}

void JobPaths::addSheets(std::vector<Conflict>& all) const {
  std::unordered_map<std::string, const Picture*> books;
  for (const Picture& picture : pictures_)
    if (picture.isBook) books.try_emplace(picture.whole, &picture);
  if (books.empty()) return;
  const auto bookOf = [&](const std::string& whole) -> const Picture* {
    const auto name = sheets::bookOfSheet(whole);
    const auto found = name ? books.find(name->string()) : books.end();
    return found == books.end() ? nullptr : found->second;
  };
  for (const Picture& picture : pictures_) {
    const Picture* const book = bookOf(picture.whole);
    if (book == nullptr) continue;
    const std::string sheet = "'" + picture.given + "' may be a sheet of '" + book->given + "'";
    if (book->line == picture.line)
      all.push_back({picture.line, "may save into a file of its own report: " + sheet});
    else
      all.push_back(
          {std::max(book->line, picture.line),
           "may write the same files as line " + std::to_string(std::min(book->line, picture.line)) + ": " + sheet});
  }
  for (const auto& [path, reader] : readers_) {
    const Picture* const book = bookOf(path);
    if (book == nullptr) continue;
    const std::string& what = kinds_[reader.what];
    all.push_back({book->line,
                   "may write " + (what.empty() ? "'" + path + "', which line " + std::to_string(reader.line) + " reads"
                                                : what + " itself")});
  }
}

void JobPaths::saves(std::size_t line, const std::string& path, std::uint32_t drawing, bool inPlace) {
  const Named file = named(wholePath(path));
  add(file.stem, path, {static_cast<std::uint32_t>(line), drawing, file.form, true, inPlace});
  addPicture(line, path, false);
}

void JobPaths::maySave(std::size_t line, const std::string& path, std::uint32_t drawing) {
  maySave_.try_emplace({wholePath(path), drawing}, static_cast<std::uint32_t>(line));
}

void JobPaths::addPossible(const std::function<bool(const std::string& path)>& canChange,
                           std::vector<Conflict>& all) const {
  std::map<std::string, bool> changes;
  for (const auto& [file, line] : maySave_) {
    const auto& [path, drawing] = file;
    const auto [first, last] = readers_.equal_range(path);
    for (auto at = first; at != last; ++at) {
      const Reader& reader = at->second;
      if (reader.drawing == drawing || !kinds_[reader.what].empty()) continue;
      const auto [change, isNew] = changes.try_emplace(path);
      if (isNew) change->second = canChange(path);
      if (!change->second) break;
      all.push_back({line, "may save '" + path + "', which line " + std::to_string(reader.line) + " reads"});
    }
  }
}

void JobPaths::reads(std::size_t line, const std::string& path, std::uint32_t drawing, const std::string& what) {
  std::string whole = wholePath(path);
  const auto kind = static_cast<std::uint32_t>(std::find(kinds_.begin(), kinds_.end(), what) - kinds_.begin());
  const auto [first, last] = readers_.equal_range(whole);
  for (auto reader = first; reader != last; ++reader)
    if (reader->second.drawing == drawing && reader->second.what == kind) return;
  if (kind == kinds_.size()) kinds_.push_back(what);
  readers_.emplace(std::move(whole), Reader{static_cast<std::uint32_t>(line), drawing, kind});
}

std::vector<JobPaths::Conflict> JobPaths::conflicts(const std::function<bool(const std::string& path)>& canChange) {
  std::vector<Conflict> all = conflicts_;
  addPossible(canChange, all);
  addSheets(all);
  for (const auto& [path, reader] : readers_) {
    const Named file = named(path);
    const auto [first, last] = writers_.equal_range(file.stem);
    for (auto at = first; at != last; ++at) {
      const Writer& writer = at->second;
      if ((writer.forms & file.form) == 0) continue;
      if (writer.inPlace && reader.drawing == writer.drawing) continue;
      const std::string verb = writer.saves ? "saves " : "writes ";
      const std::string& what = kinds_[reader.what];
      const std::string words = !what.empty() ? what + " itself"
                                : reader.line == writer.line
                                    ? "'" + path + "', which it reads itself"
                                    : "'" + path + "', which line " + std::to_string(reader.line) + " reads";
      all.push_back({writer.line, verb + words});
    }
  }
  // What is written beside the jobs' own files.
  for (const auto& [path, taken] : readers_) {
    if (kinds_[taken.what].empty()) continue;
    const auto [first, last] = readers_.equal_range(path);
    for (auto at = first; at != last; ++at)
      if (kinds_[at->second.what].empty()) all.push_back({at->second.line, "reads " + kinds_[taken.what] + " itself"});
  }
  std::stable_sort(all.begin(), all.end(), [](const Conflict& a, const Conflict& b) {
    return std::tie(a.line, a.words) < std::tie(b.line, b.words);
  });
  return all;
}

}  // namespace lvx::cli

#include "landxml/project.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "civil/drawing_files.h"
#include "landxml/detail/compressed_source.h"
#include "landxml/detail/file_saving.h"
#include "standin_platform/file_stamp.h"

namespace lvx::landxml {

using standin_platform::leadToOneFile;

namespace {

ReadOptions readOptions(const ProjectFile& file, const ProjectOptions& options) {
  ReadOptions read;
  read.swapAxes = file.swapAxes;
  read.namesAlone = options.namesAlone;
  read.threads = options.threads;
  read.groundSearch = options.groundSearch;
  read.source = file.source;
  if (options.progress) {
    read.progress = [&file, &options](const Progress& progress) { return options.progress(file.path, progress); };
  }
  return read;
}

std::string unitInWords(const std::string& unit) { return unit.empty() ? "none (metres)" : unit; }

/// What a file's lengths are multiplied by to be those of `drawing`.
double factorFor(const civil::Drawing& drawing, const std::string& path, const std::string& unit, bool convert) {
  if (unit == drawing.linearUnit) return 1.0;
  const auto own = civil::metresPerUnit(unit);
  const auto wanted = civil::metresPerUnit(drawing.linearUnit);
  // An unknown unit is told when its file is read and counts as metres.
  const double factor = own.value_or(1.0) / wanted.value_or(1.0);
  if (factor == 1.0 || convert) return factor;
  throw UnitMismatch("its linear unit is " + unitInWords(unit) + ", that of '" + drawing.path + "' is " +
                         unitInWords(drawing.linearUnit) + "; --convert-units converts the added files",
                     path, unit, drawing.linearUnit);
}

void refuseSame(const std::string& known, const std::string& path) {
  if (leadToOneFile(known, path))
    throw ReadError(known == path ? "the file is given twice" : "the file is given twice, also as '" + known + "'",
                    path);
}

void refuseTwice(const civil::Drawing& drawing, const std::string& path) {
  for (civil::FileNumber file = 0; file <= drawing.addedFiles.size(); ++file)
    refuseSame(civil::pathOf(drawing, file), path);
}

/// Whether an element of that name begins in the text, behind its first byte.
bool findsElement(std::string_view text, std::string_view name) {
  for (std::size_t at = text.find(name, 1); at != std::string::npos; at = text.find(name, at + 1)) {
    const char before = text[at - 1];
    const std::size_t end = at + name.size();
    if ((before == '<' || before == ':') && end < text.size() &&
        std::string_view(" \t\r\n/>").find(text[end]) != std::string_view::npos)
      return true;
  }
  return false;
}

/// Whether an element of that name begins somewhere in the file; comments aren't told from elements. False too once
/// `goesOn` is.
bool holdsAlignment(const std::string& path, const std::function<bool()>& goesOn) {
  constexpr std::string_view kName = "Alignment";
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;  // a pipe is read once
  std::string text;
  try {
    const auto file = detail::unpacked(detail::openFile(path, path), path);
    for (std::size_t count = 1; count > 0 && (!goesOn || goesOn());) {
      const std::size_t kept = std::min(text.size(), kName.size() + 1);
      text.erase(0, text.size() - kept);
      text.resize(kept + kBlock);
      count = file->read(text.data() + kept, kBlock);
      text.resize(kept + count);
      if (findsElement(text, kName)) return true;
    }
  } catch (const ReadError&) {
    // As a file without: reading it tells why.
  }
  return false;
}

/// Whether the drawing still has of that file what was read from it, and nothing new.
bool isAsRead(const civil::Drawing& drawing, civil::FileNumber file) {
  const civil::FileMark& mark = file == 0 ? drawing.file : drawing.addedFiles[file - 1].mark;
  return mark.content != 0 && mark.content == detail::contentOf(drawing, file);
}

}  // namespace

std::vector<ProjectFile> alignmentFirst(std::vector<ProjectFile> files, const std::function<bool()>& goesOn) {
  if (files.size() < 2) return files;
  const auto first = std::find_if(files.begin(), files.end(),
                                  [&](const ProjectFile& file) { return holdsAlignment(file.path, goesOn); });
  if (first != files.end()) std::rotate(files.begin(), first, first + 1);
  return files;
}

void addFile(civil::Drawing& drawing, const ProjectFile& file, const ProjectOptions& options) {
  refuseTwice(drawing, file.path);
  civil::AddedFile description;
  description.path = file.path;
  description.axesSwapped = file.swapAxes;
  ReadOptions read = readOptions(file, options);
  read.lengthFactor = [&](const std::string& unit) {
    description.lengthFactor = factorFor(drawing, file.path, unit, options.convertUnits);
    return description.lengthFactor;
  };
  civil::Drawing added = readDrawing(file.path, read);
  description.mark = added.file;
  description.linearUnit = added.linearUnit;
  try {
    civil::addDrawing(drawing, std::move(added), std::move(description));
  } catch (const std::overflow_error& error) {
    throw ReadError(error.what(), file.path);
  }
  drawing.addedFiles.back().mark.content =
      detail::contentOf(drawing, static_cast<civil::FileNumber>(drawing.addedFiles.size()));
}

civil::Drawing readProject(const std::vector<ProjectFile>& files, const ProjectOptions& options) {
  // Before anything is read, which takes long.
  for (std::size_t later = 1; later < files.size(); ++later)
    for (std::size_t i = 0; i < later; ++i) refuseSame(files[i].path, files[later].path);
  civil::Drawing drawing = readDrawing(files.front().path, readOptions(files.front(), options));
  drawing.axesSwapped = files.front().swapAxes;
  for (std::size_t i = 1; i < files.size(); ++i) addFile(drawing, files[i], options);
  return drawing;
}

std::vector<std::string> changedAddedFiles(const civil::Drawing& drawing) {
  std::vector<std::string> changed;
  for (civil::FileNumber file = 1; file <= drawing.addedFiles.size(); ++file)
    if (!isAsRead(drawing, file)) changed.push_back(civil::pathOf(drawing, file));
  return changed;
}

std::vector<SavedFile> saveProject(civil::Drawing& drawing, const std::string& firstTarget,
                                   const SaveOptions& options) {
  const auto count = static_cast<civil::FileNumber>(drawing.addedFiles.size() + 1);
  const auto sourceOf = [&](civil::FileNumber file) {
    const std::string source = options.sourceOf ? options.sourceOf(file) : std::string();
    return source.empty() ? civil::pathOf(drawing, file) : source;
  };
  for (civil::FileNumber file = 1; file < count; ++file) {
    if (leadToOneFile(firstTarget, civil::pathOf(drawing, file)))
      throw SaveError("the drawing's first file can't be saved under this name: the file was added to the drawing",
                      firstTarget);
  }

  struct Work {
    civil::FileNumber file = 0;
    std::string target;
    std::unique_ptr<detail::FileSaving> saving;
  };
  std::vector<Work> works;
  std::uint64_t total = 0;
  for (civil::FileNumber file = 0; file < count; ++file) {
    // The only file of a drawing is looked at in any case, as is one that goes elsewhere.
    const bool isAsked = file == 0 && (count == 1 || !leadToOneFile(firstTarget, sourceOf(0)));
    if (!isAsked && isAsRead(drawing, file)) continue;
    Work work{file, file == 0 ? firstTarget : civil::pathOf(drawing, file), nullptr};
    work.saving = std::make_unique<detail::FileSaving>(drawing, file, sourceOf(file), work.target);
    total += work.saving->work();
    works.push_back(std::move(work));
  }
  std::uint64_t before = 0;
  for (Work& work : works) {
    work.saving->write([&](std::uint64_t done) {
      if (options.progress && !options.progress({before + done, total})) throw Cancelled(work.target);
    });
    before += work.saving->work();
  }

  if (options.beforeReplacing) {
    std::vector<NewFile> files;
    for (const Work& work : works)
      if (const std::string path = work.saving->newFile(); !path.empty()) files.push_back({work.target, path});
    options.beforeReplacing(files);
  }
  std::vector<SavedFile> saved;
  if (works.empty() || works.front().file != 0) saved.push_back({firstTarget, drawing.file, false});
  for (Work& work : works) saved.push_back({work.target, work.saving->replace()});
  return saved;
}

}  // namespace lvx::landxml

#include "landxml/project.h"

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "civil/drawing_files.h"
#include "civil/each_object.h"

namespace lvx::landxml {

namespace {

ReadOptions readOptions(const ProjectFile& file, const ProjectOptions& options) {
  ReadOptions read;
  read.swapAxes = file.swapAxes;
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
  throw ReadError("its linear unit is " + unitInWords(unit) + ", that of '" + drawing.path + "' is " +
                      unitInWords(drawing.linearUnit) + "; --convert-units converts the added files",
                  path);
}

bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) || (error && a == b);
}

std::string nameOf(const civil::Point& point) { return std::to_string(point.number); }
template <class Object>
std::string nameOf(const Object& object) {
  return object.name;
}

void refuseTwice(const civil::Drawing& drawing, const std::string& path) {
  for (civil::FileNumber file = 0; file <= drawing.addedFiles.size(); ++file) {
    const std::string& known = civil::pathOf(drawing, file);
    if (!isSameFile(known, path)) continue;
    throw ReadError(known == path ? "the file is given twice" : "the file is given twice, also as '" + known + "'",
                    path);
  }
}

}  // namespace

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
}

civil::Drawing readProject(const std::vector<ProjectFile>& files, const ProjectOptions& options) {
  civil::Drawing drawing = readDrawing(files.front().path, readOptions(files.front(), options));
  drawing.axesSwapped = files.front().swapAxes;
  for (std::size_t i = 1; i < files.size(); ++i) addFile(drawing, files[i], options);
  return drawing;
}

std::vector<SavedFile> saveProject(civil::Drawing& drawing, const std::string& firstTarget,
                                   const SaveOptions& options) {
  if (!drawing.addedFiles.empty()) throw SaveError("drawings of several files can't be saved yet", firstTarget);
  civil::eachObject(drawing, [&](const auto& object) {
    if (object.file == civil::kNoFile)
      throw SaveError("'" + nameOf(object) + "' was made in the open drawing and can't be saved yet", firstTarget);
  });
  const std::string source = options.sourceOf ? options.sourceOf(0) : std::string();
  return {{firstTarget, saveDrawing(drawing, source.empty() ? drawing.path : source, firstTarget, options)}};
}

}  // namespace lvx::landxml

#include "runtime/input_files.h"

#include <utility>

#include "civil/drawing.h"
#include "standin_platform/file_stamp.h"

namespace lvx::runtime {

void InputFiles::add(std::string path, std::string what) { files_.push_back({std::move(path), std::move(what)}); }

void InputFiles::add(const InputFiles& others) {
  files_.insert(files_.end(), others.files_.begin(), others.files_.end());
}

void InputFiles::add(const civil::Drawing& drawing) {
  if (!drawing.path.empty()) add(drawing.path, "the drawing");
  for (const auto& file : drawing.addedFiles) add(file.path, "a file of the drawing");
}

std::string InputFiles::whyNoOutput(const std::string& path) const {
  if (path.find('\0') != std::string::npos) return "a zero character stands in the name";
  for (const File& file : files_)
    if (standin_platform::leadToOneFile(file.path, path)) return "it is " + file.what + " that is read";
  return {};
}

}  // namespace lvx::runtime

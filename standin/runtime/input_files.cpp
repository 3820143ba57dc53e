#include "runtime/input_files.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "civil/drawing.h"
#include "standin_platform/file_stamp.h"

namespace lvx::runtime {

namespace fs = std::filesystem;

bool isSameFile(const std::string& a, const std::string& b) {
  if (a == b) return true;
  const auto first = standin_platform::stampOf(a);
  const auto second = standin_platform::stampOf(b);
  if (first && second) return first->isSameFile(*second);
  if (first || second) return false;
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(fs::absolute(a, error), error);
  return !error && whole == fs::weakly_canonical(fs::absolute(b, error), error) && !error;
}

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
    if (isSameFile(file.path, path)) return "it is " + file.what + " that is read";
  return {};
}

}  // namespace lvx::runtime

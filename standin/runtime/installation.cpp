#include "runtime/installation.h"

#include <system_error>

#include "standin_platform/program_file.h"

namespace lvx::runtime {

namespace fs = std::filesystem;

fs::path programFile() {
  if (const auto program = standin_platform::programFile()) return *program;
  std::error_code error;
  return fs::current_path(error) / "lvxhost";
}

fs::path programFolder() { return programFile().parent_path(); }

fs::path moduleFile(const fs::path& bin) {
  constexpr const char* kName = "LVX_MirelReport.vmx";
  const fs::path beside = bin / kName;
  const fs::path installed = bin.parent_path() / "lib" / "lvxhost" / kName;
  std::error_code error;
  return !fs::exists(beside, error) && fs::exists(installed, error) ? installed : beside;
}

fs::path messageFolder(const std::string& language, const fs::path& bin) {
  return bin.parent_path() / "share" / "lvxhost" / "messages" / language;
}

fs::path helpFolder(const std::string& language, const fs::path& bin) {
  return bin.parent_path() / "share" / "lvxhost" / "help" / language;
}

fs::path examplesFolder(const fs::path& bin) {
  const fs::path installed = bin.parent_path() / "share" / "lvxhost" / "examples";
  std::error_code error;
  for (const fs::path& folder : {installed, bin.parent_path() / "examples", bin / "examples"})
    if (fs::is_directory(folder, error)) return folder;
  return installed;
}

}  // namespace lvx::runtime

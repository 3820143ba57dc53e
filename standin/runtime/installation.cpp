#include "runtime/installation.h"

#include <system_error>

namespace lvx::runtime {

namespace fs = std::filesystem;

fs::path programFile() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::current_path(error) / "lvxhost" : program;
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

}  // namespace lvx::runtime

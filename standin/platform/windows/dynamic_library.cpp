#include "standin_platform/dynamic_library.h"

#include <cstdint>
#include <optional>

#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

namespace {

using Problem = DynamicLibraryError::Problem;

/// No box of the system's about a library that is missing, as long as this stands.
class WithoutBoxes {
 public:
  WithoutBoxes() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &former_); }
  WithoutBoxes(const WithoutBoxes&) = delete;
  WithoutBoxes& operator=(const WithoutBoxes&) = delete;
  ~WithoutBoxes() { SetThreadErrorMode(former_, nullptr); }

 private:
  DWORD former_ = 0;
};

struct LibraryCloser {
  void operator()(HMODULE library) const noexcept { FreeLibrary(library); }
};
using Library = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryCloser>;

/// Which of the libraries that `file` imports can't be found beside it or where the system looks; the loader doesn't tell.
std::optional<std::string> missingImportOf(const std::filesystem::path& file) {
  // Laid out in memory as for running, but nothing of it runs.
  const Library image(LoadLibraryExW(file.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
  if (!image) return std::nullopt;
  const auto* const base = reinterpret_cast<const std::uint8_t*>(image.get());
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (imports.VirtualAddress == 0) return std::nullopt;
  const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
  for (; import->Name != 0; ++import) {
    const std::string name = reinterpret_cast<const char*>(base + import->Name);
    std::error_code error;
    if (std::filesystem::exists(file.parent_path() / name, error)) continue;
    if (!Library(LoadLibraryExW(widened(name).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE))) return name;
  }
  return std::nullopt;
}

[[noreturn]] void failLoading(const std::filesystem::path& file, DWORD code) {
  const std::string words = file.string() + ": " + errorOf(code).message();
  if (code == ERROR_BAD_EXE_FORMAT) throw DynamicLibraryError(Problem::WrongFormat, words);
  std::error_code error;
  if (code == ERROR_MOD_NOT_FOUND && std::filesystem::exists(file, error)) {
    const std::string missing = missingImportOf(file).value_or("a library that it needs");
    throw DynamicLibraryError(Problem::MissingLibrary, missing + ": " + errorOf(code).message(), missing);
  }
  throw DynamicLibraryError(Problem::Other, words);
}

}  // namespace

struct DynamicLibrary::State {
  Library library;
};

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file) : state_(std::make_unique<State>()) {
  const WithoutBoxes quiet;
  // Whole and with backslashes: only so does the loader look beside the file for what it needs.
  const std::filesystem::path whole = std::filesystem::absolute(file).lexically_normal().make_preferred();
  state_->library.reset(LoadLibraryExW(whole.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
  if (!state_->library) failLoading(whole, GetLastError());
}

DynamicLibrary::~DynamicLibrary() = default;

void* DynamicLibrary::find(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(state_->library.get(), name));
}

}  // namespace lvx::standin_platform

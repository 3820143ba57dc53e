#include "standin_platform/dynamic_library.h"

#include <string_view>

#include <dlfcn.h>

#include "standin_platform/c_locale_scope.h"

namespace lvx::standin_platform {

namespace {

using Problem = DynamicLibraryError::Problem;

struct LibraryCloser {
  void operator()(void* library) const noexcept { dlclose(library); }
};

[[noreturn]] void failLoading(const std::filesystem::path& file) {
  const char* const word = dlerror();
  if (word == nullptr) throw DynamicLibraryError(Problem::Other, "the system's loader gives no reason");
  const std::string words = word;
  // The loader's word for a missing companion is "LIBRARY: cannot open shared object file: …".
  if (words.find("cannot open shared object file") != std::string::npos) {
    const std::string library = words.substr(0, words.find(':'));
    if (std::filesystem::path(library).filename() != file.filename())
      throw DynamicLibraryError(Problem::MissingLibrary, words, library);
  }
  if (words.find("invalid ELF header") != std::string::npos || words.find("file too short") != std::string::npos)
    throw DynamicLibraryError(Problem::WrongFormat, words);
  throw DynamicLibraryError(Problem::Other, words);
}

}  // namespace

struct DynamicLibrary::State {
  std::unique_ptr<void, LibraryCloser> library;
};

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file) : state_(std::make_unique<State>()) {
  // The loader's words are looked into, so they are to be its own and not a translation.
  const CLocaleScope ownWords;
  // An absolute path, so that the loader doesn't search its own folders for a bare name.
  state_->library.reset(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!state_->library) failLoading(file);
}

DynamicLibrary::~DynamicLibrary() = default;

void* DynamicLibrary::find(const char* name) const { return dlsym(state_->library.get(), name); }

}  // namespace lvx::standin_platform

#include "runtime/module_loader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "standin_platform/dynamic_library.h"

namespace lvx::runtime {

using standin_platform::DynamicLibrary;
using standin_platform::DynamicLibraryError;

namespace {

using EntryPoint = std::int32_t (*)(std::uint32_t message, void* appId);
using ApiVersion = std::uint32_t (*)(std::uint32_t* value);

constexpr std::uint32_t kInitMessage = 1;
constexpr std::uint32_t kUnloadMessage = 2;
constexpr std::uint32_t kLoadDrawingMessage = 3;
constexpr std::uint32_t kUnloadDrawingMessage = 4;

[[noreturn]] void fail(const std::filesystem::path& file, const std::string& what) {
  throw ModuleError("module: " + file.string() + ": " + what);
}

std::string explained(const DynamicLibraryError& error) {
  switch (error.problem()) {
    case DynamicLibraryError::Problem::MissingLibrary:
      return "it needs '" + error.missing() + "', which isn't beside it or can't be read";
    case DynamicLibraryError::Problem::WrongFormat:
      return std::string("it is no module for this system (") + error.what() + ")";
    case DynamicLibraryError::Problem::Other:
      break;
  }
  return error.what();
}

/// The files of all modules that are loaded in this process, whichever host loaded them: the system's loader would answer
/// a second load with the first library, whose init would then run twice over the same data.
std::vector<std::filesystem::path>& loadedFiles() {
  static std::vector<std::filesystem::path> files;
  return files;
}

/// The same file under whatever name: a link, a path with dots in it.
bool isLoaded(const std::filesystem::path& file) {
  return std::any_of(loadedFiles().begin(), loadedFiles().end(), [&file](const std::filesystem::path& loaded) {
    std::error_code error;
    return loaded == std::filesystem::weakly_canonical(file, error) || std::filesystem::equivalent(loaded, file, error);
  });
}

template <class Function>
Function exported(const DynamicLibrary& library, const char* name, const std::filesystem::path& file) {
  void* symbol = library.find(name);
  if (symbol == nullptr) fail(file, std::string("it is no module: it doesn't export '") + name + "'");
  return reinterpret_cast<Function>(symbol);
}

std::string hex(std::uint32_t value) {
  std::ostringstream text;
  text << "0x" << std::hex << value;
  return text.str();
}

}  // namespace

struct LoadedModule::Guard {
  Guard() = default;
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  /// The opposite of loading: unload message, then the library, whose own objects leave with it.
  ~Guard() {
    if (initialised) {
      if (drawingLoaded) send(kUnloadDrawingMessage);
      send(kUnloadMessage);
    }
    if (initialising && forget) forget(this);
    if (library) std::erase(loadedFiles(), canonical);
  }

  /// A message on the way out. The module goes whatever it raises, and its library is detached next; the one who ends it
  /// reads about it on standard error.
  void send(std::uint32_t message) noexcept {
    try {
      entry(message, this);
    } catch (const std::exception& exception) {
      tellRaised(exception.what());
    } catch (...) {
      tellRaised("one of unknown kind");
    }
  }

  void tellRaised(const char* words) const noexcept {
    std::fprintf(stderr, "module: %s: raised an exception while it was unloaded: %s\n", file.string().c_str(), words);
  }

  std::optional<DynamicLibrary> library;
  std::filesystem::path file;
  /// The file without links and dots on its way.
  std::filesystem::path canonical;
  EntryPoint entry = nullptr;
  std::function<void(const void*)> forget;
  bool initialising = false;
  bool initialised = false;
  bool drawingLoaded = false;
};

LoadedModule LoadedModule::load(const std::filesystem::path& file, std::function<void(const void*)> forget) {
  auto guard = std::make_unique<Guard>();
  guard->file = file;
  guard->forget = std::move(forget);
  std::error_code error;
  if (!std::filesystem::exists(file, error)) fail(file, "there is no such file");
  if (!std::filesystem::is_regular_file(file, error)) fail(file, "it is no file");
  if (isLoaded(file)) fail(file, "it is loaded already");

  try {
    guard->library.emplace(file);
  } catch (const DynamicLibraryError& problem) {
    fail(file, explained(problem));
  }
  guard->canonical = std::filesystem::canonical(file);
  loadedFiles().push_back(guard->canonical);
  const auto version = exported<ApiVersion>(*guard->library, "vnrxGetApiVersion", file);
  guard->entry = exported<EntryPoint>(*guard->library, "vnrxEntryPoint", file);

  std::uint32_t built = 0;
  version(&built);
  if (built != kApiVersion)
    fail(file, "it was built for interface version " + hex(built) + ", this host offers " + hex(kApiVersion));

  std::int32_t answer = 0;
  guard->initialising = true;
  try {
    answer = guard->entry(kInitMessage, guard.get());
  } catch (const std::exception& exception) {
    fail(file, std::string("its init raised an exception: ") + exception.what());
  } catch (...) {
    fail(file, "its init raised an exception of unknown kind");
  }
  // From here on the module has to be told that it goes, even where it didn't come up well.
  guard->initialised = true;
  if (answer != 0) fail(file, "its init failed with " + std::to_string(answer));
  return LoadedModule(std::move(guard));
}

LoadedModule::LoadedModule(std::unique_ptr<Guard> guard) : guard_(std::move(guard)) {}
LoadedModule::LoadedModule(LoadedModule&&) noexcept = default;
LoadedModule& LoadedModule::operator=(LoadedModule&&) noexcept = default;
LoadedModule::~LoadedModule() = default;

const std::filesystem::path& LoadedModule::file() const { return guard_->file; }
const void* LoadedModule::appId() const { return guard_.get(); }
void LoadedModule::drawingLoaded() {
  guard_->entry(kLoadDrawingMessage, guard_.get());
  guard_->drawingLoaded = true;
}
std::int32_t LoadedModule::send(std::uint32_t message) { return guard_->entry(message, guard_.get()); }

}  // namespace lvx::runtime

#include "canvas/canvas_library.h"

#include <optional>
#include <string>
#include <system_error>

#include "standin_platform/dynamic_library.h"

namespace lvx::canvas {

namespace fs = std::filesystem;

struct CanvasLibrary::State {
  std::optional<standin_platform::DynamicLibrary> library;
  std::unique_ptr<FileMaker> maker;  ///< goes before its code does
};

namespace {

constexpr const char* kFileName = LVX_CANVAS_FILE;
/// Has a number, so that a library of another interface isn't taken.
constexpr const char* kEntry = "lvxMakeFileMaker1";

fs::path libraryFile(const fs::path& bin) {
  if (*kFileName == '\0')
    throw LibraryError(
        "this build of the program writes no PDF and SVG, as none for Windows does; that for Linux writes them");
  std::error_code error;
  const fs::path beside = bin / kFileName;
  const fs::path installed = bin.parent_path() / "lib" / "lvxhost" / kFileName;
  if (fs::exists(beside, error)) return beside;
  if (fs::exists(installed, error)) return installed;
  throw LibraryError("this installation writes no PDF and SVG: there is no '" + beside.string() +
                     "'; a whole installation has it");
}

}  // namespace

CanvasLibrary::CanvasLibrary(const fs::path& bin) : state_(std::make_unique<State>()) {
  const fs::path file = libraryFile(bin);
  try {
    state_->library.emplace(file);
  } catch (const standin_platform::DynamicLibraryError& error) {
    throw LibraryError("the library that writes PDF and SVG can't be loaded: " + std::string(error.what()));
  }
  using Entry = FileMaker* (*)();
  auto* const entry = reinterpret_cast<Entry>(state_->library->find(kEntry));
  if (entry == nullptr)
    throw LibraryError("'" + file.string() + "' is no library of this program that writes PDF and SVG");
  state_->maker.reset(entry());
  if (!state_->maker) throw LibraryError("the library that writes PDF and SVG found no memory");
}

CanvasLibrary::~CanvasLibrary() = default;

FileMaker& CanvasLibrary::maker() const { return *state_->maker; }

}  // namespace lvx::canvas

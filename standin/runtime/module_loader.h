#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace lvx::runtime {

/// A module can't be loaded. The text begins with "module: ", names the file and says what is wrong with it.
class ModuleError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A loaded module: its library is attached, its interface version is checked and its init message was answered.
/// Destroying it sends the unload message and detaches the library; what fails on the way in is unwound in the same
/// order.
///
/// StandinHost::loadModule is the usual way to one. The host must stand behind vnrxHost() for as long as the module is
/// loaded.
class LoadedModule {
 public:
  /// The interface version that this host offers.
  static constexpr std::uint32_t kApiVersion = 0x180000;

  /// Throws ModuleError for a file that is missing, no module, of another interface version, loaded already in this
  /// process, or lacks its companion; and where its init doesn't answer 0 or raises.
  /// `forget` is told the module's id once it is unloaded, and where its load failed after its init had begun.
  [[nodiscard]] static LoadedModule load(const std::filesystem::path& file,
                                         std::function<void(const void* appId)> forget = {});

  LoadedModule(LoadedModule&&) noexcept;
  LoadedModule& operator=(LoadedModule&&) noexcept;
  ~LoadedModule();

  [[nodiscard]] const std::filesystem::path& file() const;
  /// The id by which the host and the module speak of it.
  [[nodiscard]] const void* appId() const;
  /// Tells the module that a drawing is open; the opposite is sent by itself before the module is unloaded.
  void drawingLoaded();
  /// Sends any message, for tests of the module's own answers.
  std::int32_t send(std::uint32_t message);

 private:
  struct Guard;
  explicit LoadedModule(std::unique_ptr<Guard> guard);
  std::unique_ptr<Guard> guard_;
};

}  // namespace lvx::runtime

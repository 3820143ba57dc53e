#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "framework/module_state.h"
#include "host/run_time.h"

namespace lvx::host {
class Host;
}

/// What the host loads: the application object that answers its messages and registers the commands.
namespace lvx::frame {

/// One command as the host's command stack takes it.
struct CommandEntry {
  const wchar_t* groupName = nullptr;
  const wchar_t* globalName = nullptr;
  /// Null: the text resource `localNameId`.
  const wchar_t* localName = nullptr;
  std::uint32_t commandFlags = 0;
  host::CommandFunction function = nullptr;
  void* uiContext = nullptr;
  std::uint32_t localNameId = 0;
};

/// One function of the host's scripting language.
struct ScriptingEntry {
  const wchar_t* name = nullptr;
  std::int32_t (*function)() = nullptr;
  bool registerForDirectCalls = false;
};

/// One custom object class.
struct ClassEntry {
  host::VnRxClass* description = nullptr;
  void (*init)() = nullptr;
  bool registered = false;
};

/// A fixed store of entries with empty slots, which readers skip.
template <class Entry>
using Slots = std::span<Entry* const>;

/// Everything that one module brings.
struct ModuleTables {
  Slots<const CommandEntry> commands;
  Slots<const ScriptingEntry> scripting;
  Slots<ClassEntry> classes;
};

/// Answer to a host message: handled normally.
inline constexpr std::int32_t kHandled = 0;
inline constexpr std::uint32_t kLastMessage = 15;

/// Flag of a command whose texts come from the host's resources and not from the module's.
inline constexpr std::uint32_t kHostResources = 1U << 21;

/// Base of application objects: a module without editor commands.
class VnRxDmxApp {
 public:
  constexpr VnRxDmxApp(bool unlockOnLoad, bool mdiAware)
      : unlockOnLoad_(static_cast<std::uint8_t>(unlockOnLoad)), mdiAware_(static_cast<std::uint8_t>(mdiAware)) {}
  VnRxDmxApp(const VnRxDmxApp&) = delete;
  VnRxDmxApp& operator=(const VnRxDmxApp&) = delete;
  virtual ~VnRxDmxApp() = default;

  virtual std::int32_t onInitApp(void* appId);
  virtual std::int32_t onUnloadApp(void* appId);
  virtual std::int32_t onLoadDrawing(void* appId);
  virtual std::int32_t onUnloadDrawing(void* appId);
  virtual std::int32_t onInvokeFunction(void* appId);
  /// Messages 6 to 15.
  virtual std::int32_t onFurtherMessage(std::uint32_t message, void* appId);
  virtual std::int32_t onNullMessage(void* appId);
  virtual void registerServerComponents() = 0;

  /// Hands a host message to its operation; a number above kLastMessage is answered without touching anything.
  std::int32_t dispatch(std::uint32_t message, void* appId);

  /// The module's instance; null until init.
  [[nodiscard]] framework::ResourceHandle instance() const { return instance_; }

 protected:
  [[nodiscard]] bool unlocksOnLoad() const { return unlockOnLoad_ != 0; }
  [[nodiscard]] bool isMdiAware() const { return mdiAware_ != 0; }
  void setInstance(framework::ResourceHandle instance) { instance_ = instance; }

 private:
  framework::ResourceHandle instance_ = nullptr;
  std::uint8_t unlockOnLoad_;
  std::uint8_t mdiAware_;
};

/// Adds commands, scripting functions and custom classes, all from the module's tables.
class VnRxVmxApp : public VnRxDmxApp {
 public:
  using VnRxDmxApp::VnRxDmxApp;

  std::int32_t onInitApp(void* appId) override;
  std::int32_t onUnloadApp(void* appId) override;
  std::int32_t onLoadDrawing(void* appId) override;
  std::int32_t onUnloadDrawing(void* appId) override;
  std::int32_t onInvokeFunction(void* appId) override;

 protected:
  [[nodiscard]] virtual host::Host* host() const = 0;
  [[nodiscard]] virtual ModuleTables tables() const = 0;
  [[nodiscard]] virtual framework::ResourceHandle moduleInstance() const = 0;
  /// The text resource of a number, or null.
  [[nodiscard]] virtual const wchar_t* resourceText(std::uint32_t id) const = 0;

 private:
  [[nodiscard]] framework::CString localNameOf(const CommandEntry& command) const;
};

}  // namespace lvx::frame

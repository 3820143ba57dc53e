#pragma once

#include "framework/module_state.h"
#include "host/host.h"

namespace lvx::frame {

/// The library as the framework knows it: attached or not, whose resources were in force before, and its own instance.
class ModuleLibrary {
 public:
  /// Attaches: asks the framework to initialise the extension module and joins its resource chain. Where the framework
  /// refuses, the library stays loaded but unattached. Without a host it does nothing.
  ModuleLibrary(host::Host* host, framework::ResourceHandle instance);
  ModuleLibrary(const ModuleLibrary&) = delete;
  ModuleLibrary& operator=(const ModuleLibrary&) = delete;
  ~ModuleLibrary();

  [[nodiscard]] bool isAttached() const { return attached_; }
  [[nodiscard]] framework::ResourceHandle defaultResource() const { return defaultResource_; }
  /// What a command sets while it runs; null while unattached.
  [[nodiscard]] framework::ResourceHandle moduleResource() const { return moduleResource_; }
  [[nodiscard]] framework::ResourceHandle instance() const { return instance_; }
  [[nodiscard]] host::Host* host() const { return host_; }

 private:
  host::Host* host_;
  framework::ResourceHandle instance_;
  framework::CDynLinkLibrary link_;
  bool attached_ = false;
  framework::ResourceHandle defaultResource_ = nullptr;
  framework::ResourceHandle moduleResource_ = nullptr;
};

/// The frame around every command: the module's own resources are in force while `run` works, and the former ones again
/// on every way out, exceptions included.
template <class Run>
void runInCommandFrame(const ModuleLibrary& library, Run run) {
  if (library.host() == nullptr) return;
  const framework::ResourceScope resources(library.host()->moduleState(), library.moduleResource());
  run(*library.host());
}

}  // namespace lvx::frame

#pragma once

#include <algorithm>
#include <vector>

namespace lvx::framework {

/// Names a loaded file whose resources (dialog templates, pictures, texts) can be looked up; null is nobody's.
using ResourceHandle = const void*;

/// A module's link in the chain of files that the framework searches for resources.
class CDynLinkLibrary {
 public:
  explicit CDynLinkLibrary(ResourceHandle module) : module_(module) {}
  [[nodiscard]] ResourceHandle module() const { return module_; }

 private:
  ResourceHandle module_;
};

/// The framework's state of one process, shared by host and modules: which file's resources are found first, and which
/// extension modules are attached.
class ModuleState {
 public:
  ModuleState() = default;
  ModuleState(const ModuleState&) = delete;
  ModuleState& operator=(const ModuleState&) = delete;
  virtual ~ModuleState() = default;

  [[nodiscard]] ResourceHandle resourceHandle() const { return resourceHandle_; }
  void setResourceHandle(ResourceHandle handle) { resourceHandle_ = handle; }

  /// Attaches an extension module; false where the framework refuses.
  [[nodiscard]] virtual bool initExtensionModule(ResourceHandle module) {
    if (std::find(attached_.begin(), attached_.end(), module) != attached_.end()) return false;
    attached_.push_back(module);
    return true;
  }
  virtual void termExtensionModule(ResourceHandle module) { std::erase(attached_, module); }

  /// The chain refers to links that their modules own.
  void addLibrary(const CDynLinkLibrary* library) { chain_.push_back(library); }
  void removeLibrary(const CDynLinkLibrary* library) { std::erase(chain_, library); }

  [[nodiscard]] std::size_t attachedModules() const { return attached_.size(); }
  [[nodiscard]] std::size_t chainedLibraries() const { return chain_.size(); }

 private:
  ResourceHandle resourceHandle_ = nullptr;
  std::vector<ResourceHandle> attached_;
  std::vector<const CDynLinkLibrary*> chain_;
};

/// Sets a resource handle for the length of a scope and puts the former one back on every way out.
class ResourceScope {
 public:
  ResourceScope(ModuleState& state, ResourceHandle handle) : state_(state), saved_(state.resourceHandle()) {
    state_.setResourceHandle(handle);
  }
  ResourceScope(const ResourceScope&) = delete;
  ResourceScope& operator=(const ResourceScope&) = delete;
  ~ResourceScope() { state_.setResourceHandle(saved_); }

 private:
  ModuleState& state_;
  ResourceHandle saved_;
};

}  // namespace lvx::framework

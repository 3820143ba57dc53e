#include "frame/module_library.h"

namespace lvx::frame {

ModuleLibrary::ModuleLibrary(host::Host* host, framework::ResourceHandle instance)
    : host_(host), instance_(instance), link_(instance) {
  if (host_ == nullptr || !host_->moduleState().initExtensionModule(instance_)) return;
  attached_ = true;
  defaultResource_ = host_->moduleState().resourceHandle();
  moduleResource_ = instance_;
  host_->moduleState().addLibrary(&link_);
}

ModuleLibrary::~ModuleLibrary() {
  if (!attached_) return;
  host_->moduleState().removeLibrary(&link_);
  host_->moduleState().termExtensionModule(instance_);
}

}  // namespace lvx::frame

#include "runtime/host_services.h"

#include <algorithm>

namespace lvx::runtime {

using host::CString;

// ---------------------------------------------------------------- dynamic linker

bool DynamicLinker::unlockApplication(void* appId) {
  applications_[appId].unlocked = true;
  return true;
}

bool DynamicLinker::registerAppMDIAware(void* appId) {
  applications_[appId].mdiAware = true;
  return true;
}

bool DynamicLinker::isUnlocked(const void* appId) const {
  const auto found = applications_.find(appId);
  return found != applications_.end() && found->second.unlocked;
}

bool DynamicLinker::isMdiAware(const void* appId) const {
  const auto found = applications_.find(appId);
  return found != applications_.end() && found->second.mdiAware;
}

void DynamicLinker::forget(const void* appId) { applications_.erase(appId); }

// ---------------------------------------------------------------- command stack

std::int32_t CommandStack::addCommand(const CString& group, const CString& globalName, const CString& localName,
                                      std::uint32_t flags, host::CommandFunction function, void* uiContext,
                                      std::int32_t localNameNumber, const host::VnRxResourceInstance* resource) {
  const auto taken = [&](const RegisteredCommand& command) {
    return command.group == group && command.globalName == globalName;
  };
  if (std::any_of(commands_.begin(), commands_.end(), taken)) return kDuplicate;
  commands_.push_back({group, globalName, localName, flags, function, uiContext, localNameNumber,
                       resource == nullptr ? nullptr : resource->module()});
  return kAdded;
}

std::int32_t CommandStack::removeCmd(const CString& group, const CString& globalName) {
  const auto removed = std::erase_if(commands_, [&](const RegisteredCommand& command) {
    return command.group == group && command.globalName == globalName;
  });
  return removed > 0 ? kAdded : kUnknown;
}

const RegisteredCommand* CommandStack::find(const CString& name) const {
  for (const RegisteredCommand& command : commands_)
    if (command.localName == name) return &command;
  for (const RegisteredCommand& command : commands_)
    if (command.globalName == name) return &command;
  return nullptr;
}

// ---------------------------------------------------------------- registry

host::VnRxObject* SystemRegistry::at(const CString& name) {
  if (name == L"DynamicLinker") return &linker_;
  if (name == L"VANTOR_REGISTERED_COMMANDS") return &commands_;
  return nullptr;
}

// ---------------------------------------------------------------- documents

std::int32_t DocumentManager::lockDocument(host::VnApDocument* document, std::int32_t, const wchar_t*, const wchar_t*,
                                           bool) {
  if (document == nullptr || document != document_.get()) return kNotOurs;
  ++locks_;
  return kDone;
}

std::int32_t DocumentManager::unlockDocument(host::VnApDocument* document) {
  if (document == nullptr || document != document_.get()) return kNotOurs;
  if (locks_ == 0) return kNotLocked;
  --locks_;
  return kDone;
}

void DocumentManager::addReactor(host::VnApDocManagerReactor* reactor) {
  if (reactor != nullptr && std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end())
    reactors_.push_back(reactor);
}

void DocumentManager::removeReactor(host::VnApDocManagerReactor* reactor) { std::erase(reactors_, reactor); }

void DocumentManager::open() {
  close();
  document_ = std::make_unique<Document>();
}

void DocumentManager::close() {
  if (!document_) return;
  // A reactor may take itself off the list while it is told.
  const auto told = reactors_;
  for (host::VnApDocManagerReactor* reactor : told)
    if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end())
      reactor->documentToBeDestroyed(document_.get());
  document_.reset();
  locks_ = 0;
}

}  // namespace lvx::runtime

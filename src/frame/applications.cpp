#include "frame/applications.h"

#include "host/host.h"

namespace lvx::frame {

namespace {

/// Characters that a local name from a text resource may have, with its closing zero.
constexpr std::size_t kLocalNameSize = 132;
constexpr std::int32_t kNoLocalNameNumber = -1;

/// A service of the host by its name and class; null where the host hasn't got it or it is of another class.
template <class Service>
Service* findService(host::Host& host, const wchar_t* name) {
  host::VnRxObject* object = host.runTime().vnrxSysRegistry().at(name);
  if (object == nullptr || !object->isA()->isDerivedFrom(Service::desc())) return nullptr;
  return static_cast<Service*>(object);
}

host::VnEdCommandStack* findCommandStack(host::Host& host) {
  return findService<host::VnEdCommandStack>(host, L"VANTOR_REGISTERED_COMMANDS");
}

template <class Entry, class Use>
void eachFilledSlot(Slots<Entry> slots, Use use) {
  for (Entry* entry : slots)
    if (entry != nullptr) use(*entry);
}

/// Removes a class that was made, after those of the module that derive from it: no class outlives its parent.
void removeClass(host::Host& host, Slots<ClassEntry> classes, ClassEntry& entry) {
  if (!entry.registered) return;
  entry.registered = false;
  eachFilledSlot(classes, [&](ClassEntry& derived) {
    const host::VnRxClass* parent = derived.description->myParent();
    if (parent != nullptr && parent->isDerivedFrom(entry.description)) removeClass(host, classes, derived);
  });
  host.runTime().deleteVnRxClass(entry.description);
}

}  // namespace

std::int32_t VnRxDmxApp::onInitApp(void*) { return kHandled; }
std::int32_t VnRxDmxApp::onUnloadApp(void*) { return kHandled; }
std::int32_t VnRxDmxApp::onLoadDrawing(void*) { return kHandled; }
std::int32_t VnRxDmxApp::onUnloadDrawing(void*) { return kHandled; }
std::int32_t VnRxDmxApp::onInvokeFunction(void*) { return kHandled; }
std::int32_t VnRxDmxApp::onFurtherMessage(std::uint32_t, void*) { return kHandled; }
std::int32_t VnRxDmxApp::onNullMessage(void*) { return kHandled; }

std::int32_t VnRxDmxApp::dispatch(std::uint32_t message, void* appId) {
  if (message > kLastMessage) return kHandled;
  switch (message) {
    case 0:
      return onNullMessage(appId);
    case 1:
      return onInitApp(appId);
    case 2:
      return onUnloadApp(appId);
    case 3:
      return onLoadDrawing(appId);
    case 4:
      return onUnloadDrawing(appId);
    case 5:
      return onInvokeFunction(appId);
    default:
      return onFurtherMessage(message, appId);
  }
}

std::int32_t VnRxVmxApp::onInitApp(void* appId) {
  setInstance(moduleInstance());
  host::Host* loader = host();
  if (loader == nullptr) return kHandled;

  if (unlocksOnLoad())
    if (auto* linker = findService<host::VnRxDynamicLinker>(*loader, L"DynamicLinker"))
      linker->unlockApplication(appId);
  if (isMdiAware())
    if (auto* linker = findService<host::VnRxDynamicLinker>(*loader, L"DynamicLinker"))
      linker->registerAppMDIAware(appId);
  registerServerComponents();

  bool anyClass = false;
  eachFilledSlot(tables().classes, [&anyClass](ClassEntry& entry) {
    entry.init();
    entry.registered = true;
    anyClass = true;
  });
  if (anyClass) loader->runTime().vnrxBuildClassHierarchy();

  eachFilledSlot(tables().commands, [this, loader](const CommandEntry& command) {
    const framework::CString localName = localNameOf(command);
    const host::VnRxResourceInstance resource((command.commandFlags & kHostResources) != 0 ? nullptr : instance());
    if (host::VnEdCommandStack* stack = findCommandStack(*loader))
      stack->addCommand(command.groupName, command.globalName, localName, command.commandFlags, command.function,
                        command.uiContext, kNoLocalNameNumber, &resource);
  });
  return kHandled;
}

std::int32_t VnRxVmxApp::onUnloadApp(void*) {
  host::Host* loader = host();
  if (loader == nullptr) return kHandled;
  const Slots<ClassEntry> classes = tables().classes;
  eachFilledSlot(classes, [&](ClassEntry& entry) { removeClass(*loader, classes, entry); });
  eachFilledSlot(tables().commands, [loader](const CommandEntry& command) {
    if (host::VnEdCommandStack* stack = findCommandStack(*loader))
      stack->removeCmd(command.groupName, command.globalName);
  });
  return kHandled;
}

std::int32_t VnRxVmxApp::onLoadDrawing(void*) {
  host::Host* loader = host();
  if (loader == nullptr) return kHandled;
  std::int16_t index = 0;
  eachFilledSlot(tables().scripting, [loader, &index](const ScriptingEntry& entry) {
    loader->runTime().vnedDefun(entry.name, index);
    if (entry.registerForDirectCalls) loader->runTime().vnedRegFunc(entry.function, index);
    ++index;
  });
  return kHandled;
}

std::int32_t VnRxVmxApp::onUnloadDrawing(void*) {
  host::Host* loader = host();
  if (loader == nullptr) return kHandled;
  std::int16_t index = 0;
  eachFilledSlot(tables().scripting, [loader, &index](const ScriptingEntry& entry) {
    loader->runTime().vnedUndef(entry.name, index);
    ++index;
  });
  return kHandled;
}

std::int32_t VnRxVmxApp::onInvokeFunction(void*) {
  host::Host* loader = host();
  bool any = false;
  eachFilledSlot(tables().scripting, [&any](const ScriptingEntry&) { any = true; });
  if (loader == nullptr || !any) return kHandled;
  const std::int32_t wanted = loader->runTime().vnedGetFunCode();
  std::int32_t index = 0;
  std::int32_t result = kHandled;
  eachFilledSlot(tables().scripting, [&](const ScriptingEntry& entry) {
    if (index++ == wanted) result = entry.function();
  });
  return result;
}

framework::CString VnRxVmxApp::localNameOf(const CommandEntry& command) const {
  if (command.localName != nullptr) return command.localName;
  const wchar_t* text = resourceText(command.localNameId);
  return text == nullptr ? framework::CString() : framework::CString(text).substr(0, kLocalNameSize - 1);
}

}  // namespace lvx::frame

// A module whose only command raises an exception of a class, with words, that lie in the module's own library.
#include <cstdint>
#include <exception>

#include "host/host.h"
#include "host/run_time.h"

#define LVX_MODULE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

class OwnException final : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "words that lie in the module"; }
};

class OwnThing final {};

lvx::host::VnEdCommandStack* commandStack() {
  return static_cast<lvx::host::VnEdCommandStack*>(
      vnrxHost()->runTime().vnrxSysRegistry().at(L"VANTOR_REGISTERED_COMMANDS"));
}

void raiseException() { throw OwnException(); }
void raiseThing() { throw OwnThing(); }

}  // namespace

LVX_MODULE_EXPORT std::int32_t vnrxEntryPoint(std::uint32_t message, void*) {
  auto* const commands = commandStack();
  constexpr std::uint32_t kInit = 1;
  constexpr std::uint32_t kUnload = 2;
  if (message == kInit) {
    commands->addCommand(L"raising", L"Exception", L"Exception", 1, &raiseException, nullptr, -1, nullptr);
    commands->addCommand(L"raising", L"Thing", L"Thing", 1, &raiseThing, nullptr, -1, nullptr);
  }
  if (message == kUnload) {
    commands->removeCmd(L"raising", L"Exception");
    commands->removeCmd(L"raising", L"Thing");
  }
  return 0;
}

LVX_MODULE_EXPORT std::uint32_t vnrxGetApiVersion(std::uint32_t* value) { return *value = 0x180000; }

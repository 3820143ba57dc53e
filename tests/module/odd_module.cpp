// A module that is odd in one way, chosen when it is built, for tests of the loader.
#include <cstdint>
#include <stdexcept>

#define LVX_MODULE_EXPORT extern "C" __attribute__((visibility("default")))

#ifndef LVX_ODD_VERSION
#define LVX_ODD_VERSION 0x180000
#endif
#ifndef LVX_ODD_INIT
#define LVX_ODD_INIT return 0
#endif

#ifndef LVX_ODD_WITHOUT_ENTRY
namespace {
std::int32_t answerInit() { LVX_ODD_INIT; }
}  // namespace

LVX_MODULE_EXPORT std::int32_t vnrxEntryPoint(std::uint32_t message, void*) { return message == 1 ? answerInit() : 0; }
#endif

LVX_MODULE_EXPORT std::uint32_t vnrxGetApiVersion(std::uint32_t* value) {
  *value = LVX_ODD_VERSION;
  return LVX_ODD_VERSION;
}

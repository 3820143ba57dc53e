#include "host/run_time.h"

#include <array>
#include <cstdint>

namespace lvx::host {

namespace {
constexpr VnRxClass kObjectClass{L"VnRxObject", nullptr};
constexpr VnRxClass kDynamicLinkerClass{L"VnRxDynamicLinker", &kObjectClass};
constexpr VnRxClass kCommandStackClass{L"VnEdCommandStack", &kObjectClass};
constexpr VnRxClass kDocManagerReactorClass{L"VnApDocManagerReactor", &kObjectClass};
}  // namespace

const VnRxClass* VnRxDynamicLinker::desc() { return &kDynamicLinkerClass; }
const VnRxClass* VnEdCommandStack::desc() { return &kCommandStackClass; }
const VnRxClass* VnApDocManagerReactor::isA() const { return &kDocManagerReactorClass; }

bool VnDbHandle::getIntoAsciiBuffer(wchar_t* buffer, std::size_t bufferSize) const {
  std::array<wchar_t, 16> digits{};
  std::size_t count = 0;
  std::uint64_t rest = value_;
  do {
    digits[count++] = L"0123456789ABCDEF"[rest % 16];
    rest /= 16;
  } while (rest != 0);
  if (bufferSize == 0) return false;
  buffer[0] = L'\0';
  if (count >= bufferSize) return false;
  for (std::size_t i = 0; i < count; ++i) buffer[i] = digits[count - 1 - i];
  buffer[count] = L'\0';
  return true;
}

}  // namespace lvx::host

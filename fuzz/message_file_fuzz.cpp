// Any bytes as a message file: the catalogue reads them, and what it holds keeps its own rules.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

#include "services/message_catalogue.h"
#include "support/fake_host.h"
#include "support/message_file.h"

namespace {

using lvx::services::CString;
using lvx::services::CxMsg;

/// A file in memory that has a path, so that the reader opens it as any other.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("messages", 0)) {
    if (descriptor_ < 0) std::abort();
  }
  void fill(const std::uint8_t* data, std::size_t size) const {
    if (ftruncate(descriptor_, 0) != 0) std::abort();
    if (size > 0 && pwrite(descriptor_, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
  }
  [[nodiscard]] CString path() const { return L"/proc/self/fd/" + std::to_wstring(descriptor_); }

 private:
  int descriptor_;
};

/// The escapes by their rule: the first of the list that occurs anywhere, then all over again.
CString replaceByRescanning(CString text) {
  static constexpr std::array<std::pair<const wchar_t*, wchar_t>, 11> kList{{{L"\\a", L'\a'},
                                                                             {L"\\b", L'\b'},
                                                                             {L"\\f", L'\f'},
                                                                             {L"\\n", L'\n'},
                                                                             {L"\\r", L'\r'},
                                                                             {L"\\t", L'\t'},
                                                                             {L"\\v", L'\v'},
                                                                             {L"\\'", L'\''},
                                                                             {L"\\\"", L'"'},
                                                                             {L"\\\\", L'\\'},
                                                                             {L"\\?", L'?'}}};
  for (std::size_t i = 0; i < kList.size();) {
    const std::size_t place = text.find(kList[i].first);
    if (place == CString::npos) {
      ++i;
      continue;
    }
    text.replace(place, 2, 1, kList[i].second);
    i = 0;
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MemoryFile file;
  static lvx::test::FakeHost host;
  file.fill(data, size);
  host.run().files[L"messages"] = file.path();
  host.run().searchedFiles.clear();

  const CxMsg messages(host, L"messages");
  if (messages.fileName() != L"messages" || !host.run().console.empty()) std::abort();
  for (const CxMsg::msgstr* message : messages.messages()) {
    if (message->id == 0 || message->text.find(L"\\\\") != CString::npos) std::abort();
    if (message->text.size() > 2044) std::abort();
    // The earliest entry of a number answers for it.
    for (const CxMsg::msgstr* earlier : messages.messages()) {
      if (earlier->id != message->id) continue;
      if (messages.lookup(message->id) != earlier->text) std::abort();
      break;
    }
  }
  if (size <= 200) {
    const CString text = host.platform().widenAnsi({reinterpret_cast<const char*>(data), size});
    if (lvx::services::replaceEscapes(text) != replaceByRescanning(text)) std::abort();
  }
  static_cast<void>(lvx::test::messageFileComplaints({reinterpret_cast<const char*>(data), size}));
  return 0;
}

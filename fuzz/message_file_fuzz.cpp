// Any bytes as a message file: the catalogue reads them, and what it holds keeps its own rules.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "doubles/fake_host.h"
#include "doubles/message_file.h"
#include "doubles/rescanned_escapes.h"
#include "services/message_catalogue.h"

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
    if (lvx::services::replaceEscapes(text) != lvx::test::replaceEscapesByRescanning(text)) std::abort();
  }
  static_cast<void>(lvx::test::messageFileComplaints({reinterpret_cast<const char*>(data), size}));
  return 0;
}

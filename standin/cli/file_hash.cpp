#include "cli/file_hash.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include <nettle/sha2.h>

#include "standin_platform/input_file.h"

namespace lvx::cli {

namespace {

class Sha256 {
 public:
  Sha256() { sha256_init(&state_); }
  void add(const char* bytes, std::size_t size) {
    sha256_update(&state_, size, reinterpret_cast<const std::uint8_t*>(bytes));
  }
  [[nodiscard]] std::string digits() {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> bytes{};
    sha256_digest(&state_, bytes.size(), bytes.data());
    std::string text;
    for (const std::uint8_t byte : bytes) text.append(1, kDigits[byte / 16U]).append(1, kDigits[byte % 16U]);
    return text;
  }

 private:
  sha256_ctx state_{};
};

}  // namespace

FileHash hashOf(const std::filesystem::path& path) {
  constexpr std::size_t kPart = 1U << 18U;
  standin_platform::InputFile file(path);
  std::vector<char> part(kPart);
  FileHash result;
  Sha256 hash;
  while (const std::size_t size = file.read(part.data(), part.size())) {
    hash.add(part.data(), size);
    result.bytes += size;
  }
  result.digits = hash.digits();
  return result;
}

FileHash hashOfText(std::string_view text) {
  Sha256 hash;
  hash.add(text.data(), text.size());
  return {text.size(), hash.digits()};
}

}  // namespace lvx::cli

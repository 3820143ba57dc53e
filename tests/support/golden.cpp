#include "support/golden.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "support/places.h"

namespace lvx::test {

namespace {

constexpr std::size_t kContext = 60;

std::string escaped(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') {
      text += "\\r";
    } else if (c == '\n') {
      text += "\\n";
    } else if (byte < 0x20 || byte > 0x7E) {
      std::array<char, 8> code{};
      std::snprintf(code.data(), code.size(), "\\x%02X", byte);
      text += code.data();
    } else {
      text += c;
    }
  }
  return text;
}

std::string around(const std::string& bytes, std::size_t place) {
  const std::size_t from = place > kContext ? place - kContext : 0;
  const std::string_view whole = bytes;
  return escaped(whole.substr(from, place - from)) + ">>>" + escaped(whole.substr(place, kContext)) +
         (place >= bytes.size() ? "<end>" : "");
}

}  // namespace

std::string readBytes(const std::string& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  if (!file) {
    ADD_FAILURE() << "no such file: " << path;
    return {};
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected) {
  if (actual == expected) return testing::AssertionSuccess();
  const auto place = static_cast<std::size_t>(
      std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end()).first - actual.begin());
  const auto line = 1 + std::count(actual.begin(), actual.begin() + static_cast<std::ptrdiff_t>(place), '\n');
  return testing::AssertionFailure() << "first difference at byte " << place << ", line " << line << " ("
                                     << actual.size() << " bytes, expected " << expected.size()
                                     << ")\n  actual:   " << around(actual, place)
                                     << "\n  expected: " << around(expected, place);
}

testing::AssertionResult matchesGolden(const std::string& actual, const std::string& name) {
  const std::string path = goldenFolder() + "/" + name;
  const char* update = std::getenv("LVX_UPDATE_GOLDEN");
  if (update != nullptr && std::string_view(update) == "1") {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream file(path, std::ios::binary);
    file << actual;
    if (!file.flush()) return testing::AssertionFailure() << "can't write " << path;
    return testing::AssertionSuccess();
  }
  if (!std::filesystem::exists(path)) return testing::AssertionFailure() << "no golden file " << path;
  return sameBytes(actual, readBytes(path)) << "\n  golden:   " << path;
}

std::string goldenFolder() { return test::inSource("/tests/golden"); }

}  // namespace lvx::test

#include "standin_platform/text_converter.h"

#include <array>
#include <cerrno>
#include <cstdint>

#include <iconv.h>

namespace lvx::standin_platform {

struct TextConverter::State {
  iconv_t converter;
};

TextConverter::TextConverter(const std::string& encoding, const std::string& to)
    : state_(std::make_unique<State>(State{iconv_open(to.c_str(), encoding.c_str())})) {}

TextConverter::~TextConverter() {
  if (isKnown()) iconv_close(state_->converter);
}

bool TextConverter::isKnown() const { return reinterpret_cast<std::intptr_t>(state_->converter) != -1; }

TextConverter::End TextConverter::convert(std::string_view from, std::string& to, std::size_t& done) {
  iconv(state_->converter, nullptr, nullptr, nullptr, nullptr);
  char* in = const_cast<char*>(from.data());  // iconv doesn't write to it
  std::size_t inLeft = from.size();
  std::array<char, 65536> block{};
  End end = End::Complete;
  while (inLeft > 0 && end == End::Complete) {
    char* out = block.data();
    std::size_t outLeft = block.size();
    const std::size_t result = iconv(state_->converter, &in, &inLeft, &out, &outLeft);
    const int error = result == static_cast<std::size_t>(-1) ? errno : 0;
    to.append(block.data(), block.size() - outLeft);
    if (error != 0 && error != E2BIG) end = error == EINVAL ? End::Incomplete : End::Invalid;
  }
  // What leads an encoding of several modes back to its first one.
  char* out = block.data();
  std::size_t outLeft = block.size();
  iconv(state_->converter, nullptr, nullptr, &out, &outLeft);
  to.append(block.data(), block.size() - outLeft);
  done = from.size() - inLeft;
  return end;
}

}  // namespace lvx::standin_platform

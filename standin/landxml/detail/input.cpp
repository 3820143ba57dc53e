#include "landxml/detail/input.h"

#include <cstring>
#include <utility>

namespace lvx::landxml::detail {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
/// A tag longer than this is no tag of a drawing.
constexpr std::size_t kLongestTag = std::size_t{64} << 20;

}  // namespace

Input::Input(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options)
    : file_(file), options_(options) {
  source_ = decode(std::move(bytes), file);
  buffer_.resize(kBlock + 1);
  const std::size_t head = source_.head.size();
  base_ = source_.headStart;
  std::memcpy(buffer_.data(), source_.head.data(), head);
  at = counted_ = buffer_.data();
  end = buffer_.data() + head;
  *mutableEnd() = '\0';
  accept(end - head, head);
}

bool Input::more() {
  countTo(at);
  const auto keep = static_cast<std::size_t>(end - at);
  const auto dropped = static_cast<std::uint64_t>(at - buffer_.data());
  if (keep > kLongestTag) fail("a tag is longer than " + std::to_string(kLongestTag >> 20U) + " MB", file_, line());
  if (keep + kBlock + 1 > buffer_.size()) {
    std::vector<char> larger(2 * keep + kBlock + 1);
    std::memcpy(larger.data(), at, keep);
    buffer_.swap(larger);
  } else {
    std::memmove(buffer_.data(), at, keep);
  }
  base_ += dropped;
  at = counted_ = buffer_.data();
  end = at + keep;
  const std::size_t count = source_.bytes->read(mutableEnd(), kBlock);
  const char* const fresh = end;
  end += count;
  *mutableEnd() = '\0';
  accept(fresh, count);
  return count > 0;
}

void Input::accept(const char* fresh, std::size_t count) {
  if (const void* const nul = std::memchr(fresh, 0, count)) {
    fail("a byte 0 stands in the file: this isn't an XML text", file_, lineAt(static_cast<const char*>(nul)));
  }
  done_ += count;
  if (options_.progress && count > 0 && (done_ - told_ >= 4 * kBlock || told_ == 0)) {
    told_ = done_;
    const std::uint64_t total = std::max(source_.bytes->totalBytes(), done_);
    if (!options_.progress({done_, total})) throw Cancelled(file_);
  }
}

}  // namespace lvx::landxml::detail

#include "landxml/detail/input.h"

#include <cstring>
#include <limits>
#include <utility>

namespace lvx::landxml::detail {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
/// What is read aside at a time: work enough for several threads.
constexpr std::size_t kAhead = 4 * kBlock;
/// Room in front of it for the rest of the window before.
constexpr std::size_t kRest = std::size_t{1} << 16;
/// A tag longer than this is no tag of a drawing.
constexpr std::size_t kLongestTag = std::size_t{64} << 20;

}  // namespace

std::size_t lineEnds(std::string_view text) {
  // Counts of one byte each, as many of them at a time as the processor adds up at once.
  constexpr std::size_t kStretch = std::numeric_limits<std::uint8_t>::max();
  const char* at = text.data();
  const char* const end = at + text.size();
  std::size_t count = 0;
  for (; static_cast<std::size_t>(end - at) >= kStretch; at += kStretch) {
    std::uint8_t here = 0;
    for (std::size_t i = 0; i < kStretch; ++i) here = static_cast<std::uint8_t>(here + (at[i] == '\n' ? 1 : 0));
    count += here;
  }
  return count + static_cast<std::size_t>(std::count(at, end, '\n'));
}

void Input::Buffer::make(std::size_t count) {
  bytes = std::make_unique_for_overwrite<char[]>(count);
  size = count;
}

Input::Input(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options)
    : file_(file), options_(options) {
  source_ = decode(std::move(bytes), file);
  buffer_.make(kBlock + 1);
  const std::size_t head = source_.head.size();
  base_ = source_.headStart;
  std::memcpy(buffer_.bytes.get(), source_.head.data(), head);
  at = end = begin_ = counted_ = buffer_.bytes.get();
  accept(head);
  if (hasNul_) (void)more();
}

std::uint64_t Input::bytesLeft() const {
  const std::uint64_t total = source_.bytes->totalBytes();
  const std::uint64_t here = offsetOf(at);
  return total > here ? total - here : static_cast<std::uint64_t>(end - at);
}

void Input::readAhead() {
  if (isAhead_ || hasNul_) return;
  isAhead_ = true;
  aheadCount_ = 0;
  try {
    if (ahead_.size < kRest + kAhead + 1) ahead_.make(kRest + kAhead + 1);
    while (aheadCount_ < kAhead) {
      const std::size_t count =
          source_.bytes->read(ahead_.bytes.get() + kRest + aheadCount_, std::min(kBlock, kAhead - aheadCount_));
      if (count == 0) break;
      aheadCount_ += count;
    }
  } catch (...) {
    aheadFailure_ = std::current_exception();
  }
}

/// Puts the next bytes behind the window and gives their number.
std::size_t Input::take() {
  const auto keep = static_cast<std::size_t>(end - at);
  const auto moveTo = [&](char* to) {
    if (keep > 0) std::memmove(to, at, keep);
    at = begin_ = counted_ = to;
    end = to + keep;
  };
  if (isAhead_ && (aheadCount_ > 0 || !aheadFailure_)) {
    const std::size_t count = aheadCount_;
    isAhead_ = aheadFailure_ != nullptr;  // which comes when the bytes before it are through
    aheadCount_ = 0;
    if (keep > kRest) {
      Buffer larger;
      larger.make(keep + count + kBlock + 1);
      std::memcpy(larger.bytes.get() + keep, ahead_.bytes.get() + kRest, count);
      moveTo(larger.bytes.get());
      std::swap(buffer_, larger);
    } else {
      moveTo(ahead_.bytes.get() + kRest - keep);
      std::swap(buffer_, ahead_);
    }
    return count;
  }
  if (aheadFailure_) {
    isAhead_ = false;
    std::rethrow_exception(std::exchange(aheadFailure_, nullptr));
  }
  if (keep + kBlock + 1 > buffer_.size) {
    Buffer larger;
    larger.make(2 * keep + kBlock + 1);
    moveTo(larger.bytes.get());
    std::swap(buffer_, larger);
  } else {
    moveTo(buffer_.bytes.get());
  }
  return source_.bytes->read(mutableEnd(), kBlock);
}

bool Input::more() {
  if (hasNul_) fail("a byte 0 stands in the file: this isn't an XML text", file_, lineAt(end));
  countTo(at);
  const auto keep = static_cast<std::size_t>(end - at);
  if (keep > kLongestTag) fail("a tag is longer than " + std::to_string(kLongestTag >> 20U) + " MB", file_, line());
  const std::uint64_t offset = offsetOf(at);
  ++moves_;
  const std::size_t count = take();
  base_ = offset;
  accept(count);
  return count > 0;
}

/// So many bytes stand behind the window.
void Input::accept(std::size_t count) {
  const void* const nul = count > 0 ? std::memchr(end, 0, count) : nullptr;
  hasNul_ = nul != nullptr;
  end = hasNul_ ? static_cast<const char*>(nul) : end + count;
  *mutableEnd() = '\0';
  done_ += count;
  if (options_.progress && count > 0 && (done_ - told_ >= 4 * kBlock || told_ == 0)) {
    told_ = done_;
    const std::uint64_t total = std::max(source_.bytes->totalBytes(), done_);
    if (!options_.progress({done_, total})) throw Cancelled(file_);
  }
}

}  // namespace lvx::landxml::detail

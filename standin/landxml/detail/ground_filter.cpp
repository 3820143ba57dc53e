#include "landxml/detail/ground_filter.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "landxml/detail/tokenizer.h"

namespace lvx::landxml::detail {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

class GroundFilter : public ByteSource {
 public:
  explicit GroundFilter(std::unique_ptr<ByteSource> whole) : whole_(std::move(whole)) {}

  std::size_t read(char* to, std::size_t size) override {
    while (sent_ == ready_ && !isAtEnd_) fill();
    const std::size_t count = std::min(size, ready_ - sent_);
    text_.copy(to, count, sent_);
    sent_ += count;
    return count;
  }
  /// Of the whole, though fewer come: nobody knows how many.
  [[nodiscard]] std::uint64_t totalBytes() const override { return whole_->totalBytes(); }

 private:
  void fill();
  /// How much of the text from `at` on is through: up to the end of a piece of markup, or to where it waits for more.
  /// False: for more.
  bool passMarkup(std::size_t& at);
  bool passUntil(std::size_t& at, std::string_view mark) {
    const std::size_t found = text_.find(mark, at);
    if (found == std::string::npos) return false;
    at = found + mark.size();
    return true;
  }

  std::unique_ptr<ByteSource> whole_;
  /// Sent bytes, bytes that may be sent, bytes that wait for what follows them.
  std::string text_;
  std::size_t sent_ = 0;
  std::size_t ready_ = 0;
  /// Such as "</Pnts" while what stands before it is left out; empty else.
  std::string until_;
  bool isAtEnd_ = false;
};

bool isGround(std::string_view name) {
  const std::string_view local = localName(name);
  return local == "Pnts" || local == "Faces" || local == "SourceData" || local == "Watersheds";
}

/// Behind the '>' of the tag at `at`, past quoted values; npos where it isn't there yet.
std::size_t tagEnd(std::string_view text, std::size_t at) {
  char quote = '\0';
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      return at + 1;
    }
  }
  return std::string_view::npos;
}

bool GroundFilter::passMarkup(std::size_t& at) {
  const std::string_view rest = std::string_view(text_).substr(at);
  constexpr std::size_t kLongestMark = 9;  // of "<![CDATA["
  if (rest.size() < kLongestMark && !isAtEnd_) return false;
  if (rest.starts_with("<!--")) return passUntil(at, "-->");
  if (rest.starts_with("<![CDATA[")) return passUntil(at, "]]>");
  if (rest.starts_with("<?")) return passUntil(at, "?>");
  const std::size_t end = tagEnd(text_, at);
  if (end == std::string::npos) return false;
  const std::string_view name = rest.substr(1, rest.find_first_of(" \t\r\n/>", 1) - 1);
  if (isGround(name) && text_[end - 2] != '/') until_ = "</" + std::string(name);
  at = end;
  return true;
}

void GroundFilter::fill() {
  text_.erase(0, sent_);
  ready_ -= sent_;
  sent_ = 0;
  const std::size_t old = text_.size();
  text_.resize(old + kBlock);
  const std::size_t count = whole_->read(text_.data() + old, kBlock);
  text_.resize(old + count);
  isAtEnd_ = count == 0;
  for (std::size_t at = ready_; at < text_.size();) {
    if (!until_.empty()) {
      const std::size_t found = text_.find(until_, at);
      // The last bytes may begin the mark.
      const std::size_t kept = std::min(text_.size() - at, until_.size() - 1);
      const std::size_t end = found != std::string::npos ? found : text_.size() - kept;
      text_.erase(at, end - at);
      ready_ = at;
      if (found == std::string::npos) break;
      until_.clear();
    }
    const std::size_t markup = std::min(text_.find('<', at), text_.size());
    at = markup;
    ready_ = markup;
    if (at == text_.size() || !passMarkup(at)) break;
    ready_ = at;
  }
  if (isAtEnd_) ready_ = text_.size();
}

}  // namespace

std::unique_ptr<ByteSource> withoutGround(std::unique_ptr<ByteSource> whole) {
  return std::make_unique<GroundFilter>(std::move(whole));
}

}  // namespace lvx::landxml::detail

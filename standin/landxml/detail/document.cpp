#include "landxml/detail/document.h"

#include <algorithm>
#include <array>
#include <functional>
#include <new>

#include "landxml/detail/entities.h"
#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

namespace {

/// Places of values are remembered in so many slots.
constexpr std::size_t kSlots = std::size_t{1} << 14;
constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
/// A shorter value needs no more room than a reference to it, a longer one doesn't come again.
constexpr std::size_t kShortestShared = 4;
constexpr std::size_t kLongestShared = 256;
/// Text of an element is gathered up to so many bytes.
constexpr std::size_t kLongestPiece = std::size_t{1} << 16;
/// More blanks than this in a row say nothing that so many don't, and aren't kept: a file may hold a gigabyte of them.
constexpr std::size_t kLongestBlanks = 4096;
/// A mark for lines after so many bytes.
constexpr std::size_t kLineMarkDistance = 4096;
/// Bytes of a container's length.
constexpr std::size_t kLengthBytes = 5;

/// What numbers are written with, at half a byte each.
constexpr std::string_view kPackable = "0123456789.- \n\t+";

constexpr std::array<std::uint8_t, 256> kPackCodes = [] {
  std::array<std::uint8_t, 256> codes{};
  for (auto& code : codes) code = 0xFF;
  for (std::size_t i = 0; i < kPackable.size(); ++i)
    codes[static_cast<unsigned char>(kPackable[i])] = static_cast<std::uint8_t>(i);
  return codes;
}();

std::uint8_t packCode(char c) { return kPackCodes[static_cast<unsigned char>(c)]; }

bool isPackable(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return packCode(c) != 0xFF; });
}

}  // namespace

// ---------------------------------------------------------------- bytes

void GrowingBytes::grow(std::size_t count) {
  const std::size_t capacity = std::max(size_ + count, capacity_ + capacity_ / 2 + 4096);
  char* const grown = static_cast<char*>(std::realloc(bytes_.get(), capacity));
  if (grown == nullptr) throw std::bad_alloc();
  (void)bytes_.release();
  bytes_.reset(grown);
  capacity_ = capacity;
}

void GrowingBytes::append(std::string_view bytes) {
  if (capacity_ - size_ < bytes.size()) grow(bytes.size());
  bytes.copy(bytes_.get() + size_, bytes.size());
  size_ += bytes.size();
}

// ---------------------------------------------------------------- writing

Document::Document() : seenAt_(kSlots, kNowhere) {}

std::size_t Document::nameNumber(std::string_view name) {
  scratch_.assign(name);
  const auto [found, isNew] = nameNumbers_.emplace(scratch_, names_.size());
  if (isNew) {
    const auto colon = name.find(':');
    names_.push_back({scratch_, colon == std::string_view::npos ? 0 : colon + 1});
  }
  return found->second;
}

void Document::putNumber(std::size_t value) {
  for (; value >= 0x80U; value >>= 7U) bytes_.push(static_cast<char>((value & 0x7FU) | 0x80U));
  bytes_.push(static_cast<char>(value));
}

std::size_t Document::open(std::string_view name, std::size_t line) {
  writeContainer();
  writeText();
  pending_.isOpen = true;
  pending_.name = nameNumber(name);
  pending_.line = line;
  pending_.count = 0;
  if (keepsParents_) parents_.emplace_back(bytes_.size(), open_.empty() ? kNowhere : open_.back());
  return bytes_.size();
}

bool Document::takeEntity(std::string_view piece, std::size_t& at, std::string& to) {
  std::size_t length = 0;
  const std::string bytes = entityText(piece.substr(at + 1, 12), length);
  if (bytes.empty()) {
    if (!badEntity_) {
      const auto end = std::min(piece.find_first_of("; \n<\"'", at + 1), piece.size());
      badEntity_ = {shown(piece.substr(at, std::min(end - at + 1, std::size_t{20}))), at};
    }
    return false;
  }
  to += bytes;
  at += length;
  return true;
}

void Document::attribute(std::string_view name, std::string_view value) {
  if (pending_.count == pending_.attributes.size()) pending_.attributes.emplace_back();
  auto& [number, text] = pending_.attributes[pending_.count++];
  number = nameNumber(name);
  text.clear();
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    if (c == '&') {
      if (!takeEntity(value, i, text)) text += c;
    } else if (c == '\n' || c == '\t' || c == '\r') {
      text += ' ';
      if (c == '\r' && i + 1 < value.size() && value[i + 1] == '\n') ++i;
    } else {
      text += c;
    }
  }
}

void Document::addText(std::string_view piece, bool hasEntities) {
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const char c = piece[i];
    const bool isSecondOfLineEnd = c == '\n' && endsWithReturn_;
    endsWithReturn_ = c == '\r';
    if (isSecondOfLineEnd) continue;
    if (c == '&' && hasEntities) {
      textCounts_ = true;
      blanks_ = 0;
      if (!takeEntity(piece, i, text_)) text_ += c;
      continue;
    }
    if (isBlank(c)) {
      if (++blanks_ > kLongestBlanks) continue;
    } else {
      blanks_ = 0;
      textCounts_ = true;
    }
    text_ += c == '\r' ? '\n' : c;
  }
  if (text_.size() > kLongestPiece && textCounts_) {
    writeContainer();
    const bool endsWithReturn = endsWithReturn_;
    writeText();
    // What follows belongs to the same text.
    textCounts_ = true;
    endsWithReturn_ = endsWithReturn;
  }
}

void Document::close() {
  if (pending_.isOpen) {
    writeElement(textCounts_ ? Kind::LeafWithText : Kind::Leaf);
    if (textCounts_) putTextBytes(text_);
  } else {
    writeText();
    const std::size_t start = open_.back();
    open_.pop_back();
    std::size_t at = start;
    (void)numberAt(at);
    (void)numberAt(at);
    std::size_t length = bytes_.size() - start;
    for (std::size_t i = 0; i < kLengthBytes; ++i, length >>= 8U)
      bytes_.data()[at + i] = static_cast<char>(length & 0xFFU);
  }
  text_.clear();
  textCounts_ = false;
  endsWithReturn_ = false;
  blanks_ = 0;
}

void Document::writeElement(Kind kind) {
  const std::size_t place = bytes_.size();
  if (lineMarks_.empty() || place - lineMarks_.back().first >= kLineMarkDistance)
    lineMarks_.emplace_back(place, pending_.line);
  putNumber(pending_.name * 4 + static_cast<std::size_t>(kind));
  putNumber(pending_.line - lastLine_);
  lastLine_ = pending_.line;
  if (kind == Kind::Container) bytes_.append(std::string_view("\0\0\0\0\0", kLengthBytes));
  writeAttributes();
  pending_.isOpen = false;
}

void Document::writeContainer() {
  if (!pending_.isOpen) return;
  open_.push_back(bytes_.size());
  writeElement(Kind::Container);
}

void Document::writeAttributes() {
  putNumber(pending_.count);
  for (std::size_t i = 0; i < pending_.count; ++i) {
    const auto& [name, value] = pending_.attributes[i];
    if (value.size() >= kShortestShared && value.size() <= kLongestShared) {
      std::size_t& seen = seenAt_[std::hash<std::string_view>()(value) % kSlots];
      if (seen != kNowhere) {
        std::size_t at = seen;
        const std::size_t length = numberAt(at);
        if (std::string_view(bytes_.data() + at, length) == value) {
          putNumber(name * 2 + 1);
          putNumber(bytes_.size() - seen);
          continue;
        }
      }
      putNumber(name * 2);
      seen = bytes_.size();
    } else {
      putNumber(name * 2);
    }
    putNumber(value.size());
    bytes_.append(value);
    bytes_.push('\0');
  }
}

void Document::writeText() {
  if (textCounts_ && !text_.empty()) {
    putNumber(static_cast<std::size_t>(Kind::Text));
    putTextBytes(text_);
  }
  text_.clear();
  textCounts_ = false;
  endsWithReturn_ = false;
  blanks_ = 0;
}

void Document::putTextBytes(std::string_view text) {
  const bool packs = isPackable(text);
  putNumber(text.size() * 2 + (packs ? 1 : 0));
  if (!packs) {
    bytes_.append(text);
    return;
  }
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const unsigned high = i + 1 < text.size() ? packCode(text[i + 1]) : 0U;
    bytes_.push(static_cast<char>(packCode(text[i]) | (high << 4U)));
  }
}

// ---------------------------------------------------------------- reading

Document::Head Document::headAt(std::size_t at) const {
  Head head;
  const std::size_t start = at;
  const std::size_t first = numberAt(at);
  head.kind = static_cast<Kind>(first & 3U);
  head.name = first >> 2U;
  if (head.kind != Kind::Text) head.lines = numberAt(at);
  if (head.kind == Kind::Container) {
    std::size_t length = 0;
    for (std::size_t i = kLengthBytes; i-- > 0;)
      length = (length << 8U) | static_cast<unsigned char>(bytes_.data()[at + i]);
    at += kLengthBytes;
    head.end = start + length;
  }
  head.attributes = at;
  return head;
}

std::size_t Document::skipAttributes(std::size_t at) const {
  for (std::size_t count = numberAt(at); count > 0; --count) {
    const bool isReference = (numberAt(at) & 1U) != 0;
    const std::size_t number = numberAt(at);
    if (!isReference) at += number + 1;
  }
  return at;
}

Document::TextPlace Document::textPlaceAt(std::size_t at) const {
  TextPlace place;
  const std::size_t number = numberAt(at);
  place.isPacked = (number & 1U) != 0;
  place.length = number / 2;
  place.bytes = at;
  return place;
}

std::size_t Document::endOf(std::size_t, const Head& head) const {
  if (head.kind == Kind::Container) return head.end;
  const std::size_t at = head.kind == Kind::Text ? head.attributes : skipAttributes(head.attributes);
  if (head.kind == Kind::Leaf) return at;
  const TextPlace text = textPlaceAt(at);
  return text.bytes + (text.isPacked ? (text.length + 1) / 2 : text.length);
}

void Document::appendText(const TextPlace& place, std::string& to) const {
  const char* const from = bytes_.data() + place.bytes;
  if (!place.isPacked) {
    to.append(from, place.length);
    return;
  }
  const std::size_t old = to.size();
  to.resize(old + place.length);
  for (std::size_t i = 0; i < place.length; ++i) {
    const auto byte = static_cast<unsigned char>(from[i / 2]);
    to[old + i] = kPackable[i % 2 == 0 ? byte & 0xFU : byte >> 4U];
  }
}

std::size_t Document::lineAt(std::size_t place) const {
  auto mark = std::upper_bound(lineMarks_.begin(), lineMarks_.end(), place,
                               [](std::size_t p, const auto& m) { return p < m.first; });
  if (mark == lineMarks_.begin() || place >= bytes_.size()) return 0;
  --mark;
  std::size_t line = mark->second;
  std::size_t at = mark->first;
  while (at < place) {
    const Head head = headAt(at);
    at = head.kind == Kind::Container ? skipAttributes(head.attributes) : endOf(at, head);
    if (at > place) return 0;
    const Head next = headAt(at);
    line += next.lines;
  }
  return line;
}

const std::string& Node::name() const {
  static const std::string kNone;
  return document_ == nullptr ? kNone : document_->names_[document_->headAt(at_).name].full;
}

std::string_view Node::localName() const {
  if (document_ == nullptr) return {};
  const Document::Name& name = document_->names_[document_->headAt(at_).name];
  return std::string_view(name.full).substr(name.local);
}

Attribute Node::attribute(std::string_view name) const {
  if (document_ == nullptr) return {};
  const Document& document = *document_;
  std::size_t at = document.headAt(at_).attributes;
  for (std::size_t count = document.numberAt(at); count > 0; --count) {
    const std::size_t first = document.numberAt(at);
    const std::size_t numberStart = at;
    const std::size_t number = document.numberAt(at);
    const bool isReference = (first & 1U) != 0;
    if (document.names_[first >> 1U].full == name) {
      std::size_t value = at;
      if (isReference) {
        value = numberStart - number;
        (void)document.numberAt(value);
      }
      return Attribute(document.bytes_.data() + value);
    }
    if (!isReference) at += number + 1;
  }
  return {};
}

std::string Node::text() const {
  std::string result;
  eachTextPlace([&](const Document::TextPlace& place) { document_->appendText(place, result); });
  return result;
}

void Node::eachText(const std::function<void(std::string_view)>& use) const {
  std::string piece;
  eachTextPlace([&](const Document::TextPlace& place) {
    piece.clear();
    document_->appendText(place, piece);
    use(piece);
  });
}

template <class Use>
void Node::eachTextPlace(Use use) const {
  if (document_ == nullptr) return;
  const Document& document = *document_;
  const Document::Head head = document.headAt(at_);
  if (head.kind == Document::Kind::Leaf) return;
  std::size_t at = document.skipAttributes(head.attributes);
  if (head.kind == Document::Kind::LeafWithText) {
    use(document.textPlaceAt(at));
    return;
  }
  while (at < head.end) {
    const Document::Head inner = document.headAt(at);
    if (inner.kind == Document::Kind::Text) use(document.textPlaceAt(inner.attributes));
    at = document.endOf(at, inner);
  }
}

Node::Children Node::children() const {
  if (document_ == nullptr) return {nullptr, 0, 0};
  const Document::Head head = document_->headAt(at_);
  if (head.kind != Document::Kind::Container) return {document_, 0, 0};
  return {document_, document_->skipAttributes(head.attributes), head.end};
}

Node Node::parent() const {
  if (document_ == nullptr) return {};
  const auto& parents = document_->parents_;
  const auto found = std::lower_bound(parents.begin(), parents.end(), at_,
                                      [](const auto& row, std::size_t place) { return row.first < place; });
  if (found == parents.end() || found->first != at_ || found->second == kNowhere) return {};
  return {document_, found->second};
}

}  // namespace lvx::landxml::detail

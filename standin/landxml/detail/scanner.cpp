#include "landxml/detail/scanner.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

void LineMap::finish(std::string_view document) {
  for (auto at = document.find('\n'); at != std::string_view::npos; at = document.find('\n', at + 1)) {
    newlines_.push_back(at);
  }
}

std::size_t LineMap::lineAt(std::size_t offset) const {
  auto after = std::upper_bound(anchors_.begin(), anchors_.end(), offset,
                                [](std::size_t o, const auto& anchor) { return o < anchor.first; });
  std::size_t line = 1;
  std::size_t from = 0;
  if (after != anchors_.begin()) {
    --after;
    from = after->first;
    line = after->second;
  }
  const auto first = std::lower_bound(newlines_.begin(), newlines_.end(), from);
  const auto last = std::lower_bound(first, newlines_.end(), offset);
  return line + static_cast<std::size_t>(last - first);
}

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
/// A tag longer than this is no tag of a drawing.
constexpr std::size_t kLongestTag = std::size_t{64} << 20;
/// Text of one P or F beyond this is no point.
constexpr std::size_t kLongestPoint = std::size_t{1} << 16;
constexpr std::size_t kDeepest = 200;
/// Elements and attributes outside the streamed parts; each costs some 60 bytes in the tree.
constexpr std::size_t kMostNodes = 30'000'000;

std::string_view localName(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

/// The file as a window of bytes that moves forward; a NUL stands behind its end.
class Input {
 public:
  Input(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options)
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

  /// Reads more behind the window, dropping what lies before `at`; `at` and `end` move. False at the end of the file.
  bool more() {
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

  /// Line of the file at `place`, which must lie in the window at or after any place asked for before.
  std::size_t lineAt(const char* place) {
    countTo(place);
    return line_;
  }
  std::size_t line() { return lineAt(at); }
  /// Offset in the file (in the converted text, where there is one) of a place in the window.
  [[nodiscard]] std::uint64_t offsetOf(const char* place) const {
    return base_ + static_cast<std::uint64_t>(place - buffer_.data());
  }
  [[nodiscard]] const DecodedSource& source() const { return source_; }

  [[nodiscard]] const std::array<std::string, 128>* upperHalf() const { return source_.upperHalf.get(); }
  [[nodiscard]] const std::string& encodingWarning() const { return source_.warning; }
  [[nodiscard]] const std::string& file() const { return file_; }

  const char* at = nullptr;
  const char* end = nullptr;

 private:
  [[nodiscard]] char* mutableEnd() { return buffer_.data() + (end - buffer_.data()); }

  void countTo(const char* place) {
    if (place <= counted_) return;
    line_ += static_cast<std::size_t>(std::count(counted_, place, '\n'));
    counted_ = place;
  }

  void accept(const char* fresh, std::size_t count) {
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

  std::string file_;
  const ReadOptions& options_;
  DecodedSource source_;
  std::vector<char> buffer_;
  std::uint64_t base_ = 0;  // offset of buffer_'s begin
  const char* counted_ = nullptr;
  std::size_t line_ = 1;
  std::uint64_t done_ = 0;
  std::uint64_t told_ = 0;
};

struct Token {
  enum class Kind { End, Text, RawText, Start, Close } kind = Kind::End;
  /// The tag with its angle brackets, or a piece of text; RawText comes from a CDATA section. Valid until the next
  /// call.
  std::string_view raw;
  std::string_view name;
  bool selfClosing = false;
};

/// Well-formed markup as tokens. Comments and processing instructions are passed over; `dropped` says that some were.
class Tokenizer {
 public:
  explicit Tokenizer(Input& in) : in_(in) {}

  bool dropped = false;
  Token next();

 private:
  [[noreturn]] void failCut(const std::string& inside) {
    fail("the file ends inside " + inside, in_.file(), in_.lineAt(in_.end));
  }
  /// Makes `count` bytes stand in the window, if the file has them.
  bool reach(std::size_t count) {
    while (static_cast<std::size_t>(in_.end - in_.at) < count) {
      if (!in_.more()) return false;
    }
    return true;
  }
  void skipPast(std::string_view mark, const char* what);
  Token markup();
  Token rawText();
  std::size_t findTagEnd();

  Input& in_;
  bool inRawText_ = false;
};

void Tokenizer::skipPast(std::string_view mark, const char* what) {
  for (;;) {
    const std::string_view window(in_.at, static_cast<std::size_t>(in_.end - in_.at));
    const auto found = window.find(mark);
    if (found != std::string_view::npos) {
      in_.at += found + mark.size();
      return;
    }
    if (window.size() >= mark.size()) in_.at = in_.end - (mark.size() - 1);
    if (!in_.more()) failCut(what);
  }
}

/// Offset of the '>' that ends the tag at in_.at.
std::size_t Tokenizer::findTagEnd() {
  char quote = '\0';
  for (std::size_t i = 1;; ++i) {
    if (in_.at + i == in_.end) {
      if (!in_.more()) failCut("a tag");
      if (in_.at + i == in_.end) failCut("a tag");
    }
    const char c = in_.at[i];
    if (quote != '\0') {
      if (c == quote)
        quote = '\0';
      else if (c == '<')
        fail("'<' stands in an attribute", in_.file(), in_.lineAt(in_.at + i));
    } else if (c == '>') {
      return i;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '<') {
      fail("'<' stands inside a tag", in_.file(), in_.lineAt(in_.at + i));
    }
  }
}

Token Tokenizer::rawText() {
  constexpr std::string_view kMark = "]]>";
  const std::string_view window(in_.at, static_cast<std::size_t>(in_.end - in_.at));
  const auto found = window.find(kMark);
  if (found != std::string_view::npos) {
    inRawText_ = false;
    in_.at += found + kMark.size();
    return {Token::Kind::RawText, window.substr(0, found), {}, false};
  }
  // Keep the last bytes: they may begin the mark, or be part of a character.
  if (window.size() > 8) {
    std::size_t count = window.size() - 3;
    while (count > 1 && (static_cast<unsigned char>(window[count]) & 0xC0U) == 0x80U && window.size() - count < 8)
      --count;
    in_.at += count;
    return {Token::Kind::RawText, window.substr(0, count), {}, false};
  }
  if (!in_.more()) failCut("a CDATA section");
  return rawText();
}

Token Tokenizer::markup() {
  if (!reach(2)) failCut("a tag");
  if (in_.at[1] == '?') {
    dropped = true;
    skipPast("?>", "a processing instruction");
    return next();
  }
  if (in_.at[1] == '!') {
    reach(9);
    const std::string_view window(in_.at, static_cast<std::size_t>(in_.end - in_.at));
    if (window.starts_with("<!--")) {
      dropped = true;
      in_.at += 4;
      skipPast("-->", "a comment");
      return next();
    }
    if (window.starts_with("<![CDATA[")) {
      dropped = true;
      in_.at += 9;
      inRawText_ = true;
      return rawText();
    }
    if (window.starts_with("<!DOCTYPE")) {
      fail("the file has a document type (DOCTYPE); drawings have none, and it isn't read", in_.file(), in_.line());
    }
    fail("'<!' begins neither a comment nor a CDATA section", in_.file(), in_.line());
  }
  const std::size_t last = findTagEnd();
  Token token;
  token.raw = {in_.at, last + 1};
  const bool close = token.raw[1] == '/';
  std::string_view inner = token.raw.substr(close ? 2 : 1, token.raw.size() - (close ? 3 : 2));
  token.kind = close ? Token::Kind::Close : Token::Kind::Start;
  if (!close && !inner.empty() && inner.back() == '/') {
    token.selfClosing = true;
    inner.remove_suffix(1);
  }
  token.name = inner.substr(0, std::min(inner.find_first_of(" \t\r\n/"), inner.size()));
  const auto first = token.name.empty() ? '\0' : token.name.front();
  if (!((first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z') || first == '_' || first == ':' ||
        static_cast<unsigned char>(first) >= 0x80U)) {
    fail("'" + shown(token.raw) + "' isn't a tag", in_.file(), in_.line());
  }
  if (close && !trimmed(inner.substr(token.name.size())).empty()) {
    fail("'" + shown(token.raw) + "' isn't an end tag", in_.file(), in_.line());
  }
  in_.at += last + 1;
  return token;
}

Token Tokenizer::next() {
  if (inRawText_) return rawText();
  if (in_.at == in_.end && !in_.more()) return {};
  if (*in_.at == '<') return markup();
  constexpr std::size_t kTail = 14;
  const auto textEnd = [&] {
    return static_cast<const char*>(std::memchr(in_.at, '<', static_cast<std::size_t>(in_.end - in_.at)));
  };
  const char* found = textEnd();
  bool isLast = false;
  while (found == nullptr && !isLast && static_cast<std::size_t>(in_.end - in_.at) <= kTail) {
    isLast = !in_.more();
    found = textEnd();
  }
  std::size_t count = static_cast<std::size_t>((found ? found : in_.end) - in_.at);
  if (found == nullptr && !isLast) {
    // The window cuts the text: leave a character or an entity that may be cut to the next piece.
    std::size_t cut = count - 3;
    while (count - cut < 8 && (static_cast<unsigned char>(in_.at[cut]) & 0xC0U) == 0x80U) --cut;
    const std::string_view tail(in_.at + count - kTail, cut + kTail - count);
    const auto entity = tail.rfind('&');
    if (entity != std::string_view::npos && tail.find(';', entity) == std::string_view::npos) {
      cut = count - kTail + entity;
    }
    count = cut;
  }
  const Token token{Token::Kind::Text, {in_.at, count}, {}, false};
  in_.at += count;
  return count > 0 ? token : next();
}

/// Attributes of a start tag, in order; throws ReadError for anything that isn't name="value".
template <class Use>
void eachAttribute(const Token& token, const std::string& file, std::size_t line, Use use) {
  std::string_view rest = token.raw.substr(1 + token.name.size());
  rest.remove_suffix(token.selfClosing ? 2 : 1);
  for (;;) {
    const std::string_view before = rest;
    rest = trimmed(rest);
    if (rest.empty()) return;
    const auto equals = rest.find('=');
    const std::string_view name = trimmed(rest.substr(0, std::min(equals, rest.size())));
    if (equals == std::string_view::npos || name.empty() ||
        name.find_first_of(" \t\r\n\"'") != std::string_view::npos || !isBlank(before.front())) {
      fail("'" + shown(token.raw) + "': an attribute is not of the form name=\"value\"", file, line);
    }
    rest = trimmed(rest.substr(equals + 1));
    const char quote = rest.empty() ? '\0' : rest.front();
    const auto close = quote == '"' || quote == '\'' ? rest.find(quote, 1) : std::string_view::npos;
    if (close == std::string_view::npos)
      fail("'" + shown(token.raw) + "': an attribute's value has no quotes", file, line);
    use(name, rest.substr(1, close - 1));
    rest = rest.substr(close + 1);
  }
}

/// Bytes of an entity's character, or empty for one that isn't defined. `text` stands behind the '&'.
std::string entityText(std::string_view text, std::size_t& length) {
  const auto semicolon = text.substr(0, 12).find(';');
  if (semicolon == std::string_view::npos) return {};
  const std::string_view name = text.substr(0, semicolon);
  length = semicolon + 1;
  if (name == "amp") return "&";
  if (name == "lt") return "<";
  if (name == "gt") return ">";
  if (name == "quot") return "\"";
  if (name == "apos") return "'";
  if (name.size() < 2 || name[0] != '#') return {};
  const bool hex = name[1] == 'x';
  std::uint32_t code = 0;
  const char* const last = name.data() + name.size();
  const auto [next, error] = std::from_chars(name.data() + (hex ? 2 : 1), last, code, hex ? 16 : 10);
  if (error != std::errc() || next != last || code == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
    return {};
  std::string bytes;
  if (code < 0x80) {
    bytes += static_cast<char>(code);
  } else if (code < 0x800) {
    bytes += static_cast<char>(0xC0U | (code >> 6U));
    bytes += static_cast<char>(0x80U | (code & 0x3FU));
  } else {
    if (code < 0x10000) {
      bytes += static_cast<char>(0xE0U | (code >> 12U));
    } else {
      bytes += static_cast<char>(0xF0U | (code >> 18U));
      bytes += static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
    }
    bytes += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    bytes += static_cast<char>(0x80U | (code & 0x3FU));
  }
  return bytes;
}

/// Length of the UTF-8 character at the start of `text`, 0 where none stands.
std::size_t utf8Length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
  }
  // Overlong forms, surrogates and what lies beyond Unicode.
  if ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) >= 0xA0) || (first == 0xF0 && byte(1) < 0x90) ||
      (first == 0xF4 && byte(1) >= 0x90)) {
    return 0;
  }
  return length;
}

class Scanner {
 public:
  Scanner(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options, ScanMode mode)
      : in_(std::move(bytes), file, options), tokens_(in_), file_(file), locates_(mode == ScanMode::Locate) {}

  ScannedDocument run();

 private:
  enum class Role : std::uint8_t { Other, Surface, Definition };
  struct Open {
    std::size_t nameStart = 0;  // in names_
    Role role = Role::Other;
    std::size_t span = 0;  // in result_.spans, counted from 1; 0 for none
  };

  void start(const Token& token);
  void close(const Token& token);
  void text(const Token& token);
  void checkRoot(const Token& token);
  void append(std::string_view piece);
  void appendEscaped(std::string_view piece);
  void checkEntities();
  void anchor() { result_.lines.anchor(result_.document.size(), in_.line()); }
  [[nodiscard]] bool isMuted() const { return muteDepth_ > 0 && open_.size() >= muteDepth_; }
  [[nodiscard]] std::string_view openName() const { return std::string_view(names_).substr(open_.back().nameStart); }
  void push(std::string_view name, Role role);
  void pop();

  // Streaming.
  enum class Step { Done, NeedMore, Odd };
  void stream(const std::string& name, bool points);
  Step fastPoint(const char*& at);
  Step fastFace(const char*& at);
  Step fastClose(const char*& at) const;
  void slowElement(const Token& token, bool points);
  void takePoint(std::string_view id, std::string_view pointRef, std::string_view text, std::size_t line);
  void takeFace(bool invisible, std::string_view text, std::size_t line);
  void readChildText(std::string_view name, std::string& text);
  void skipElement(const Token& token);

  Input in_;
  Tokenizer tokens_;
  std::string file_;
  ScannedDocument result_;
  std::string names_;
  std::vector<Open> open_;
  bool rootSeen_ = false;
  std::size_t muteDepth_ = 0;  // names at this depth and deeper aren't kept; 0: all are
  std::size_t nodes_ = 0;
  std::map<std::string, std::size_t> unread_;  // collections that were passed over, with the first one's line
  std::size_t badBytes_ = 0;
  std::size_t firstBadLine_ = 0;
  TinCollector* tin_ = nullptr;
  std::string childName_;  // "P" or "F" with the prefix in use
  bool locates_ = false;
};

void Scanner::push(std::string_view name, Role role) {
  if (open_.size() >= kDeepest) {
    fail("elements are nested deeper than " + std::to_string(kDeepest) + " levels", file_, in_.line());
  }
  open_.push_back({names_.size(), role, 0});
  names_ += name;
}

void Scanner::pop() {
  names_.resize(open_.back().nameStart);
  open_.pop_back();
}

/// Into the document, as UTF-8. A piece never ends within a character.
void Scanner::append(std::string_view piece) {
  std::string& document = result_.document;
  while (!piece.empty()) {
    std::size_t plain = 0;
    while (plain < piece.size() && static_cast<unsigned char>(piece[plain]) < 0x80U) ++plain;
    document += piece.substr(0, plain);
    piece.remove_prefix(plain);
    if (piece.empty()) return;
    const auto byte = static_cast<unsigned char>(piece.front());
    if (in_.upperHalf() != nullptr) {
      document += (*in_.upperHalf())[byte - 0x80U];
      piece.remove_prefix(1);
    } else if (const std::size_t length = utf8Length(piece); length > 0) {
      document += piece.substr(0, length);
      piece.remove_prefix(length);
    } else {
      if (badBytes_++ == 0) firstBadLine_ = in_.line();
      document += windows1252()[byte - 0x80U];
      piece.remove_prefix(1);
    }
  }
}

void Scanner::appendEscaped(std::string_view piece) {
  std::size_t from = 0;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const char c = piece[i];
    if (c != '&' && c != '<' && c != '>') continue;
    append(piece.substr(from, i - from));
    result_.document += c == '&' ? "&amp;" : c == '<' ? "&lt;" : "&gt;";
    from = i + 1;
  }
  append(piece.substr(from));
}

void Scanner::checkRoot(const Token& token) {
  const std::size_t line = in_.lineAt(token.raw.data());
  if (localName(token.name) != "LandXML") {
    fail("not a LandXML file: its root is <" + shown(token.name) + ">", file_, line);
  }
  const auto colon = token.name.find(':');
  const std::string declaration =
      colon == std::string_view::npos ? "xmlns" : "xmlns:" + std::string(token.name.substr(0, colon));
  eachAttribute(token, file_, line, [&](std::string_view name, std::string_view value) {
    if (name != declaration || value.empty()) return;
    std::string lower(value);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (lower.find("landxml") == std::string::npos && lower.find("inframodel") == std::string::npos) {
      fail("not a LandXML file: its namespace is '" + shown(value) + "'", file_, line);
    }
  });
}

void Scanner::start(const Token& token) {
  if (open_.empty()) {
    if (rootSeen_) fail("a second root element <" + shown(token.name) + ">", file_, in_.lineAt(token.raw.data()));
    rootSeen_ = true;
    checkRoot(token);
  }
  const std::string_view local = localName(token.name);
  if (isMuted()) {
    if (!token.selfClosing) push(token.name, Role::Other);
    return;
  }
  const std::size_t line = in_.lineAt(token.raw.data());
  ++nodes_;
  eachAttribute(token, file_, line, [&](std::string_view, std::string_view) { ++nodes_; });
  if (nodes_ > kMostNodes) fail("more than 30 million elements and attributes besides points and faces", file_, line);

  const Role parent = open_.empty() ? Role::Other : open_.back().role;
  Role role = Role::Other;
  if (local == "Surface")
    role = Role::Surface;
  else if (local == "Definition" && parent == Role::Surface)
    role = Role::Definition;
  if (locates_) {
    const std::uint64_t from = in_.offsetOf(token.raw.data());
    const std::uint64_t to = from + token.raw.size();
    result_.spans.push_back({result_.document.size() + 1, from, to, 0, to});
  }
  if (role == Role::Definition && !token.selfClosing && !locates_) {
    tin_ = &result_.definitions[result_.document.size() + 1];
  }
  append(token.raw);
  if (token.selfClosing) return;
  if (parent == Role::Definition && !locates_ && (local == "Pnts" || local == "Faces")) {
    const std::string name(token.name);
    stream(name, local == "Pnts");
    append("</" + name + ">");
    anchor();
    return;
  }
  push(token.name, role);
  if (locates_) open_.back().span = result_.spans.size();
  // Bulk that no object of the drawing comes from.
  const bool unreadOfSurface = parent == Role::Surface && (local == "SourceData" || local == "Watersheds");
  const bool unreadOfRoot =
      open_.size() == 2 && (local == "Parcels" || local == "PipeNetworks" || local == "Survey" ||
                            local == "PlanFeatures" || local == "GradeModel" || local == "Monuments");
  if (unreadOfSurface || unreadOfRoot || (locates_ && role == Role::Definition)) {
    if (unreadOfRoot) unread_.emplace(local, line);
    muteDepth_ = open_.size();
  }
}

void Scanner::close(const Token& token) {
  if (open_.empty() || openName() != token.name) {
    fail("</" + shown(token.name) + "> stands where " +
             (open_.empty() ? "nothing is open" : "</" + shown(openName()) + "> is due"),
         file_, in_.lineAt(token.raw.data()));
  }
  const bool unmute = muteDepth_ > 0 && open_.size() == muteDepth_;
  if (unmute) muteDepth_ = 0;
  if (!isMuted()) append(token.raw);
  if (unmute) anchor();
  if (const std::size_t span = open_.back().span; span > 0) {
    result_.spans[span - 1].closeStart = in_.offsetOf(token.raw.data());
    result_.spans[span - 1].end = result_.spans[span - 1].closeStart + token.raw.size();
  }
  pop();
}

void Scanner::text(const Token& token) {
  if (open_.empty()) {
    if (!trimmed(token.raw).empty() || token.kind == Token::Kind::RawText) {
      fail(rootSeen_ ? "text stands behind the end of the root element"
                     : "not an XML file: it begins with '" + shown(trimmed(token.raw)) + "'",
           file_, in_.lineAt(trimmed(token.raw).data()));
    }
    tokens_.dropped = true;
    return;
  }
  if (isMuted()) return;
  if (token.kind == Token::Kind::RawText)
    appendEscaped(token.raw);
  else
    append(token.raw);
}

ScannedDocument Scanner::run() {
  if (!in_.encodingWarning().empty()) {
    result_.diagnostics.push_back({civil::Severity::Warning, in_.encodingWarning(), 1});
  }
  for (;;) {
    const Token token = tokens_.next();
    if (tokens_.dropped) {
      tokens_.dropped = false;
      // The line at the token itself, not behind it.
      result_.lines.anchor(result_.document.size(),
                           token.kind == Token::Kind::End ? in_.line() : in_.lineAt(token.raw.data()));
    }
    switch (token.kind) {
      case Token::Kind::Start:
        start(token);
        continue;
      case Token::Kind::Close:
        close(token);
        continue;
      case Token::Kind::Text:
      case Token::Kind::RawText:
        text(token);
        continue;
      case Token::Kind::End:
        break;
    }
    break;
  }
  if (!open_.empty()) fail("the file ends inside <" + shown(openName()) + ">", file_, in_.line());
  if (!rootSeen_) fail("the file holds no XML: it is empty or has no element", file_);
  result_.lines.finish(result_.document);
  result_.upperHalf = in_.source().upperHalf;
  result_.isConverted = in_.source().converted != nullptr;
  checkEntities();
  if (badBytes_ > 0) {
    result_.diagnostics.push_back({civil::Severity::Warning,
                                   std::to_string(badBytes_) + " bytes aren't UTF-8; read as Windows-1252",
                                   firstBadLine_});
  }
  for (const auto& [name, line] : unread_) {
    result_.diagnostics.push_back({civil::Severity::Note, "'" + name + "' isn't read", line});
  }
  return std::move(result_);
}

void Scanner::checkEntities() {
  const std::string_view document = result_.document;
  for (auto at = document.find('&'); at != std::string_view::npos; at = document.find('&', at + 1)) {
    std::size_t length = 0;
    if (entityText(document.substr(at + 1, 12), length).empty()) {
      const auto end = document.find_first_of("; \n<\"'", at + 1);
      fail("'" + shown(document.substr(at, std::min(end - at + 1, std::size_t{20}))) + "' isn't an entity of XML",
           file_, result_.lines.lineAt(at));
    }
  }
}

// ---------------------------------------------------------------- points and faces

namespace {

constexpr bool isNameEnd(char c) { return isBlank(c) || c == '>' || c == '/'; }

inline const char* skipBlanks(const char* at) {
  while (isBlank(*at)) ++at;
  return at;
}

/// A non-negative integer of at most 18 digits; null where none stands.
inline const char* readId(const char* at, std::int64_t& id) {
  const char* const first = at;
  std::int64_t value = 0;
  while (*at >= '0' && *at <= '9') {
    if (at - first == 18) return nullptr;
    value = value * 10 + (*at - '0');
    ++at;
  }
  id = value;
  return at == first ? nullptr : at;
}

}  // namespace

/// `</P>` at `at`; moves behind it.
Scanner::Step Scanner::fastClose(const char*& at) const {
  const char* p = at;
  if (*p != '<') return *p == '\0' ? Step::NeedMore : Step::Odd;
  const std::size_t size = childName_.size();
  if (static_cast<std::size_t>(in_.end - p) < size + 3) return Step::NeedMore;
  if (p[1] != '/') return Step::Odd;
  for (std::size_t i = 0; i < size; ++i) {
    if (p[2 + i] != childName_[i]) return Step::Odd;
  }
  if (p[2 + size] != '>') return Step::Odd;
  at = p + size + 3;
  return Step::Done;
}

/// `<P id="7">north east elevation</P>` in its plain form; other forms are left to slowElement. The NUL behind the
/// window ends every loop.
Scanner::Step Scanner::fastPoint(const char*& at) {
  const char* p = at + 1 + childName_.size();
  std::int64_t id = -1;
  for (;;) {
    const char* const before = p;
    p = skipBlanks(p);
    if (*p == '>') break;
    if (p == before) return *p == '\0' ? Step::NeedMore : Step::Odd;
    if (p[0] == 'i' && p[1] == 'd' && p[2] == '=' && (p[3] == '"' || p[3] == '\'')) {
      const char quote = p[3];
      if (id >= 0) return Step::Odd;
      p = readId(p + 4, id);
      if (p == nullptr) return Step::Odd;  // or the window ends here: slowElement copes with both
      if (*p != quote) return *p == '\0' ? Step::NeedMore : Step::Odd;
      ++p;
      continue;
    }
    return Step::Odd;
  }
  if (id < 0) return Step::Odd;
  ++p;
  double north = 0.0;
  double east = 0.0;
  double elevation = 0.0;
  for (double* const value : {&north, &east, &elevation}) {
    p = skipBlanks(p);
    const char* const next = readNumber(p, in_.end, *value);
    if (next == nullptr) return *p == '\0' ? Step::NeedMore : Step::Odd;
    p = next;
    if (*p == '\0') return Step::NeedMore;
    if (!isBlank(*p) && *p != '<') return Step::Odd;
  }
  p = skipBlanks(p);
  const Step closed = fastClose(p);
  if (closed != Step::Done) return closed;
  tin_->addPoint(id, north, east, elevation);
  at = p;
  return Step::Done;
}

/// `<F>1 2 3</F>` with any plain attributes.
Scanner::Step Scanner::fastFace(const char*& at) {
  const char* p = at + 1 + childName_.size();
  RawFace face;
  for (;;) {
    const char* const before = p;
    p = skipBlanks(p);
    if (*p == '>') break;
    if (p == before) return *p == '\0' ? Step::NeedMore : Step::Odd;
    const char* const name = p;
    while (*p >= 'a' && *p <= 'z') ++p;
    if (*p != '=') return *p == '\0' ? Step::NeedMore : Step::Odd;
    const bool isFlag = p - name == 1 && *name == 'i';
    const char quote = *++p;
    if (quote != '"' && quote != '\'') return quote == '\0' ? Step::NeedMore : Step::Odd;
    const char* const value = ++p;
    while (*p != quote) {
      if (*p == '\0') return Step::NeedMore;
      if (*p == '<' || *p == '&') return Step::Odd;
      ++p;
    }
    if (isFlag && p - value == 1)
      face.invisible = *value == '1';
    else if (isFlag)
      return Step::Odd;
    ++p;
  }
  ++p;
  for (;;) {
    p = skipBlanks(p);
    if (*p == '<') break;
    if (face.count == 4) return *p == '\0' ? Step::NeedMore : Step::Odd;
    if (*p == '-') ++p;
    const char* const next = readId(p, face.ids[face.count]);
    if (next == nullptr) return *p == '\0' ? Step::NeedMore : Step::Odd;
    ++face.count;
    p = next;
    if (!isBlank(*p) && *p != '<') return *p == '\0' ? Step::NeedMore : Step::Odd;
  }
  if (face.count < 3) return Step::Odd;
  const char* const text = p;
  const Step closed = fastClose(p);
  if (closed != Step::Done) return closed;
  if (!tin_->addFace(face)) tin_->defer(face, in_.lineAt(text));
  at = p;
  return Step::Done;
}

void Scanner::stream(const std::string& name, bool points) {
  const auto colon = name.find(':');
  childName_ = (colon == std::string::npos ? std::string() : name.substr(0, colon + 1)) + (points ? "P" : "F");
  const std::size_t size = childName_.size();
  for (;;) {
    // The plain forms, as many as the window holds.
    const char* p = in_.at;
    Step step = Step::Done;
    while (step == Step::Done) {
      p = skipBlanks(p);
      in_.at = p;
      if (static_cast<std::size_t>(in_.end - p) < size + 2) {
        step = Step::NeedMore;
      } else if (*p != '<' || std::memcmp(p + 1, childName_.data(), size) != 0 || !isNameEnd(p[1 + size])) {
        step = Step::Odd;
      } else {
        step = points ? fastPoint(p) : fastFace(p);
      }
    }
    // A plain form that the window cuts begins again; one too long for that goes the slow way.
    if (step == Step::NeedMore && static_cast<std::size_t>(in_.end - in_.at) < kLongestPoint && in_.more()) continue;

    const Token token = tokens_.next();
    tokens_.dropped = false;
    switch (token.kind) {
      case Token::Kind::Start:
        if (localName(token.name) == (points ? "P" : "F")) {
          slowElement(token, points);
        } else {
          tin_->note(&TinCollector::Faults::unknownElements, in_.lineAt(token.raw.data()),
                     "<" + shown(token.name) + "> isn't read");
          skipElement(token);
        }
        break;
      case Token::Kind::Close:
        if (token.name != name) {
          fail("</" + shown(token.name) + "> stands where </" + name + "> is due", file_, in_.lineAt(token.raw.data()));
        }
        return;
      case Token::Kind::Text:
      case Token::Kind::RawText:
        if (!trimmed(token.raw).empty()) {
          tin_->note(&TinCollector::Faults::unknownElements, in_.lineAt(token.raw.data()),
                     "text '" + shown(trimmed(token.raw)) + "' stands among them");
        }
        break;
      case Token::Kind::End:
        fail("the file ends inside <" + name + ">", file_, in_.line());
    }
  }
}

/// Text of the element whose start tag was just taken, up to and with its end tag; child elements are passed over.
void Scanner::readChildText(std::string_view name, std::string& text) {
  const std::string due(name);
  const std::size_t depth = open_.size();
  for (;;) {
    const Token token = tokens_.next();
    tokens_.dropped = false;
    switch (token.kind) {
      case Token::Kind::Text:
      case Token::Kind::RawText:
        if (open_.size() > depth) break;
        if (text.size() + token.raw.size() > kLongestPoint) {
          fail("the text of <" + shown(due) + "> is longer than any point or face", file_,
               in_.lineAt(token.raw.data()));
        }
        if (token.kind == Token::Kind::RawText) {
          text += token.raw;
        } else {
          for (std::size_t i = 0; i < token.raw.size(); ++i) {
            if (token.raw[i] != '&') {
              text += token.raw[i];
              continue;
            }
            std::size_t length = 0;
            const std::string bytes = entityText(token.raw.substr(i + 1), length);
            if (bytes.empty()) {
              fail("'" + shown(token.raw.substr(i, 12)) + "' isn't an entity of XML", file_,
                   in_.lineAt(token.raw.data() + i));
            }
            text += bytes;
            i += length;
          }
        }
        break;
      case Token::Kind::Start:
        if (!token.selfClosing) push(token.name, Role::Other);
        break;
      case Token::Kind::Close:
        if (open_.size() > depth) {
          if (openName() != token.name) {
            fail("</" + shown(token.name) + "> stands where </" + shown(openName()) + "> is due", file_,
                 in_.lineAt(token.raw.data()));
          }
          pop();
          break;
        }
        if (token.name != due) {
          fail("</" + shown(token.name) + "> stands where </" + shown(due) + "> is due", file_,
               in_.lineAt(token.raw.data()));
        }
        return;
      case Token::Kind::End:
        fail("the file ends inside <" + shown(due) + ">", file_, in_.line());
    }
  }
}

void Scanner::skipElement(const Token& token) {
  if (token.selfClosing) return;
  const std::string name(token.name);
  push(name, Role::Other);
  const std::size_t depth = open_.size();
  while (open_.size() >= depth) {
    const Token inner = tokens_.next();
    tokens_.dropped = false;
    if (inner.kind == Token::Kind::Start && !inner.selfClosing) push(inner.name, Role::Other);
    if (inner.kind == Token::Kind::End) fail("the file ends inside <" + shown(openName()) + ">", file_, in_.line());
    if (inner.kind != Token::Kind::Close) continue;
    if (openName() != inner.name) {
      fail("</" + shown(inner.name) + "> stands where </" + shown(openName()) + "> is due", file_,
           in_.lineAt(inner.raw.data()));
    }
    pop();
  }
}

void Scanner::slowElement(const Token& token, bool points) {
  const std::size_t line = in_.lineAt(token.raw.data());
  std::string id;
  std::string reference;
  bool invisible = false;
  eachAttribute(token, file_, line, [&](std::string_view name, std::string_view value) {
    if (name == "id") id = value;
    if (name == "pntRef") reference = value;
    if (name == "i") invisible = trimmed(value) == "1";
  });
  std::string text;
  if (!token.selfClosing) readChildText(token.name, text);
  if (points)
    takePoint(id, reference, text, line);
  else
    takeFace(invisible, text, line);
}

void Scanner::takePoint(std::string_view idText, std::string_view pointRef, std::string_view text, std::size_t line) {
  using Faults = TinCollector::Faults;
  idText = trimmed(idText);
  std::int64_t id = 0;
  const char* const idEnd = idText.data() + idText.size();
  const auto [next, error] = std::from_chars(idText.data(), idEnd, id);
  if (error != std::errc() || next != idEnd || id < 0) {
    tin_->note(&Faults::pointsWithoutId, line, "P has no usable id ('" + shown(idText) + "')");
    return;
  }
  const NumberList numbers = readNumbers(text);
  const std::string speaker = "P " + std::to_string(id) + ": ";
  if (!numbers.problem.empty()) {
    tin_->note(&Faults::unreadablePoints, line, speaker + numbers.problem);
  } else if (numbers.values.size() >= 3) {
    if (numbers.signRepaired) {
      tin_->note(&Faults::repairedSigns, line, speaker + "a sign stood apart from its number");
    }
    tin_->addPoint(id, numbers.values[0], numbers.values[1], numbers.values[2]);
  } else if (numbers.values.size() == 2) {
    tin_->note(&Faults::pointsWithoutElevation, line, speaker + "no elevation");
  } else if (numbers.values.empty() && !pointRef.empty()) {
    tin_->references.emplace_back(id, pointRef);
  } else {
    tin_->note(&Faults::unreadablePoints, line, speaker + "no coordinates");
  }
}

void Scanner::takeFace(bool invisible, std::string_view text, std::size_t line) {
  RawFace face;
  face.invisible = invisible;
  const char* at = text.data();
  const char* const end = at + text.size();
  bool good = true;
  for (;;) {
    while (at != end && isBlank(*at)) ++at;
    if (at == end) break;
    std::int64_t id = 0;
    const auto [next, error] = std::from_chars(at, end, id);
    good = error == std::errc() && (next == end || isBlank(*next)) && id > std::numeric_limits<std::int64_t>::min() &&
           face.count < 4;
    if (!good) break;
    face.ids[face.count++] = id < 0 ? -id : id;
    at = next;
  }
  if (!good || face.count < 3) {
    tin_->note(&TinCollector::Faults::unreadableFaces, line,
               "F '" + shown(trimmed(text)) + "' doesn't hold three or four point ids");
  } else if (!tin_->addFace(face)) {
    tin_->defer(face, line);
  }
}

}  // namespace

ScannedDocument scanDocument(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options,
                             ScanMode mode) {
  return Scanner(std::move(bytes), file, options, mode).run();
}

}  // namespace lvx::landxml::detail

#include "landxml/detail/scanner.h"

#include <algorithm>

#include "landxml/detail/entities.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/open_elements.h"
#include "landxml/detail/tin_scanner.h"
#include "landxml/detail/tokenizer.h"

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

/// Elements and attributes outside the streamed parts; each costs some 60 bytes in the tree.
constexpr std::size_t kMostNodes = 30'000'000;

class Scanner {
 public:
  Scanner(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options, ScanMode mode)
      : in_(std::move(bytes), file, options), tokens_(in_), file_(file), locates_(mode == ScanMode::Locate) {}

  ScannedDocument run();

 private:
  using Role = OpenElements::Role;

  void start(const Token& token);
  void close(const Token& token);
  void text(const Token& token);
  void checkRoot(const Token& token);
  void append(std::string_view piece);
  void appendEscaped(std::string_view piece);
  void checkEntities();
  void anchor() { result_.lines.anchor(result_.document.size(), in_.line()); }
  [[nodiscard]] bool isMuted() const { return muteDepth_ > 0 && open_.depth() >= muteDepth_; }

  Input in_;
  Tokenizer tokens_;
  std::string file_;
  ScannedDocument result_;
  OpenElements open_;
  bool rootSeen_ = false;
  std::size_t muteDepth_ = 0;  // names at this depth and deeper aren't kept; 0: all are
  std::size_t nodes_ = 0;
  struct UnreadCollection {
    std::size_t line = 0;  // of the first
    std::size_t count = 0;
    std::size_t content = 0;  // elements directly in them
  };
  std::map<std::string, UnreadCollection> unread_;  // collections that were passed over
  UnreadCollection* unreadCollection_ = nullptr;    // the one that is open
  SourceDataCounts* sourceData_ = nullptr;          // of the SourceData that is open
  std::size_t badBytes_ = 0;
  std::size_t firstBadLine_ = 0;
  TinCollector* tin_ = nullptr;  // of the Definition that is open
  bool locates_ = false;
};

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
  if (open_.isEmpty()) {
    if (rootSeen_) fail("a second root element <" + shown(token.name) + ">", file_, in_.lineAt(token.raw.data()));
    rootSeen_ = true;
    checkRoot(token);
  }
  const std::string_view local = localName(token.name);
  if (isMuted()) {
    if (sourceData_ != nullptr) {
      if (local == "Breakline") ++sourceData_->breaklines;
      if (local == "Contour") ++sourceData_->contours;
      if (local == "Boundary") ++sourceData_->boundaries;
    }
    if (unreadCollection_ != nullptr && open_.depth() == muteDepth_) ++unreadCollection_->content;
    if (!token.selfClosing) open_.push(token.name, in_);
    return;
  }
  const std::size_t line = in_.lineAt(token.raw.data());
  ++nodes_;
  eachAttribute(token, file_, line, [&](std::string_view, std::string_view) { ++nodes_; });
  if (nodes_ > kMostNodes) fail("more than 30 million elements and attributes besides points and faces", file_, line);

  const Role parent = open_.role();
  Role role = Role::Other;
  if (local == "Surface")
    role = Role::Surface;
  else if (local == "Definition" && parent == Role::Surface)
    role = Role::Definition;
  const std::size_t nameOffset = result_.document.size() + 1;
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
    scanTin(in_, tokens_, open_, *tin_, name, local == "Pnts");
    append("</" + name + ">");
    anchor();
    return;
  }
  open_.push(token.name, in_, role, locates_ ? result_.spans.size() : 0);
  // Bulk that no object of the drawing comes from.
  const bool unreadOfSurface = parent == Role::Surface && (local == "SourceData" || local == "Watersheds");
  const bool unreadOfRoot =
      open_.depth() == 2 && (local == "Parcels" || local == "PipeNetworks" || local == "Survey" ||
                             local == "PlanFeatures" || local == "GradeModel" || local == "Monuments");
  if (unreadOfSurface || unreadOfRoot || (locates_ && role == Role::Definition)) {
    if (unreadOfRoot) {
      unreadCollection_ = &unread_.try_emplace(std::string(local), UnreadCollection{.line = line}).first->second;
      ++unreadCollection_->count;
    }
    if (unreadOfSurface && local == "SourceData") sourceData_ = &result_.sourceData[nameOffset];
    muteDepth_ = open_.depth();
  }
}

void Scanner::close(const Token& token) {
  if (open_.isEmpty() || open_.name() != token.name) {
    fail("</" + shown(token.name) + "> stands where " +
             (open_.isEmpty() ? "nothing is open" : "</" + shown(open_.name()) + "> is due"),
         file_, in_.lineAt(token.raw.data()));
  }
  const bool unmute = muteDepth_ > 0 && open_.depth() == muteDepth_;
  if (unmute) {
    muteDepth_ = 0;
    sourceData_ = nullptr;
    unreadCollection_ = nullptr;
  }
  if (!isMuted()) append(token.raw);
  if (unmute) anchor();
  if (const std::size_t span = open_.span(); span > 0) {
    result_.spans[span - 1].closeStart = in_.offsetOf(token.raw.data());
    result_.spans[span - 1].end = result_.spans[span - 1].closeStart + token.raw.size();
  }
  open_.pop();
}

void Scanner::text(const Token& token) {
  if (open_.isEmpty()) {
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
  if (!open_.isEmpty()) fail("the file ends inside <" + shown(open_.name()) + ">", file_, in_.line());
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
  for (const auto& [name, unread] : unread_) {
    result_.diagnostics.push_back({civil::Severity::Note, unreadText(name, unread.count, unread.content), unread.line});
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

}  // namespace

ScannedDocument scanDocument(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options,
                             ScanMode mode) {
  return Scanner(std::move(bytes), file, options, mode).run();
}

}  // namespace lvx::landxml::detail

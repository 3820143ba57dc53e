#include "landxml/detail/scanner.h"

#include <algorithm>

#include "landxml/detail/entities.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/open_elements.h"
#include "landxml/detail/tin_scanner.h"
#include "landxml/detail/tokenizer.h"

namespace lvx::landxml::detail {

namespace {

std::string countText(std::size_t count) {
  constexpr std::size_t kMillion = 1'000'000;
  return count > 0 && count % kMillion == 0 ? std::to_string(count / kMillion) + " million" : std::to_string(count);
}

class Scanner {
 public:
  Scanner(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options, ScanMode mode,
          const ScanLimits& limits)
      : limits_(limits),
        in_(std::move(bytes), file, options),
        tokens_(in_),
        crew_(options.threads),
        file_(file),
        locates_(mode == ScanMode::Locate) {
    if (locates_) result_.document.keepParents();
  }

  ScannedDocument run();

 private:
  using Role = OpenElements::Role;

  void start(const Token& token);
  void close(const Token& token);
  void text(const Token& token);
  void checkRoot(const Token& token);
  void checkName(std::string_view name, std::size_t line) const;
  void noteBadEntity(std::size_t line, std::string_view piece);
  std::string_view asUtf8(std::string_view piece);
  [[nodiscard]] bool isMuted() const { return muteDepth_ > 0 && open_.depth() >= muteDepth_; }

  void count(std::string_view localName, std::size_t attributes, std::size_t line);

  ScanLimits limits_;
  Input in_;
  Tokenizer tokens_;
  standin_platform::Crew crew_;
  std::string file_;
  std::string attributeName_;
  std::string utf8_;  // of the piece that was asked for last
  ScannedDocument result_;
  OpenElements open_;
  bool rootSeen_ = false;
  std::size_t muteDepth_ = 0;  // names at this depth and deeper aren't kept; 0: all are
  std::size_t points_ = 0;
  std::size_t nodes_ = 0;  // elements but points, with their attributes
  struct UnreadCollection {
    std::size_t line = 0;  // of the first
    std::size_t count = 0;
    std::size_t content = 0;  // elements directly in them
  };
  std::map<std::string, UnreadCollection> unread_;  // collections that were passed over
  UnreadCollection* unreadCollection_ = nullptr;    // the one that is open
  SourceDataCounts* sourceData_ = nullptr;          // of the SourceData that is open
  std::size_t badEntityLine_ = 0;
  std::size_t badBytes_ = 0;
  std::size_t firstBadLine_ = 0;
  TinCollector* tin_ = nullptr;  // of the Definition that is open
  bool locates_ = false;
};

/// The piece itself where it is ASCII, else valid until the next call. A piece never ends within a character.
std::string_view Scanner::asUtf8(std::string_view piece) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80U; };
  if (std::all_of(piece.begin(), piece.end(), isAscii)) return piece;
  utf8_.clear();
  while (!piece.empty()) {
    std::size_t plain = 0;
    while (plain < piece.size() && isAscii(piece[plain])) ++plain;
    utf8_ += piece.substr(0, plain);
    piece.remove_prefix(plain);
    if (piece.empty()) break;
    const auto byte = static_cast<unsigned char>(piece.front());
    if (in_.upperHalf() != nullptr) {
      utf8_ += (*in_.upperHalf())[byte - 0x80U];
      piece.remove_prefix(1);
    } else if (const std::size_t length = utf8Length(piece); length > 0) {
      utf8_ += piece.substr(0, length);
      piece.remove_prefix(length);
    } else {
      if (badBytes_++ == 0) firstBadLine_ = in_.line();
      utf8_ += windows1252()[byte - 0x80U];
      piece.remove_prefix(1);
    }
  }
  return utf8_;
}

/// The document's first bad entity came with this piece, which begins at `line`.
void Scanner::noteBadEntity(std::size_t line, std::string_view piece) {
  badEntityLine_ = line + lineEnds(piece.substr(0, result_.document.badEntity()->at));
}

/// The tokenizer has seen how a name begins; this is about the rest of it, and about attributes.
void Scanner::checkName(std::string_view name, std::size_t line) const {
  const auto isLetter = [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':' ||
           static_cast<unsigned char>(c) >= 0x80U;
  };
  const auto mayStand = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; };
  if (!isLetter(name.front()) || !std::all_of(name.begin(), name.end(), mayStand)) {
    fail("not well-formed: '" + shown(name) + "' isn't a name", file_, line);
  }
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

/// What becomes an object of its own may take hundreds of times its bytes in the file, so there is an end to such
/// elements. A point, and a point's place in a group, takes less than twice its bytes.
void Scanner::count(std::string_view localName, std::size_t attributes, std::size_t line) {
  if (localName == "CgPoint") {
    if (++points_ > limits_.points) fail("more than " + countText(limits_.points) + " CgPoint elements", file_, line);
    return;
  }
  nodes_ += 1 + attributes;
  if (nodes_ > limits_.nodes) {
    fail("more than " + countText(limits_.nodes) + " elements and attributes besides CgPoint, P and F", file_, line);
  }
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
  checkName(token.name, line);
  std::size_t attributes = 0;
  const std::size_t place = result_.document.open(asUtf8(token.name), line);
  eachAttribute(token, file_, line, [&](std::string_view name, std::string_view value) {
    ++attributes;
    checkName(name, line);
    attributeName_.assign(asUtf8(name));
    const std::string_view utf8 = asUtf8(value);
    result_.document.attribute(attributeName_, utf8);
    if (result_.document.badEntity() && badEntityLine_ == 0) {
      const auto before = static_cast<std::size_t>(value.data() - token.raw.data());
      noteBadEntity(line + lineEnds(token.raw.substr(0, before)), utf8);
    }
  });
  count(local, attributes, line);

  const Role parent = open_.role();
  Role role = Role::Other;
  if (local == "Surface")
    role = Role::Surface;
  else if (local == "Definition" && parent == Role::Surface)
    role = Role::Definition;
  if (locates_) {
    const std::uint64_t from = in_.offsetOf(token.raw.data());
    const std::uint64_t to = from + token.raw.size();
    result_.spans.push_back({place, from, to, 0, to});
  }
  if (role == Role::Definition && !token.selfClosing && !locates_) {
    tin_ = &result_.definitions[place];
  }
  if (token.selfClosing) {
    result_.document.close();
    return;
  }
  if (parent == Role::Definition && !locates_ && (local == "Pnts" || local == "Faces")) {
    const std::string name(token.name);
    scanTin(in_, tokens_, open_, *tin_, crew_, name, local == "Pnts");
    result_.document.close();
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
    if (unreadOfSurface && local == "SourceData") sourceData_ = &result_.sourceData[place];
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
  if (!isMuted()) result_.document.close();
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
    return;
  }
  if (isMuted()) return;
  const std::string_view utf8 = asUtf8(token.raw);
  if (token.kind == Token::Kind::RawText)
    result_.document.rawText(utf8);
  else
    result_.document.text(utf8);
  if (result_.document.badEntity() && badEntityLine_ == 0) noteBadEntity(in_.lineAt(token.raw.data()), utf8);
}

ScannedDocument Scanner::run() {
  if (!in_.encodingWarning().empty()) {
    result_.diagnostics.push_back({civil::Severity::Warning, in_.encodingWarning(), 1});
  }
  for (;;) {
    const Token token = tokens_.next();
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
  result_.upperHalf = in_.source().upperHalf;
  if (locates_) result_.converted = in_.source().converted;
  if (const auto& bad = result_.document.badEntity()) {
    fail("'" + bad->shown + "' isn't an entity of XML", file_, badEntityLine_);
  }
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

}  // namespace

ScannedDocument scanDocument(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options,
                             ScanMode mode, const ScanLimits& limits) {
  return Scanner(std::move(bytes), file, options, mode, limits).run();
}

}  // namespace lvx::landxml::detail

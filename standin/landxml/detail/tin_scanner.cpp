#include "landxml/detail/tin_scanner.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

#include "landxml/detail/entities.h"

namespace lvx::landxml::detail {

namespace {

/// Text of one P or F beyond this is no point.
constexpr std::size_t kLongestPoint = std::size_t{1} << 16;
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

/// Inside this file alone, so that the compiler can put the plain forms into the one loop that calls them.
class TinScanner {
 public:
  TinScanner(Input& in, Tokenizer& tokens, OpenElements& open, TinCollector& tin)
      : in_(in), tokens_(tokens), open_(open), tin_(tin) {}
  void scan(const std::string& name, bool points);

 private:
  enum class Step : std::uint8_t { Done, NeedMore, Odd };
  Step fastPoint(const char*& at);
  Step fastFace(const char*& at);
  Step fastClose(const char*& at) const;
  void slowElement(const Token& token, bool points);
  void takePoint(std::string_view id, std::string_view pointRef, std::string_view text, std::size_t line);
  void takeFace(bool invisible, std::string_view text, std::size_t line);
  void readChildText(std::string_view name, std::string& text);
  void skipElement(const Token& token);

  Input& in_;
  Tokenizer& tokens_;
  OpenElements& open_;
  TinCollector& tin_;
  std::string childName_;  // "P" or "F" with the prefix in use
};

/// `</P>` at `at`; moves behind it.
TinScanner::Step TinScanner::fastClose(const char*& at) const {
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
TinScanner::Step TinScanner::fastPoint(const char*& at) {
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
  tin_.addPoint(id, north, east, elevation);
  at = p;
  return Step::Done;
}

/// `<F>1 2 3</F>` with any plain attributes.
TinScanner::Step TinScanner::fastFace(const char*& at) {
  const char* p = at + 1 + childName_.size();
  RawFace face;
  std::uint32_t firstLetters = 0;  // of the attributes so far: one bit each
  for (;;) {
    const char* const before = p;
    p = skipBlanks(p);
    if (*p == '>') break;
    if (p == before) return *p == '\0' ? Step::NeedMore : Step::Odd;
    const char* const name = p;
    while (*p >= 'a' && *p <= 'z') ++p;
    if (*p != '=') return *p == '\0' ? Step::NeedMore : Step::Odd;
    // Two that begin alike may be one twice, which slowElement tells apart.
    const std::uint32_t letter = p == name ? 0U : 1U << static_cast<unsigned>(*name - 'a');
    if ((firstLetters & letter) != 0) return Step::Odd;
    firstLetters |= letter;
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
  if (!tin_.addFace(face)) tin_.defer(face, in_.lineAt(text));
  at = p;
  return Step::Done;
}

void TinScanner::scan(const std::string& name, bool points) {
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
    switch (token.kind) {
      case Token::Kind::Start:
        if (localName(token.name) == (points ? "P" : "F")) {
          slowElement(token, points);
        } else {
          tin_.note(&TinCollector::Faults::unknownElements, in_.lineAt(token.raw.data()),
                    "<" + shown(token.name) + "> isn't read");
          skipElement(token);
        }
        break;
      case Token::Kind::Close:
        if (token.name != name) {
          fail("</" + shown(token.name) + "> stands where </" + name + "> is due", in_.file(),
               in_.lineAt(token.raw.data()));
        }
        return;
      case Token::Kind::Text:
      case Token::Kind::RawText:
        if (!trimmed(token.raw).empty()) {
          tin_.note(&TinCollector::Faults::unknownElements, in_.lineAt(token.raw.data()),
                    "text '" + shown(trimmed(token.raw)) + "' stands among them");
        }
        break;
      case Token::Kind::End:
        fail("the file ends inside <" + name + ">", in_.file(), in_.line());
    }
  }
}

/// Text of the element whose start tag was just taken, up to and with its end tag; child elements are passed over.
void TinScanner::readChildText(std::string_view name, std::string& text) {
  const std::string due(name);
  const std::size_t depth = open_.depth();
  for (;;) {
    const Token token = tokens_.next();
    switch (token.kind) {
      case Token::Kind::Text:
      case Token::Kind::RawText:
        if (open_.depth() > depth) break;
        if (text.size() + token.raw.size() > kLongestPoint) {
          fail("the text of <" + shown(due) + "> is longer than any point or face", in_.file(),
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
              fail("'" + shown(token.raw.substr(i, 12)) + "' isn't an entity of XML", in_.file(),
                   in_.lineAt(token.raw.data() + i));
            }
            text += bytes;
            i += length;
          }
        }
        break;
      case Token::Kind::Start:
        if (!token.selfClosing) open_.push(token.name, in_);
        break;
      case Token::Kind::Close:
        if (open_.depth() > depth) {
          if (open_.name() != token.name) {
            fail("</" + shown(token.name) + "> stands where </" + shown(open_.name()) + "> is due", in_.file(),
                 in_.lineAt(token.raw.data()));
          }
          open_.pop();
          break;
        }
        if (token.name != due) {
          fail("</" + shown(token.name) + "> stands where </" + shown(due) + "> is due", in_.file(),
               in_.lineAt(token.raw.data()));
        }
        return;
      case Token::Kind::End:
        fail("the file ends inside <" + shown(due) + ">", in_.file(), in_.line());
    }
  }
}

void TinScanner::skipElement(const Token& token) {
  if (token.selfClosing) return;
  const std::string name(token.name);
  open_.push(name, in_);
  const std::size_t depth = open_.depth();
  while (open_.depth() >= depth) {
    const Token inner = tokens_.next();
    if (inner.kind == Token::Kind::Start && !inner.selfClosing) open_.push(inner.name, in_);
    if (inner.kind == Token::Kind::End)
      fail("the file ends inside <" + shown(open_.name()) + ">", in_.file(), in_.line());
    if (inner.kind != Token::Kind::Close) continue;
    if (open_.name() != inner.name) {
      fail("</" + shown(inner.name) + "> stands where </" + shown(open_.name()) + "> is due", in_.file(),
           in_.lineAt(inner.raw.data()));
    }
    open_.pop();
  }
}

void TinScanner::slowElement(const Token& token, bool points) {
  const std::size_t line = in_.lineAt(token.raw.data());
  std::string id;
  std::string reference;
  bool invisible = false;
  eachAttribute(token, in_.file(), line, [&](std::string_view name, std::string_view value) {
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

void TinScanner::takePoint(std::string_view idText, std::string_view pointRef, std::string_view text,
                           std::size_t line) {
  using Faults = TinCollector::Faults;
  idText = trimmed(idText);
  std::int64_t id = 0;
  const char* const idEnd = idText.data() + idText.size();
  const auto [next, error] = std::from_chars(idText.data(), idEnd, id);
  if (error != std::errc() || next != idEnd || id < 0) {
    tin_.note(&Faults::pointsWithoutId, line, "P has no usable id ('" + shown(idText) + "')");
    return;
  }
  const NumberList numbers = readNumbers(text);
  const std::string speaker = "P " + std::to_string(id) + ": ";
  if (!numbers.problem.empty()) {
    tin_.note(&Faults::unreadablePoints, line, speaker + numbers.problem);
  } else if (numbers.values.size() >= 3) {
    if (numbers.repairedSigns > 0) {
      tin_.note(&Faults::repairedSigns, line, speaker + "a sign stood apart from its number");
    }
    tin_.addPoint(id, numbers.values[0], numbers.values[1], numbers.values[2]);
  } else if (numbers.values.size() == 2) {
    tin_.note(&Faults::pointsWithoutElevation, line, speaker + "no elevation");
  } else if (numbers.values.empty() && !pointRef.empty()) {
    tin_.references.emplace_back(id, pointRef);
  } else {
    tin_.note(&Faults::unreadablePoints, line, speaker + "no coordinates");
  }
}

void TinScanner::takeFace(bool invisible, std::string_view text, std::size_t line) {
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
    tin_.note(&TinCollector::Faults::unreadableFaces, line,
              "F '" + shown(trimmed(text)) + "' doesn't hold three or four point ids");
  } else if (!tin_.addFace(face)) {
    tin_.defer(face, line);
  }
}

}  // namespace

void scanTin(Input& in, Tokenizer& tokens, OpenElements& open, TinCollector& tin, const std::string& name,
             bool points) {
  TinScanner(in, tokens, open, tin).scan(name, points);
}

}  // namespace lvx::landxml::detail

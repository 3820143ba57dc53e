#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "landxml/detail/input.h"
#include "landxml/detail/numbers.h"

/// Markup of a drawing as tokens, straight out of the window of bytes that moves over the file.
///
/// Why not an XML library: it wants the whole text in memory and makes a node of some 60 bytes of each element and of each
/// piece of text. Of a surface with ten million points and twenty million faces that would be several gigabytes and most of
/// the time, for elements of which three numbers are kept; sections and survey points come by the million too. So this
/// tokenizer goes over the bytes once; the scanner takes P and F out of them into arrays, and writes what is left into a
/// Document (document.h), on which all other readers work. The price is that the rules of XML that drawings rest on stand
/// here: tags, quotes, comments, CDATA sections, processing instructions, and entities in entities.h. Document types, which
/// drawings don't have, are refused.
namespace lvx::landxml::detail {

/// A name without its prefix.
[[nodiscard]] inline std::string_view localName(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

struct Token {
  enum class Kind { End, Text, RawText, Start, Close } kind = Kind::End;
  /// The tag with its angle brackets, or a piece of text; RawText comes from a CDATA section. Valid until the next
  /// call.
  std::string_view raw;
  std::string_view name;
  bool selfClosing = false;
};

/// Well-formed markup as tokens. Comments and processing instructions are passed over.
class Tokenizer {
 public:
  explicit Tokenizer(Input& in) : in_(in) {}

  /// Throws ReadError for what isn't well-formed, and for a document type.
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
  std::optional<Token> markup();
  Token text();
  Token rawText();
  std::size_t findTagEnd();

  Input& in_;
  bool inRawText_ = false;
};

/// The names of one element's attributes so far.
class AttributeNames {
 public:
  /// False for one that stands there already. O(1).
  bool add(std::string_view name) {
    if (count_ == few_.size()) return many_.insert(name).second && !isAmongFew(name);
    if (isAmongFew(name)) return false;
    few_[count_++] = name;
    return true;
  }

 private:
  [[nodiscard]] bool isAmongFew(std::string_view name) const {
    return std::find(few_.begin(), few_.begin() + static_cast<std::ptrdiff_t>(count_), name) !=
           few_.begin() + static_cast<std::ptrdiff_t>(count_);
  }

  std::array<std::string_view, 12> few_;
  std::size_t count_ = 0;
  std::unordered_set<std::string_view> many_;  ///< those beyond
};

/// Attributes of a start tag, in order; throws ReadError for anything that isn't name="value", and for one that stands
/// twice: which of the two counts, no rule of XML says.
template <class Use>
void eachAttribute(const Token& token, const std::string& file, std::size_t line, Use use) {
  std::string_view rest = token.raw.substr(1 + token.name.size());
  rest.remove_suffix(token.selfClosing ? 2 : 1);
  AttributeNames names;
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
    if (!names.add(name)) fail("<" + shown(token.name) + "> has the attribute '" + shown(name) + "' twice", file, line);
    use(name, rest.substr(1, close - 1));
    rest = rest.substr(close + 1);
  }
}

}  // namespace lvx::landxml::detail

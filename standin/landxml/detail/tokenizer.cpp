#include "landxml/detail/tokenizer.h"

#include <cstring>

namespace lvx::landxml::detail {

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

/// Empty for a comment or a processing instruction, which it passes over.
std::optional<Token> Tokenizer::markup() {
  if (!reach(2)) failCut("a tag");
  if (in_.at[1] == '?') {
    skipPast("?>", "a processing instruction");
    return std::nullopt;
  }
  if (in_.at[1] == '!') {
    reach(9);
    const std::string_view window(in_.at, static_cast<std::size_t>(in_.end - in_.at));
    if (window.starts_with("<!--")) {
      in_.at += 4;
      skipPast("-->", "a comment");
      return std::nullopt;
    }
    if (window.starts_with("<![CDATA[")) {
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
  // However many of them stand in a row.
  while (in_.at != in_.end || in_.more()) {
    if (*in_.at != '<') return text();
    if (const std::optional<Token> token = markup()) return *token;
  }
  return {};
}

Token Tokenizer::text() {
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

}  // namespace lvx::landxml::detail

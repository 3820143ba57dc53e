#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "landxml/detail/open_elements.h"
#include "landxml/detail/tin_collector.h"
#include "landxml/detail/tokenizer.h"

namespace lvx::landxml::detail {

/// Reads the points or faces of one surface out of the window into its collector. Most of a large drawing goes through
/// here: elements in their plain form are read at one glance, without a token; whatever is odd goes the slow way of the
/// tokenizer, which gives the same result and tells what is wrong.
class TinScanner {
 public:
  /// All must outlive the scanner.
  TinScanner(Input& in, Tokenizer& tokens, OpenElements& open, TinCollector& tin)
      : in_(in), tokens_(tokens), open_(open), tin_(tin) {}

  /// Reads what stands inside <Pnts> (`points`) or <Faces>, up to and with the end tag; `name` is the element's name
  /// with its prefix. Odd elements become notes of the collector. Throws ReadError for what isn't well-formed.
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

}  // namespace lvx::landxml::detail

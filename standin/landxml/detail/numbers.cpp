#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

NumberList readNumbers(std::string_view text) {
  NumberList list;
  const char* at = text.data();
  const char* const end = at + text.size();
  const auto skipBlanks = [&] {
    while (at != end && isBlank(*at)) ++at;
  };
  for (skipBlanks(); at != end; skipBlanks()) {
    const char* const word = at;
    bool negate = false;
    if (*at == '-' && at + 1 != end && isBlank(at[1])) {
      ++at;
      skipBlanks();
      negate = at != end && *at != '-' && *at != '+';
      if (!negate) at = word;
    }
    double value = 0.0;
    const char* const next = readNumber(at, end, value);
    if (next == nullptr || (next != end && !isBlank(*next))) {
      const char* wordEnd = at;
      while (wordEnd != end && !isBlank(*wordEnd)) ++wordEnd;
      list.problem =
          "'" + shown({word, static_cast<std::size_t>(wordEnd - word)}) + "' is not a number that can be used";
      return list;
    }
    list.signRepaired = list.signRepaired || negate;
    list.values.push_back(negate ? -value : value);
    at = next;
  }
  return list;
}

bool readSingleNumber(std::string_view text, double& value) {
  text = trimmed(text);
  const char* const end = text.data() + text.size();
  return !text.empty() && readNumber(text.data(), end, value) == end;
}

std::string shown(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  std::string result;
  for (const char c : text) {
    // Cut in front of a character, not within one.
    if (result.size() >= kLongest && (static_cast<unsigned char>(c) & 0xC0U) != 0x80U) return result + "...";
    result += static_cast<unsigned char>(c) < 0x20U ? ' ' : c;
  }
  return result;
}

}  // namespace lvx::landxml::detail

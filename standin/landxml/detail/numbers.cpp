#include "landxml/detail/numbers.h"

#include "text/number_text.h"

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
    list.values.push_back(negate ? -value : value);
    if (negate && list.repairedSigns++ == 0) list.firstRepaired = list.values.back();
    at = next;
  }
  return list;
}

std::string repairedSignsText(const NumberList& list) {
  const std::string first = text::shortText(list.firstRepaired, 4);
  if (list.repairedSigns == 1) return "a sign stood apart from its number; they were put together to " + first;
  return std::to_string(list.repairedSigns) +
         " signs stood apart from their numbers; they were put together, the first one to " + first;
}

bool readSingleNumber(std::string_view text, double& value) {
  text = trimmed(text);
  const char* const end = text.data() + text.size();
  return !text.empty() && readNumber(text.data(), end, value) == end;
}

std::string unreadText(std::string_view name, std::size_t count, std::size_t content) {
  std::string result = count == 1 ? std::string() : std::to_string(count) + " ";
  result += "'" + shown(name) + (count == 1 ? "' isn't read" : "' aren't read");
  if (content > 0) {
    result += " (" + std::to_string(content) + (content == 1 ? " element in " : " elements in ") +
              (count == 1 ? "it)" : "them)");
  }
  return result;
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

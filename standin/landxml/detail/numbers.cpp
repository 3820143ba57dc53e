#include "landxml/detail/numbers.h"

#include "text/number_text.h"

namespace lvx::landxml::detail {

namespace {

template <class Use>
void readInto(NumberList& list, std::string_view text, Use use) {
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
      return;
    }
    if (negate) value = -value;
    use(value);
    if (negate && list.repairedSigns++ == 0) list.firstRepaired = value;
    at = next;
  }
}

/// How much of `text` is read the same whatever follows: whole words, but for a sign that the next one may belong to.
std::size_t settledPart(std::string_view text) {
  std::size_t end = text.size();
  while (end > 0 && !isBlank(text[end - 1])) --end;
  const std::string_view whole = text.substr(0, end);
  std::size_t last = end;
  while (last > 0 && isBlank(whole[last - 1])) --last;
  const bool endsWithSign = last > 0 && whole[last - 1] == '-' && (last == 1 || isBlank(whole[last - 2]));
  return endsWithSign ? last - 1 : end;
}

}  // namespace

NumberList readNumbers(std::string_view text) {
  NumberList list;
  readInto(list, text, [&](double value) { list.values.push_back(value); });
  return list;
}

void NumberReader::add(std::string_view piece) {
  if (!list_.problem.empty()) return;
  rest_ += piece;
  const std::size_t settled = settledPart(rest_);
  readInto(list_, std::string_view(rest_).substr(0, settled), use_);
  rest_.erase(0, settled);
}

NumberList NumberReader::finish() {
  if (list_.problem.empty()) readInto(list_, rest_, use_);
  rest_.clear();
  return std::move(list_);
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

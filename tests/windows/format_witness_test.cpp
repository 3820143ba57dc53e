// The text engine against the C run times that it stands for: random formats and arguments through both, a million a run,
// equal to the byte but for what the rules below leave out, each with its reason. docs/formats.md lists them for readers.
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

// clang-format off
#include <windows.h>
// clang-format on

#include "services/formatted_text.h"

namespace lvx::services {
namespace {

// ---------------------------------------------------------------- what is formatted

/// One conversion of a format, as it was put together.
struct Made {
  std::string flags;
  bool hasPrecision = false;
  int width = 0;
  int precision = -1;
  std::string size;
  char type = 0;
  /// The value of e, f, g and a.
  double number = 0;
  /// That of d, i, o, u, x and p.
  std::int64_t integer = 0;

  [[nodiscard]] bool has(char flag) const { return flags.find(flag) != std::string::npos; }
  [[nodiscard]] bool isAnyOf(std::string_view types) const { return types.find(type) != std::string_view::npos; }
  [[nodiscard]] bool isFloat() const { return isAnyOf("eEfgGaA"); }
};

constexpr std::size_t kMostArguments = 12;

/// A counted text as `Z` takes it.
struct CountedText {
  std::uint16_t bytes;
  std::uint16_t room;
  const void* text;
};

/// A format with its arguments, for the engine and as the run times take them: in slots of 64 bits, one after another.
class Case {
 public:
  std::string format;
  std::vector<Made> conversions;

  [[nodiscard]] bool isFull() const { return arguments_.size() + 3 > kMostArguments; }
  [[nodiscard]] bool hasArguments() const { return !arguments_.empty(); }
  void addInteger(std::int64_t value) { add(value, static_cast<std::uint64_t>(value)); }
  void addNumber(double value) { add(value, std::bit_cast<std::uint64_t>(value)); }
  void addText(const std::string& text, bool isWide, bool isCounted) {
    Text& kept = texts_[textCount_++];
    kept.narrow = text;
    kept.wide = widened(text);
    const void* const begin = isWide ? static_cast<const void*>(kept.wide.c_str()) : kept.narrow.c_str();
    const auto bytes = static_cast<std::uint16_t>(isWide ? 2 * text.size() : text.size());
    kept.counted = {bytes, bytes, begin};
    add(kept.wide, std::bit_cast<std::uintptr_t>(isCounted ? &kept.counted : begin));
  }

  [[nodiscard]] std::string byTheEngine() const {
    std::array<FormatArgument, kMostArguments> a{};
    std::copy(arguments_.begin(), arguments_.end(), a.begin());
    const CString text =
        formatText(widened(format), {a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11]});
    std::string narrow;
    for (const wchar_t character : text) narrow += static_cast<char>(character);
    return narrow;
  }
  /// What a function gets as its open list of arguments; as good as this object lives.
  [[nodiscard]] va_list slots() const { return reinterpret_cast<va_list>(const_cast<std::uint64_t*>(slots_.data())); }

 private:
  struct Text {
    std::string narrow;
    std::wstring wide;
    CountedText counted{};
  };

  static std::wstring widened(const std::string& text) {
    std::wstring wide;
    for (const char character : text) wide += static_cast<wchar_t>(static_cast<unsigned char>(character));
    return wide;
  }
  template <class Value>
  void add(const Value& value, std::uint64_t slot) {
    slots_[arguments_.size()] = slot;
    arguments_.emplace_back(value);
  }

  std::vector<FormatArgument> arguments_;
  std::array<std::uint64_t, kMostArguments> slots_{};
  std::array<Text, kMostArguments> texts_{};
  std::size_t textCount_ = 0;
};

/// Makes cases at random, the same ones for the same seed.
class Maker {
 public:
  explicit Maker(std::uint32_t seed) : random_(seed) {}

  /// Adds to `made` a text with some conversions.
  void fill(Case& made) {
    const int count = below(3) + 1;
    for (int i = 0; i < count && !made.isFull(); ++i) {
      addLiteral(made);
      addConversion(made);
      // A run time that takes this one's argument otherwise would take that of the next for its width.
      const Made& last = made.conversions.back();
      if (!last.isAnyOf("cCdiouxXeEfgGaAsSp%R") || last.size == "hh" || last.size == "z" || last.size == "t" ||
          last.size == "j")
        break;
    }
    addLiteral(made);
  }

 private:
  int below(int end) { return static_cast<int>(random_() % static_cast<std::uint32_t>(end)); }
  bool oneIn(int count) { return below(count) == 0; }
  char oneOf(std::string_view letters) {
    return letters[static_cast<std::size_t>(below(static_cast<int>(letters.size())))];
  }

  void addLiteral(Case& made) {
    for (int i = below(4); i > 0; --i) {
      const char letter = static_cast<char>(' ' + below(95));
      if (letter == '%')
        made.format += "%%";
      else
        made.format += letter;
    }
  }

  std::int64_t integer() {
    const auto bits = static_cast<std::int64_t>(static_cast<std::uint64_t>(random_()) << 32U | random_());
    return oneIn(12) ? 0 : bits >> below(64);
  }

  double number() {
    switch (below(8)) {
      case 0:
        return static_cast<double>(below(20001) - 10000) / 8;  // many ties
      case 1:
        return std::bit_cast<double>(static_cast<std::uint64_t>(random_()) << 32U | random_());
      case 2:
        return oneIn(2) ? 0.0 : -0.0;
      case 3:
        return std::numeric_limits<double>::infinity() * (oneIn(2) ? 1 : -1);
      case 4:
        return static_cast<double>(integer());
      default:
        return static_cast<double>(integer()) / std::pow(10.0, below(18));
    }
  }

  std::string text() {
    std::string made;
    for (int i = below(12); i > 0; --i) made += static_cast<char>(1 + below(255));
    return made;
  }

  void addConversion(Case& made) {
    Made one;
    made.format += '%';
    for (int i = oneIn(2) ? below(4) : 0; i > 0; --i) one.flags += oneOf("-+ #0");
    made.format += one.flags;
    if (oneIn(3)) {
      one.width = oneIn(20) ? below(300) : below(24);
      if (one.width > 0 && oneIn(4)) {
        made.format += '*';
        const bool isLeft = oneIn(4);
        made.addInteger(isLeft ? -one.width : one.width);
        if (isLeft) one.flags += '-';
      } else if (one.width > 0) {
        made.format += std::to_string(one.width);
      }
    }
    if (oneIn(3)) {
      one.hasPrecision = true;
      one.precision = oneIn(20) ? below(120) : below(12);
      made.format += '.';
      if (oneIn(4)) {
        made.format += '*';
        if (oneIn(5)) one.precision = -1 - below(5);
        made.addInteger(one.precision);
      } else if (one.precision > 0 || oneIn(2)) {
        made.format += std::to_string(one.precision);
      }
    }
    one.type = oneIn(8) ? static_cast<char>(' ' + below(95)) : oneOf("cCdiouxXeEfgGaAsSp%R");
    // Behind a flag, a digit, a point or a prefix the next letter is no type: those few would be another conversion.
    if (std::string_view("-+ #0123456789.*hlLwIztjnF").find(one.type) != std::string_view::npos || one.type == 'Z')
      one.type = 'R';
    // With something between, the second percent sign may begin another conversion, which would take arguments.
    if (one.type == '%' && made.format.back() != '%') one.type = 'R';
    // A text comes before all arguments: a run time that counts those otherwise would take another one for its place.
    if (one.isAnyOf("sSZ") && made.hasArguments()) one.type = 'd';
    if (oneIn(4)) one.size = sizeFor(one);
    made.format += one.size;
    made.format += one.type;
    if (one.isAnyOf("NT")) made.format += '|';  // see their rules: an n behind them would write to memory
    addArgument(made, one);
    made.conversions.push_back(std::move(one));
  }

  /// A size that the conversion can have.
  std::string sizeFor(const Made& one) {
    static constexpr std::array<const char*, 10> kOfIntegers{"h", "l", "ll", "I", "I32", "I64", "hh", "z", "t", "j"};
    if (one.isAnyOf("diouxX")) return kOfIntegers[static_cast<std::size_t>(below(10))];
    if (one.isFloat()) return oneIn(2) ? "l" : "L";
    if (one.isAnyOf("cCsS")) return std::string(1, oneOf("hlw"));
    if (one.type == 'Z') return std::string(1, oneOf("hlw"));
    return {};
  }

  void addArgument(Case& made, Made& one) {
    if (one.isAnyOf("diouxXp")) {
      one.integer = integer();
      made.addInteger(one.integer);
    } else if (one.isFloat()) {
      one.number = number();
      made.addNumber(one.number);
    } else if (one.isAnyOf("cC")) {
      made.addInteger(1 + below(255));
    } else if (one.isAnyOf("sSZ")) {
      const bool isWide = one.size == "h" ? false : !one.size.empty() ? true : one.type == 'S';
      made.addText(text(), isWide, one.type == 'Z');
    }
  }

  std::mt19937 random_;
};

// ---------------------------------------------------------------- what isn't compared

/// What the engine prints of a number, with its precision and without field and sign.
std::string bare(const Made& one, std::chars_format form, int decimals) {
  std::string digits(1500, '\0');
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), std::abs(one.number), form, decimals).ptr;
  digits.resize(static_cast<std::size_t>(end - digits.data()));
  return digits;
}

/// The decimals of an exponent form; with g those of its digits but the first.
int decimalsOf(const Made& one) {
  const int precision = one.precision < 0 ? 6 : one.precision;
  return one.isAnyOf("gG") ? std::max(precision, 1) - 1 : precision;
}

bool hasExponent(const Made& one) {
  if (!std::isfinite(one.number)) return false;
  if (one.isAnyOf("eE")) return true;
  if (!one.isAnyOf("gG")) return false;
  const std::string digits = bare(one, std::chars_format::scientific, decimalsOf(one));
  const int exponent = std::atoi(digits.c_str() + digits.find('e') + 1);
  return exponent < -4 || exponent > decimalsOf(one);
}

/// True where what is cut off is exactly half of the last digit.
bool isTie(const Made& one) {
  if (!one.isAnyOf("eEfgG") || !std::isfinite(one.number)) return false;
  // A double that is no tie shows it within so many digits.
  constexpr int kEnough = 60;
  const int decimals = decimalsOf(one);
  std::string digits =
      bare(one, one.type == 'f' ? std::chars_format::fixed : std::chars_format::scientific, decimals + 1 + kEnough);
  digits.resize(std::min(digits.find('e'), digits.size()));
  const std::size_t cut = digits.size() - 1 - kEnough;
  return digits[cut] == '5' && digits.find_first_not_of('0', cut + 1) == std::string::npos;
}

/// A conversion that a run time prints otherwise; docs/formats.md tells the reason under the same name.
struct Rule {
  const char* name;
  bool ofMsvcrt;
  bool ofUcrt;
  bool (*holds)(const Made&);
};

const std::array kRules{
    Rule{"exponents of three digits", true, false, hasExponent},
    Rule{"numbers that are none", true, false,
         [](const Made& one) { return one.isFloat() && !std::isfinite(one.number); }},
    Rule{"kinds of no number", false, true, [](const Made& one) { return one.isFloat() && std::isnan(one.number); }},
    Rule{"ties", true, true, isTie},
    Rule{"hexadecimal numbers", true, true,
         [](const Made& one) { return one.isAnyOf("aA") && (one.has('-') || one.precision >= 0); }},
    Rule{"no precision by a star", true, true,
         [](const Made& one) { return one.isFloat() && one.hasPrecision && one.precision < 0; }},
    Rule{"characters with no room", true, true,
         [](const Made& one) { return one.isAnyOf("cC") && one.precision == 0; }},
    Rule{"pointers with a precision", true, true,
         [](const Made& one) { return one.type == 'p' && one.precision >= 0; }},
    Rule{"zeros before a precision", true, true,
         [](const Made& one) { return one.isAnyOf("diouxX") && one.has('0') && one.precision >= 0; }},
    Rule{"the zero of an octal nothing", true, true,
         [](const Made& one) {
           return one.type == 'o' && one.has('#') && one.precision == 0 && (one.integer & 0xFFFF) == 0;
         }},
    Rule{"integers of one byte", true, true, [](const Made& one) { return one.size == "hh"; }},
    Rule{"the letter N", true, false, [](const Made& one) { return one.type == 'N'; }},
    Rule{"the letter T", false, true, [](const Made& one) { return one.type == 'T'; }},
};

// ---------------------------------------------------------------- the run times

/// A run time that prints formats with lists of arguments.
class RunTime {
 public:
  RunTime() = default;
  RunTime(const RunTime&) = delete;
  RunTime& operator=(const RunTime&) = delete;
  virtual ~RunTime() = default;
  [[nodiscard]] virtual std::vector<std::string> print(const std::vector<Case>& cases) = 0;
};

/// The one that programs of this compiler are bound to, by its own fprintf: into a file, as the reports go.
class Msvcrt final : public RunTime {
 public:
  Msvcrt() {
    std::setvbuf(file_, nullptr, _IOFBF, 1 << 16);
    std::setlocale(LC_ALL, "C");  // as while a report is written; others can't print every letter
  }
  ~Msvcrt() override {
    std::setlocale(LC_ALL, former_.c_str());
    std::fclose(file_);
  }
  std::vector<std::string> print(const std::vector<Case>& cases) override {
    std::vector<std::string> texts;
    std::rewind(file_);
    for (const Case& made : cases) {
      const int count = __ms_vfprintf(file_, made.format.c_str(), made.slots());
      texts.emplace_back(static_cast<std::size_t>(std::max(count, 0)), '\0');
    }
    std::rewind(file_);
    for (std::string& text : texts) text.resize(std::fread(text.data(), 1, text.size(), file_));
    return texts;
  }

 private:
  std::FILE* file_ = std::tmpfile();
  std::string former_ = std::setlocale(LC_ALL, nullptr);
};

/// The one of newer systems.
class Ucrt final : public RunTime {
 public:
  Ucrt() {
    // It ends a program that gives it what it doesn't know.
    const auto set = reinterpret_cast<Handler (*)(Handler)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ucrtbase.dll"), "_set_invalid_parameter_handler")));
    set(&ignore);
  }
  std::vector<std::string> print(const std::vector<Case>& cases) override {
    constexpr std::uint64_t kStandardLength = 2;
    std::vector<std::string> texts;
    for (const Case& made : cases) {
      const int count =
          print_(kStandardLength, buffer_.data(), buffer_.size(), made.format.c_str(), nullptr, made.slots());
      texts.emplace_back(buffer_.data(), static_cast<std::size_t>(std::max(count, 0)));
    }
    return texts;
  }

 private:
  using Handler = void (*)(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t);
  static void ignore(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {}
  using Print = int (*)(std::uint64_t, char*, std::size_t, const char*, void*, va_list);
  Print print_ = reinterpret_cast<Print>(
      reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"ucrtbase.dll"), "__stdio_common_vsprintf")));
  std::vector<char> buffer_ = std::vector<char>(8192);
};

// ---------------------------------------------------------------- side by side

constexpr int kCases = 1'000'000;
constexpr int kBatch = 1000;

/// Puts a million cases to the engine and to a run time. Each rule must be needed: somewhere it is the only one that
/// leaves a case out, and both differ there.
void compare(RunTime& runTime, bool Rule::*of) {
  constexpr std::uint32_t kSeed = 20270301;
  Maker maker(kSeed);
  std::array<int, kRules.size()> needed{};
  int compared = 0;
  int different = 0;
  for (int done = 0; done < kCases; done += kBatch) {
    std::vector<Case> cases(kBatch);
    for (Case& made : cases) maker.fill(made);
    const std::vector<std::string> printed = runTime.print(cases);
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const std::vector<Made>& made = cases[i].conversions;
      std::vector<std::size_t> leaveOut;
      for (std::size_t rule = 0; rule < kRules.size(); ++rule)
        if (kRules[rule].*of && std::any_of(made.begin(), made.end(), kRules[rule].holds)) leaveOut.push_back(rule);
      if (leaveOut.size() > 1) continue;
      const bool isSame = cases[i].byTheEngine() == printed[i];
      if (leaveOut.size() == 1) {
        if (!isSame) ++needed[leaveOut.front()];
        continue;
      }
      ++compared;
      if (isSame || ++different > 5) continue;
      ADD_FAILURE() << "format '" << cases[i].format << "', engine '" << cases[i].byTheEngine() << "', run time '"
                    << printed[i] << "' (seed " << kSeed << ", case " << done + static_cast<int>(i) << ")";
    }
  }
  EXPECT_EQ(different, 0);
  EXPECT_GT(compared, kCases / 2);
  for (std::size_t rule = 0; rule < kRules.size(); ++rule)
    EXPECT_EQ(needed[rule] > 0, kRules[rule].*of) << kRules[rule].name;
  std::printf("%d of %d cases compared\n", compared, kCases);
}

TEST(FormatWitness, TheRunTimeOfThisCompilerPrintsTheSame) {
  Msvcrt runTime;
  compare(runTime, &Rule::ofMsvcrt);
}

TEST(FormatWitness, TheRunTimeOfNewerSystemsPrintsTheSame) {
  Ucrt runTime;
  compare(runTime, &Rule::ofUcrt);
}

/// True where a percent sign stands within a conversion, behind flags, a width or a size.
bool hasPercentWithin(std::string_view format) {
  for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at)) {
    const std::size_t type = std::min(format.find_first_not_of("-+ #0123456789.*hlLwI", at + 1), format.size());
    if (type < format.size() && format[type] == '%' && type > at + 1) return true;
    at = std::min(type + 1, format.size());
  }
  return false;
}

// What reports go through: their own text is the format, and there are no arguments. Where one takes an argument all the
// same, the engine takes zero.
TEST(FormatWitness, ReportTextsAsFormatsPrintTheSame) {
  constexpr std::string_view kLetters = "%%%% RULSk=;,&#3.d<>/'xisuf+-hl\"\xDF";
  std::mt19937 random(20270302);
  Msvcrt runTime;
  int different = 0;
  int compared = 0;
  int needed = 0;
  for (int done = 0; done < kCases; done += kBatch) {
    std::vector<Case> cases(kBatch);
    for (Case& made : cases)
      for (int i = static_cast<int>(random() % 24); i > 0; --i) made.format += kLetters[random() % kLetters.size()];
    const std::vector<std::string> printed = runTime.print(cases);
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const std::string text = formatNarrowText(cases[i].format);
      if (hasPercentWithin(cases[i].format)) {  // the rule "a percent sign within" of docs/formats.md
        if (text != printed[i]) ++needed;
        continue;
      }
      ++compared;
      if (text == printed[i] || ++different > 5) continue;
      ADD_FAILURE() << "format '" << cases[i].format << "', engine '" << text << "', run time '" << printed[i] << "'";
    }
  }
  EXPECT_EQ(different, 0);
  EXPECT_GT(needed, 0);
  EXPECT_GT(compared, kCases / 2);
  std::printf("%d of %d cases compared\n", compared, kCases);
}

}  // namespace
}  // namespace lvx::services

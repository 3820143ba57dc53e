#include "services/formatted_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <span>

#include "services/decimal_rounding.h"

namespace lvx::services {

namespace {

constexpr int kDefaultDecimals = 6;
/// Hexadecimal digits behind the point that hold every bit of a double.
constexpr int kDefaultHexDecimals = 13;
constexpr int kPointerDigits = 16;
/// Room for the largest double without decimals, a point, an exponent.
constexpr std::size_t kLargestWholePart = 330;

/// How large the argument of an integer conversion is. `long` has 32 bits there, a pointer 64.
enum class Size : std::uint8_t { Unset, Char, Short, Bits32, Bits64, Wide };

struct Conversion {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zero = false;
  int width = 0;
  /// Below 0: none was given.
  int precision = -1;
  Size size = Size::Unset;
};

/// The 64 bits of an argument as an integer of the conversion's size; sign-extended.
std::int64_t cutToSize(std::int64_t value, Size size) {
  switch (size) {
    case Size::Char:
      return static_cast<std::int8_t>(value);
    case Size::Short:
      return static_cast<std::int16_t>(value);
    case Size::Bits64:
      return value;
    default:
      return static_cast<std::int32_t>(value);
  }
}

std::uint64_t cutToUnsignedSize(std::int64_t value, Size size) {
  switch (size) {
    case Size::Char:
      return static_cast<std::uint8_t>(value);
    case Size::Short:
      return static_cast<std::uint16_t>(value);
    case Size::Bits64:
      return static_cast<std::uint64_t>(value);
    default:
      return static_cast<std::uint32_t>(value);
  }
}

/// Digits in the given base, at least `precision` of them; nothing for zero with a precision of zero.
std::string digitsOf(std::uint64_t value, int base, bool upper, int precision) {
  std::array<char, 64> buffer{};
  std::string digits;
  if (value != 0) {
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, base).ptr;
    digits.assign(buffer.data(), end);
  }
  const std::size_t least = precision < 0 ? 1 : static_cast<std::size_t>(precision);
  if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
  if (upper)
    for (char& digit : digits)
      if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
  return digits;
}

std::string finiteDigits(double magnitude, std::chars_format form, int precision) {
  std::string digits(kLargestWholePart + static_cast<std::size_t>(precision), '\0');
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), magnitude, form, precision).ptr;
  digits.resize(static_cast<std::size_t>(end - digits.data()));
  return digits;
}

/// Puts the decimal point that `#` asks for behind the digits, in front of an exponent.
void forcePoint(std::string& digits) {
  if (digits.find('.') != std::string::npos) return;
  digits.insert(std::min(digits.find_first_of("ep"), digits.size()), 1, '.');
}

void dropTrailingZeros(std::string& digits) {
  if (digits.find('.') == std::string::npos) return;
  const std::size_t end = std::min(digits.find('e'), digits.size());
  std::size_t keep = end;
  while (digits[keep - 1] == '0') --keep;
  if (digits[keep - 1] == '.') --keep;
  digits.erase(keep, end - keep);
}

std::string generalDigits(double magnitude, int precision, bool alternate) {
  const int significant = precision == 0 ? 1 : precision;
  std::string digits = finiteDigits(magnitude, std::chars_format::scientific, significant - 1);
  int exponent = 0;
  // from_chars takes no plus sign.
  const char* sign = digits.data() + digits.find('e') + 1;
  std::from_chars(*sign == '+' ? sign + 1 : sign, digits.data() + digits.size(), exponent);
  if (exponent >= -4 && exponent < significant)
    digits = finiteDigits(magnitude, std::chars_format::fixed, significant - 1 - exponent);
  if (alternate)
    forcePoint(digits);
  else
    dropTrailingZeros(digits);
  return digits;
}

/// A number that isn't one, as the runtime names it: the indefinite one is what an invalid operation gives on the
/// processors that it runs on, a negative quiet one without a payload.
std::string_view notFiniteText(double value) {
  if (std::isinf(value)) return "inf";
  constexpr std::uint64_t kIndefinite = 0xFFF8'0000'0000'0000;
  constexpr std::uint64_t kQuietBit = 0x0008'0000'0000'0000;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  if (bits == kIndefinite) return "nan(ind)";
  return (bits & kQuietBit) != 0 ? "nan" : "nan(snan)";
}

void makeUpper(std::string& text) {
  for (char& letter : text)
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
}

template <class Char>
class Formatter {
 public:
  using Text = std::basic_string<Char>;

  Formatter(std::basic_string_view<Char> format, std::span<const FormatArgument> arguments)
      : format_(format.substr(0, format.find(Char{}))), arguments_(arguments) {}

  [[nodiscard]] Text run() {
    text_.reserve(format_.size());
    while (at_ < format_.size()) {
      const std::size_t percent = std::min(format_.find(Char{'%'}, at_), format_.size());
      text_.append(format_, at_, percent - at_);
      at_ = percent + 1;
      if (percent < format_.size()) convert();
    }
    return std::move(text_);
  }

 private:
  [[nodiscard]] bool atEnd() const { return at_ >= format_.size(); }
  /// The character ahead; zero, which no format holds, at its end.
  [[nodiscard]] Char ahead() const { return atEnd() ? Char{} : format_[at_]; }
  bool skip(char wanted) {
    if (ahead() != static_cast<Char>(wanted)) return false;
    ++at_;
    return true;
  }

  // ---- arguments

  const FormatArgument* nextArgument() { return next_ < arguments_.size() ? &arguments_[next_++] : nullptr; }

  /// The next argument where it is of that kind, else the zero of the kind. Taken in either case.
  template <class Kind>
  Kind take(Kind zero = {}) {
    const FormatArgument* argument = nextArgument();
    const Kind* value = argument == nullptr ? nullptr : std::get_if<Kind>(argument);
    return value == nullptr ? zero : *value;
  }

  // ---- reading one conversion

  void convert() {
    Conversion conversion;
    readFlags(conversion);
    readWidth(conversion);
    readPrecision(conversion);
    if (!readSize(conversion) || atEnd()) return;
    print(format_[at_++], conversion);
  }

  void readFlags(Conversion& conversion) {
    for (;; ++at_) switch (ahead()) {
        case '-':
          conversion.left = true;
          break;
        case '+':
          conversion.plus = true;
          break;
        case ' ':
          conversion.blank = true;
          break;
        case '#':
          conversion.alternate = true;
          break;
        case '0':
          conversion.zero = true;
          break;
        default:
          return;
      }
  }

  [[nodiscard]] bool isDigitAhead() const { return ahead() >= Char{'0'} && ahead() <= Char{'9'}; }

  int readNumber() {
    int number = 0;
    for (; isDigitAhead(); ++at_) number = std::min(number * 10 + static_cast<int>(ahead() - Char{'0'}), kLargestField);
    return number;
  }

  /// The integer argument of a `*`.
  int takeField() {
    const auto value = static_cast<std::int32_t>(take<std::int64_t>());
    return std::clamp(value, -kLargestField, kLargestField);
  }

  void readWidth(Conversion& conversion) {
    if (skip('*')) {
      const int width = takeField();
      if (width < 0) conversion.left = true;
      conversion.width = std::abs(width);
    }
    if (isDigitAhead()) conversion.width = readNumber();
  }

  void readPrecision(Conversion& conversion) {
    if (!skip('.')) return;
    conversion.precision = 0;
    if (skip('*')) conversion.precision = std::max(takeField(), -1);
    if (isDigitAhead()) conversion.precision = readNumber();
  }

  /// False where an `I` made the conversion an unknown one.
  bool readSize(Conversion& conversion) {
    for (;;) switch (ahead()) {
        case 'h':
          ++at_;
          conversion.size = skip('h') ? Size::Char : Size::Short;
          break;
        case 'l':
          ++at_;
          conversion.size = skip('l') ? Size::Bits64 : Size::Wide;
          break;
        case 'w':
        case 'L':
          ++at_;
          conversion.size = Size::Wide;
          break;
        case 'z':
        case 't':
        case 'j':
          ++at_;
          conversion.size = Size::Bits64;
          break;
        case 'I':
          ++at_;
          if (!readBitCount(conversion)) {
            text_ += Char{'I'};
            return false;
          }
          break;
        default:
          return true;
      }
  }

  /// Behind an `I`: 64, 32, or a type that an integer of a pointer's size fits.
  bool readBitCount(Conversion& conversion) {
    const auto pair = [this](char first, char second) {
      if (at_ + 1 >= format_.size() || format_[at_] != static_cast<Char>(first) ||
          format_[at_ + 1] != static_cast<Char>(second))
        return false;
      at_ += 2;
      return true;
    };
    if (pair('3', '2')) {
      conversion.size = Size::Bits32;
      return true;
    }
    conversion.size = Size::Bits64;
    if (pair('6', '4')) return true;
    switch (ahead()) {
      case 'd':
      case 'i':
      case 'o':
      case 'u':
      case 'x':
      case 'X':
        return true;
      default:
        return false;
    }
  }

  // ---- printing one conversion

  void print(Char type, Conversion& conversion) {
    switch (type) {
      case 'd':
      case 'i':
        printSigned(conversion);
        break;
      case 'u':
        printUnsigned(conversion, 10, false);
        break;
      case 'o':
        printUnsigned(conversion, 8, false);
        break;
      case 'x':
        printUnsigned(conversion, 16, false);
        break;
      case 'X':
        printUnsigned(conversion, 16, true);
        break;
      case 'p':
        conversion.precision = kPointerDigits;
        conversion.size = Size::Bits64;
        printUnsigned(conversion, 16, true);
        break;
      case 'e':
      case 'f':
      case 'g':
      case 'a':
        printFloat(conversion, static_cast<char>(type), false);
        break;
      case 'E':
        printFloat(conversion, 'e', true);
        break;
      case 'F':
        printFloat(conversion, 'f', true);
        break;
      case 'G':
        printFloat(conversion, 'g', true);
        break;
      case 'A':
        printFloat(conversion, 'a', true);
        break;
      case 'c':
      case 'C':
        printCharacter(conversion, type == Char{'C'});
        break;
      case 'Z':
        // A counted text: its own length holds, not the precision.
        conversion.precision = -1;
        printText(conversion);
        break;
      case 's':
      case 'S':
        printText(conversion);
        break;
      case 'n':
        nextArgument();
        break;
      // `%%`, and whatever is no conversion, is its last character.
      default:
        text_ += type;
    }
  }

  void printSigned(Conversion conversion) {
    const std::int64_t value = cutToSize(take<std::int64_t>(), conversion.size);
    const auto bits = static_cast<std::uint64_t>(value);
    if (conversion.precision >= 0) conversion.zero = false;
    field(conversion, signText(value < 0, conversion),
          digitsOf(value < 0 ? 0 - bits : bits, 10, false, conversion.precision));
  }

  void printUnsigned(Conversion conversion, int base, bool upper) {
    const std::uint64_t value = cutToUnsignedSize(take<std::int64_t>(), conversion.size);
    if (conversion.precision >= 0) conversion.zero = false;
    std::string digits = digitsOf(value, base, upper, conversion.precision);
    std::string_view prefix;
    if (conversion.alternate && base == 16 && value != 0) prefix = upper ? "0X" : "0x";
    if (conversion.alternate && base == 8 && !digits.starts_with('0')) digits.insert(0, 1, '0');
    field(conversion, prefix, digits);
  }

  static std::string signText(bool isNegative, const Conversion& conversion) {
    return isNegative ? "-" : conversion.plus ? "+" : conversion.blank ? " " : "";
  }

  void printFloat(Conversion conversion, char type, bool upper) {
    const double value = take<double>();
    std::string prefix = signText(std::signbit(value), conversion);
    std::string digits;
    if (!std::isfinite(value)) {
      digits = notFiniteText(value);
      conversion.zero = false;
    } else {
      digits = floatDigits(std::abs(value), type, conversion);
      if (type == 'a') prefix += "0x";
    }
    if (upper) {
      makeUpper(prefix);
      makeUpper(digits);
    }
    field(conversion, prefix, digits);
  }

  static std::string floatDigits(double magnitude, char type, const Conversion& conversion) {
    const int least = type == 'a' ? kDefaultHexDecimals : kDefaultDecimals;
    const int precision = conversion.precision < 0 ? least : conversion.precision;
    if (type == 'g') return generalDigits(magnitude, precision, conversion.alternate);
    std::string digits = finiteDigits(magnitude,
                                      type == 'f'   ? std::chars_format::fixed
                                      : type == 'e' ? std::chars_format::scientific
                                                    : std::chars_format::hex,
                                      precision);
    if (conversion.alternate) forcePoint(digits);
    return digits;
  }

  /// `C` means a character of the other width than the format's own, a size prefix decides for itself.
  void printCharacter(const Conversion& conversion, bool isOther) {
    const auto value = static_cast<std::uint32_t>(take<std::int64_t>(' '));
    constexpr bool kIsWide = sizeof(Char) > 1;
    const bool isShort = conversion.size == Size::Short || conversion.size == Size::Char;
    const bool takesNarrow = isShort || (conversion.size != Size::Wide && kIsWide == isOther);
    const Char character = static_cast<Char>(takesNarrow ? value & 0xFF : value);
    field(conversion, {}, std::basic_string_view<Char>(&character, 1));
  }

  void printText(const Conversion& conversion) {
    CString text = take<CString>(L"(null)");
    text.resize(std::min(text.find(L'\0'), text.size()));
    if (conversion.precision >= 0) text.resize(std::min(text.size(), static_cast<std::size_t>(conversion.precision)));
    field(conversion, {}, std::wstring_view(text));
  }

  /// A field's prefix and body, filled up to its width: by blanks, or by zeros behind the prefix, texts included.
  template <class BodyChar>
  void field(const Conversion& conversion, std::string_view prefix, std::basic_string_view<BodyChar> body) {
    const std::size_t length = prefix.size() + body.size();
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t fill = width > length ? width - length : 0;
    if (!conversion.left && !conversion.zero) text_.append(fill, Char{' '});
    text_.append(prefix.begin(), prefix.end());
    if (!conversion.left && conversion.zero) text_.append(fill, Char{'0'});
    for (const BodyChar character : body) text_ += static_cast<Char>(character);
    if (conversion.left) text_.append(fill, Char{' '});
  }
  void field(const Conversion& conversion, std::string_view prefix, const std::string& body) {
    field(conversion, prefix, std::string_view(body));
  }

  std::basic_string_view<Char> format_;
  std::span<const FormatArgument> arguments_;
  std::size_t at_ = 0;
  std::size_t next_ = 0;
  Text text_;
};

}  // namespace

CString formatText(std::wstring_view format, std::initializer_list<FormatArgument> arguments) {
  return Formatter<wchar_t>(format, std::span(arguments.begin(), arguments.size())).run();
}

std::string formatNarrowText(std::string_view format) { return Formatter<char>(format, {}).run(); }

CString lengthText(double value) { return fixedText(value, 3); }

CString fixedText(double value, int decimals) {
  if (!std::isfinite(value) || decimals < 0 || decimals > kMostDecimals)
    return formatText(L"%.*f", {std::int64_t{decimals}, value});
  // Reports are made of these: no detour over a format, and none over the digits of a double where integers do.
  if (const auto rounded = roundedToDecimals(value, decimals)) {
    std::array<wchar_t, 24> text{};
    std::size_t begin = text.size();
    std::int64_t rest = *rounded;
    for (int place = 0; place <= decimals || rest > 0; ++place, rest /= 10) {
      if (place == decimals && decimals > 0) text[--begin] = L'.';
      text[--begin] = static_cast<wchar_t>(L'0' + rest % 10);
    }
    if (std::signbit(value)) text[--begin] = L'-';
    return {text.data() + begin, text.size() - begin};
  }
  std::array<char, kLargestWholePart + 9> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals).ptr;
  return {digits.data(), end};
}

}  // namespace lvx::services

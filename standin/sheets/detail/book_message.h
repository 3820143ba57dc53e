#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

/// What a process that draws a book tells the one that waits for it. Both are the same program.
namespace lvx::sheets::detail {

/// The first byte of a message.
enum class BookWord : char {
  Planning = 'p',  ///< two counts: done, total
  Planned = 'k',   ///< the book's facts
  Drawing = 'd',   ///< two counts: done, total
  File = 'f',      ///< another file begins
  Bytes = 'b',     ///< of that file
  Whole = 'w',     ///< that file is whole
  Failed = 'x',    ///< a SheetError
  NoMemory = 'm',  ///< there is none left
};

/// Puts a message together.
class MessageWriter {
 public:
  explicit MessageWriter(BookWord word) : bytes_(1, static_cast<char>(word)) {}
  template <class Number>
  requires std::is_arithmetic_v<Number> MessageWriter& put(Number number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    bytes_.append(bytes, sizeof number);
    return *this;
  }
  MessageWriter& put(std::string_view text) {
    put(text.size());
    bytes_.append(text);
    return *this;
  }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// Takes a message apart, in the order in which it was put together. Throws std::out_of_range where it ends too early.
class MessageReader {
 public:
  explicit MessageReader(std::string_view message)
      : word_(static_cast<BookWord>(message.at(0))), rest_(message.substr(1)) {}

  [[nodiscard]] BookWord word() const { return word_; }
  template <class Number>
  Number number() {
    Number number{};
    std::memcpy(&number, take(sizeof number).data(), sizeof number);
    return number;
  }
  std::string text() { return std::string(take(number<std::size_t>())); }
  [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
  std::string_view take(std::size_t size);

  BookWord word_;
  std::string_view rest_;
};

}  // namespace lvx::sheets::detail

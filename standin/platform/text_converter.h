#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace lvx::standin_platform {

/// Turns text of one encoding into another, as a rule UTF-8.
class TextConverter {
 public:
  enum class End {
    Complete,    ///< all was converted
    Invalid,     ///< a byte that the encoding doesn't have at its place, or a letter that the other one hasn't got
    Incomplete,  ///< the last character is cut off
  };

  /// By the encoding's name among those of the internet ("ISO-8859-2", "WINDOWS-1252", "UTF-16LE"), in any case of
  /// letters. "UTF-16" and "UTF-32" take the order of bytes from the byte order mark.
  explicit TextConverter(const std::string& encoding, const std::string& to = "UTF-8");
  TextConverter(const TextConverter&) = delete;
  TextConverter& operator=(const TextConverter&) = delete;
  ~TextConverter();

  /// Without it `convert` may not be called.
  [[nodiscard]] bool isKnown() const;
  /// Appends to `to`. `done` counts the bytes of `from` that were converted. Every call begins anew, and
  /// ends in the mode that an encoding of several modes begins in.
  End convert(std::string_view from, std::string& to, std::size_t& done);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

/// How reading and saving of drawings fail. Whoever handles an error asks its class and its fields; what() is for people.
///     try {
///       drawing = landxml::readDrawing(path, options);
///     } catch (const landxml::Cancelled&) {
///       return;  // as the user asked
///     } catch (const landxml::ReadError& error) {
///       show(error.reason(), error.file(), error.line());
///     }
namespace lvx::landxml {

/// What all of them share. what() is "landxml: REASON (FILE:LINE)", without ":LINE" where there is no line.
class Error : public std::runtime_error {
 public:
  /// `line` counts from 1; 0 where the error has no line.
  Error(std::string reason, std::string file, std::uint64_t line = 0);

  /// What is wrong, in words, without the place.
  [[nodiscard]] const std::string& reason() const noexcept { return reason_; }
  /// Path as the caller gave it, or the name that stands for it where a text in memory was read.
  [[nodiscard]] const std::string& file() const noexcept { return file_; }
  /// Line of the file, from 1; 0: none.
  [[nodiscard]] std::uint64_t line() const noexcept { return line_; }
  /// "REASON (FILE:LINE)": what() without the speaker, for a place that shows who speaks. `file` stands for the error's
  /// own, for a caller that had the file under another name.
  [[nodiscard]] std::string description() const { return description(file_); }
  [[nodiscard]] std::string description(const std::string& file) const;

 private:
  std::string reason_;
  std::string file_;
  std::uint64_t line_;
};

/// The drawing can't be read: no such file, not XML, not LandXML, cut off.
class ReadError : public Error {
 public:
  using Error::Error;
};

/// The drawing can't be saved; the file that stood under the target's name stands there as before.
class SaveError : public Error {
 public:
  using Error::Error;
};

/// The caller's own `progress` asked reading or saving to end; no file was changed.
class Cancelled : public Error {
 public:
  explicit Cancelled(std::string file) : Error("cancelled", std::move(file)) {}
};

}  // namespace lvx::landxml

#include "generator/text_output.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace lvx::generator {
namespace {

constexpr std::size_t kFlushSize = std::size_t{1} << 20U;
constexpr std::array<double, 10> kPowers = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

/// Room for a sign, 19 digits, the point and the zeros that a small number needs in front.
using Digits = std::array<char, 40>;

char* printFixed(Digits& digits, double value, int decimals) {
  auto units = static_cast<std::int64_t>(std::floor(value * kPowers.at(static_cast<std::size_t>(decimals)) + 0.5));
  char* end = digits.data();
  if (units < 0) {
    *end++ = '-';
    units = -units;
  }
  std::array<char, 24> plain;
  const char* plainEnd = std::to_chars(plain.data(), plain.data() + plain.size(), units).ptr;
  const int count = static_cast<int>(plainEnd - plain.data());
  const int whole = count > decimals ? count - decimals : 0;
  if (whole == 0) *end++ = '0';
  for (int i = 0; i < whole; ++i) *end++ = plain[static_cast<std::size_t>(i)];
  if (decimals == 0) return end;
  *end++ = '.';
  for (int i = count; i < decimals; ++i) *end++ = '0';
  for (int i = whole; i < count; ++i) *end++ = plain[static_cast<std::size_t>(i)];
  return end;
}

}  // namespace

double roundedTo(double value, int decimals) {
  const double power = kPowers.at(static_cast<std::size_t>(decimals));
  return std::floor(value * power + 0.5) / power;
}

TextOutput::TextOutput(const std::string& path) : file_(std::fopen(path.c_str(), "wb")), path_(path) {
  if (file_ == nullptr) throw std::runtime_error("generator: can't write " + path + ": " + std::strerror(errno));
  buffer_.reserve(kFlushSize + 4096);
}

TextOutput::~TextOutput() {
  if (file_ != nullptr) std::fclose(file_);
}

TextOutput& TextOutput::operator<<(std::string_view text) {
  append(text.data(), text.data() + text.size());
  return *this;
}

TextOutput& TextOutput::operator<<(char character) {
  append(&character, &character + 1);
  return *this;
}

TextOutput& TextOutput::integer(std::int64_t value) {
  std::array<char, 24> digits;
  append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
  return *this;
}

TextOutput& TextOutput::fixed(double value, int decimals) {
  Digits digits;
  append(digits.data(), printFixed(digits, value, decimals));
  return *this;
}

TextOutput& TextOutput::number(double value, int decimals) {
  Digits digits;
  char* end = printFixed(digits, value, decimals);
  if (decimals > 0) {
    while (end[-1] == '0') --end;
    if (end[-1] == '.') --end;
  }
  append(digits.data(), end);
  return *this;
}

TextOutput& TextOutput::hexadecimal(std::uint64_t value) {
  std::array<char, 20> digits;
  char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
  for (char* c = digits.data(); c != end; ++c) {
    if (*c >= 'a') *c = static_cast<char>(*c - 'a' + 'A');
  }
  append(digits.data(), end);
  return *this;
}

void TextOutput::finish() {
  if (file_ == nullptr) return;
  flush();
  const bool closed = std::fclose(file_) == 0;
  file_ = nullptr;
  if (failed_ || !closed) throw std::runtime_error("generator: " + path_ + " was not written whole");
}

void TextOutput::append(const char* from, const char* to) {
  buffer_.append(from, to);
  if (file_ != nullptr && buffer_.size() >= kFlushSize) flush();
}

void TextOutput::flush() {
  if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) failed_ = true;
  buffer_.clear();
}

}  // namespace lvx::generator

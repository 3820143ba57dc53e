#include "properties/table.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string_view>
#include <utility>

#include "text/number_text.h"

namespace lvx::properties {

namespace {

constexpr double kGonPerRadian = 200.0 / civil::kPi;
constexpr double kPercent = 100.0;

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }
char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

std::string numberText(double value, Form form) {
  if (std::isinf(value)) return value > 0.0 ? "∞" : "-∞";
  switch (form) {
    case Form::Whole:
      return text::fixedText(value, 0);
    case Form::Station:
      return text::stationText(value);
    case Form::Area:
      return text::fixedText(value, 2);
    case Form::Percent:
      return text::fixedText(value * kPercent);
    case Form::Gon:
      return text::fixedText(value * kGonPerRadian, 4);
    case Form::Text:
    case Form::Length:
    case Form::Factor:
      break;
  }
  return text::fixedText(value);
}

/// The digits from `at` on, leading zeros apart; `at` stands behind them.
std::string_view takeNumber(const std::string& text, std::size_t& at) {
  while (at < text.size() && text[at] == '0') ++at;
  const std::size_t first = at;
  while (at < text.size() && isDigit(text[at])) ++at;
  return std::string_view(text).substr(first, at - first);
}

template <class Key, class Less>
void sortBy(std::vector<std::pair<Key, std::uint32_t>>& keys, bool ascending, const Less& less) {
  std::stable_sort(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
    return ascending ? less(a.first, b.first) : less(b.first, a.first);
  });
}

template <class Key>
std::vector<std::uint32_t> rowsOf(const std::vector<std::pair<Key, std::uint32_t>>& keys,
                                  const std::vector<std::uint32_t>& without) {
  std::vector<std::uint32_t> rows;
  rows.reserve(keys.size() + without.size());
  for (const auto& key : keys) rows.push_back(key.second);
  rows.insert(rows.end(), without.begin(), without.end());
  return rows;
}

}  // namespace

std::string textOf(const Value& value, Form form, const Words& words) {
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const number = std::get_if<double>(&value)) return numberText(*number, form);
  if (const auto* const term = std::get_if<Term>(&value)) return words ? words(*term) : std::string();
  return {};
}

bool comesBefore(const std::string& a, const std::string& b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      const std::string_view left = takeNumber(a, i);
      const std::string_view right = takeNumber(b, j);
      if (left.size() != right.size()) return left.size() < right.size();
      if (left != right) return left < right;
      continue;
    }
    const auto left = static_cast<unsigned char>(lower(a[i++]));
    const auto right = static_cast<unsigned char>(lower(b[j++]));
    if (left != right) return left < right;
  }
  return i == a.size() && j < b.size();
}

std::vector<std::uint32_t> sorted(const Table& table, std::size_t column, bool ascending, const Words& words) {
  const auto count = static_cast<std::uint32_t>(table.rowCount);
  std::vector<std::uint32_t> without;
  if (isNumber(table.columns[column].form)) {
    std::vector<std::pair<double, std::uint32_t>> keys;
    keys.reserve(count);
    for (std::uint32_t row = 0; row < count; ++row) {
      const Value value = table.cell(row, column);
      const auto* const number = std::get_if<double>(&value);
      if (number != nullptr && !std::isnan(*number))
        keys.emplace_back(*number, row);
      else
        without.push_back(row);
    }
    sortBy(keys, ascending, std::less<>());
    return rowsOf(keys, without);
  }
  std::vector<std::pair<std::string, std::uint32_t>> keys;
  keys.reserve(count);
  for (std::uint32_t row = 0; row < count; ++row) {
    std::string text = textOf(table.cell(row, column), Form::Text, words);
    if (text.empty())
      without.push_back(row);
    else
      keys.emplace_back(std::move(text), row);
  }
  sortBy(keys, ascending, comesBefore);
  return rowsOf(keys, without);
}

}  // namespace lvx::properties

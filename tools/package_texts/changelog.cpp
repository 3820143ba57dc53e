#include "package_texts/changelog.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace lvx::package_texts {

namespace {

/// "Sun, 22 Nov 2026 00:00:00 +0000" of "2026-11-22"; empty where that is no day.
std::string mailDate(const std::string& day) {
  constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  int year = 0;
  unsigned month = 0;
  unsigned dayOfMonth = 0;
  int length = 0;
  if (std::sscanf(day.c_str(), "%4d-%2u-%2u%n", &year, &month, &dayOfMonth, &length) != 3 ||
      static_cast<std::size_t>(length) != day.size())
    return {};
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(dayOfMonth)};
  if (!date.ok()) return {};
  const std::chrono::weekday weekday{std::chrono::sys_days(date)};
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s, %02u %s %d 00:00:00 +0000", kDays.at(weekday.c_encoding()), dayOfMonth,
                kMonths.at(month - 1), year);
  return text.data();
}

/// Appends words to a list item that is broken before 80 columns. `column`: where its last line ends.
void addWords(std::string& text, std::size_t& column, const std::string& words) {
  constexpr std::size_t kWidest = 79;
  std::istringstream source(words);
  for (std::string word; source >> word;) {
    const auto letters = static_cast<std::size_t>(std::count_if(
        word.begin(), word.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
    if (column + 1 + letters > kWidest) {
      text += "\n   ";
      column = 3;
    }
    text += " " + word;
    column += 1 + letters;
  }
}

}  // namespace

std::string debianChangelog(const std::string& markdown, const std::string& package, const std::string& maintainer,
                            const std::string& today) {
  std::string text;
  std::string trailer;
  std::size_t column = 0;  // of the list item that is open
  const auto endItem = [&] {
    if (column > 0) text += "\n";
    column = 0;
  };
  std::istringstream lines(markdown);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("## ")) {
      const auto comma = line.find(", ");
      if (comma == std::string::npos) throw std::runtime_error("the change log's heading '" + line + "' has no date");
      const std::string version = line.substr(3, comma - 3);
      const std::string when = line.substr(comma + 2);
      const bool isReleased = when != "not released yet";
      const std::string date = mailDate(isReleased ? when : today);
      if (date.empty()) throw std::runtime_error("the change log's heading '" + line + "' has no date");
      endItem();
      text.append(trailer).append(package).append(" (").append(version).append(") ");
      text.append(isReleased ? "unstable" : "UNRELEASED").append("; urgency=medium\n\n");
      trailer = "\n -- " + maintainer + "  " + date + "\n\n";
    } else if (!trailer.empty() && line.starts_with("- ")) {
      endItem();
      text += "  *";
      column = 3;
      addWords(text, column, line.substr(2));
    } else if (column > 0 && line.starts_with("  ")) {
      addWords(text, column, line);
    } else if (!trailer.empty() && !line.empty()) {
      throw std::runtime_error("the change log's line '" + line + "' is neither heading nor list item");
    }
  }
  if (trailer.empty()) throw std::runtime_error("the change log has no release");
  endItem();
  trailer.pop_back();
  return text + trailer;
}

}  // namespace lvx::package_texts

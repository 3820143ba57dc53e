#include "sheets/book.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <chrono>
#include <string_view>
#include <system_error>

namespace lvx::sheets {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLeastDigits = 2;

std::string endingOf(const fs::path& target) {
  std::string ending = target.extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return ending;
}

}  // namespace

bool isBookName(const fs::path& target) {
  const std::string ending = endingOf(target);
  return ending == ".pdf" || ending == ".svg";
}

canvas::FileFormat formatOf(const fs::path& target) {
  return endingOf(target) == ".pdf" ? canvas::FileFormat::Pdf : canvas::FileFormat::Svg;
}

std::vector<fs::path> bookFiles(const fs::path& target, std::size_t sheets) {
  if (formatOf(target) == canvas::FileFormat::Pdf || sheets == 1) return {target};
  std::vector<fs::path> files;
  const std::size_t digits = std::max<std::size_t>(kLeastDigits, std::to_string(sheets).size());
  for (std::size_t i = 1; i <= sheets; ++i) {
    std::string number = std::to_string(i);
    number.insert(0, digits - number.size(), '0');
    fs::path name = target.stem();
    name += "-" + number;
    name += target.extension();
    files.push_back(target.parent_path() / name);
  }
  return files;
}

std::optional<fs::path> bookOfSheet(const fs::path& file) {
  if (endingOf(file) != ".svg") return std::nullopt;
  const std::string stem = file.stem().string();
  const std::size_t dash = stem.rfind('-');
  if (dash == std::string::npos || dash == 0) return std::nullopt;
  const std::string_view digits = std::string_view(stem).substr(dash + 1);
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
  if (!isNumber || digits.size() < kLeastDigits || digits.size() > std::to_string(kMostPictures).size() ||
      number == 0 || number > kMostPictures)
    return std::nullopt;
  fs::path name = stem.substr(0, dash);
  name += file.extension();
  return file.parent_path() / name;
}

namespace {

std::string twoDigits(unsigned number) { return (number < 10 ? "0" : "") + std::to_string(number); }

}  // namespace

std::string dayText(std::int64_t seconds) {
  using namespace std::chrono;
  const year_month_day day(floor<days>(sys_seconds(std::chrono::seconds(seconds))));
  return std::to_string(static_cast<int>(day.year())) + "-" + twoDigits(static_cast<unsigned>(day.month())) + "-" +
         twoDigits(static_cast<unsigned>(day.day()));
}

std::string momentText(std::int64_t seconds) {
  constexpr std::int64_t kDay = 86400;
  const auto rest = static_cast<unsigned>(((seconds % kDay) + kDay) % kDay);
  return dayText(seconds) + "T" + twoDigits(rest / 3600) + ":" + twoDigits(rest / 60 % 60) + ":" +
         twoDigits(rest % 60) + "Z";
}

}  // namespace lvx::sheets

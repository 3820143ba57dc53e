#include "properties/report_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <memory>
#include <utility>

namespace lvx::properties {

namespace {

using Cells = std::vector<std::string>;

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Letters, of which UTF-8 has several bytes: columns are counted by them.
std::vector<std::size_t> lettersOf(std::string_view line) {
  std::vector<std::size_t> starts;
  starts.reserve(line.size() + 1);
  for (std::size_t i = 0; i < line.size(); ++i)
    if ((static_cast<unsigned char>(line[i]) & 0xC0U) != 0x80U) starts.push_back(i);
  starts.push_back(line.size());
  return starts;
}

/// A line whose parts are asked for by letters.
class Line {
 public:
  explicit Line(std::string_view text) : text_(text), starts_(lettersOf(text)) {}
  [[nodiscard]] std::size_t size() const { return starts_.size() - 1; }
  [[nodiscard]] std::string_view part(std::size_t from, std::size_t to) const {
    from = std::min(from, size());
    to = std::clamp(to, from, size());
    return text_.substr(starts_[from], starts_[to] - starts_[from]);
  }
  [[nodiscard]] std::string cell(std::size_t from, std::size_t to) const {
    return std::string(trimmed(part(from, to)));
  }

 private:
  std::string_view text_;
  std::vector<std::size_t> starts_;
};

// ---------------------------------------------------------------- values

struct Number {
  double value = 0.0;
  std::size_t decimals = 0;
  bool isStation = false;
};

std::optional<Number> numberOf(std::string_view text) {
  if (text.empty()) return std::nullopt;
  Number number;
  const std::size_t point = text.find('.');
  number.decimals = point == std::string_view::npos ? 0 : text.size() - point - 1;
  std::string digits(text);
  // "1+020.500", below zero "-1-020.500"
  const bool isNegative = text.front() == '-';
  const std::size_t sign = text.find_first_of("+-", 1);
  if (sign != std::string_view::npos) {
    constexpr std::size_t kMetres = 3;
    const std::size_t metres = std::min(point, text.size()) - std::min(sign + 1, std::min(point, text.size()));
    if (metres != kMetres || (text[sign] == '-') != isNegative) return std::nullopt;
    digits.erase(sign, 1);
    number.isStation = true;
  }
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number.value, std::chars_format::fixed);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// What a column is by its cells: one of numbers has them, and at most one word beside.
class ColumnKind {
 public:
  void add(const std::string& cell) {
    if (cell.empty()) return;
    const auto number = numberOf(cell);
    if (!number) {
      if (word_.empty()) word_ = cell;
      isText_ = isText_ || cell != word_;
      return;
    }
    (number->isStation ? hasStations_ : hasNumbers_) = true;
    if (decimals_ && *decimals_ != number->decimals) areDecimalsMixed_ = true;
    decimals_ = number->decimals;
  }
  [[nodiscard]] Form form() const {
    if (isText_ || !decimals_ || (hasStations_ && hasNumbers_)) return Form::Text;
    if (hasStations_) return Form::Station;
    if (areDecimalsMixed_) return Form::Factor;
    constexpr std::size_t kOfAreas = 2;
    return *decimals_ == 0 ? Form::Whole : *decimals_ == kOfAreas ? Form::Area : Form::Factor;
  }

 private:
  std::string word_;
  bool isText_ = false;
  bool hasNumbers_ = false;
  bool hasStations_ = false;
  bool areDecimalsMixed_ = false;
  std::optional<std::size_t> decimals_;
};

Value valueOf(const std::string& cell, Form form) {
  if (cell.empty()) return {};
  if (isNumber(form))
    if (const auto number = numberOf(cell)) return number->value;
  return cell;
}

/// A table over cells that are cut out of their lines when they are asked for.
ReportTable tableOver(std::vector<std::string> headings, std::shared_ptr<const std::vector<std::string>> lines,
                      std::function<Cells(const std::string&)> cut) {
  ReportTable report;
  std::vector<ColumnKind> kinds(headings.size());
  for (const std::string& line : *lines) {
    const Cells cells = cut(line);
    for (std::size_t i = 0; i < kinds.size(); ++i) kinds[i].add(cells[i]);
  }
  for (const ColumnKind& kind : kinds) report.table.columns.push_back({Term::Name, kind.form()});
  report.headings = std::move(headings);
  report.table.rowCount = lines->size();
  report.table.cell = [lines = std::move(lines), cut = std::move(cut), columns = report.table.columns](
                          std::size_t row, std::size_t column) {
    return valueOf(cut((*lines)[row])[column], columns[column].form);
  };
  return report;
}

// ---------------------------------------------------------------- the GLS report

/// Where the bars of a line of rules stand.
std::vector<std::size_t> barsOf(std::string_view rules) {
  std::vector<std::size_t> bars;
  for (std::size_t i = 0; i < rules.size(); ++i)
    if (rules[i] == '|' || rules[i] == '+') bars.push_back(i);
  return bars;
}

std::optional<ReportTable> glsTable(const std::vector<std::string_view>& lines, std::size_t first) {
  constexpr std::size_t kHeadLines = 5;  // border, groups, rules, heads, rules
  if (lines.size() < first + kHeadLines) return std::nullopt;
  const std::vector<std::size_t> bars = barsOf(lines[first + 4]);
  if (bars.size() < 2 || !lines[first + 4].starts_with("|-")) return std::nullopt;
  const Line groups(lines[first + 1]);
  const Line heads(lines[first + 3]);
  std::vector<std::string> headings;
  for (std::size_t i = 0; i + 1 < bars.size(); ++i) {
    // The group's own bars: the nearest ones around the column.
    std::size_t from = bars[i];
    std::size_t to = bars[i + 1];
    while (from > 0 && groups.part(from, from + 1) != "|") --from;
    while (to < groups.size() && groups.part(to, to + 1) != "|") ++to;
    const std::string group = groups.cell(from + 1, to);
    const std::string head = heads.cell(bars[i] + 1, bars[i + 1]);
    headings.push_back(group.empty() || head.empty() ? group + head : group + " " + head);
  }
  auto rows = std::make_shared<std::vector<std::string>>();
  for (std::size_t i = first + kHeadLines; i < lines.size(); ++i) {
    const std::string_view line = lines[i];
    if (!line.starts_with('|') || line.starts_with("|-")) continue;
    rows->emplace_back(line);
  }
  const auto cut = [bars](const std::string& text) {
    const Line line(text);
    // A name of ours is never wider than its column; where a line is longer all the same, its end keeps the columns.
    const std::size_t more = line.size() > bars.back() + 1 ? line.size() - bars.back() - 1 : 0;
    std::size_t widened = 0;  // the first column whose bar isn't where it should be
    while (widened + 1 < bars.size() && line.part(bars[widened + 1], bars[widened + 1] + 1) == "|") ++widened;
    Cells cells;
    for (std::size_t i = 0; i + 1 < bars.size(); ++i)
      cells.push_back(line.cell(bars[i] + 1 + (i > widened ? more : 0), bars[i + 1] + (i >= widened ? more : 0)));
    return cells;
  };
  return tableOver(std::move(headings), std::move(rows), cut);
}

// ---------------------------------------------------------------- the points report

/// Right ends of the heads, which stand apart by two blanks at least.
std::vector<std::size_t> endsOf(const Line& heads) {
  std::vector<std::size_t> ends;
  for (std::size_t i = 0; i < heads.size(); ++i) {
    const bool isBlank = heads.part(i, i + 1) == " ";
    const bool endsHere = !isBlank && (i + 1 == heads.size() || heads.part(i + 1, i + 3) == "  ");
    if (endsHere) ends.push_back(i + 1);
  }
  return ends;
}

std::optional<ReportTable> pointsTable(const std::vector<std::string_view>& lines, std::size_t first) {
  constexpr std::size_t kColumns = 10;
  // In front of the name and behind the texts stand numbers.
  constexpr std::size_t kNumbersInFront = 4;
  constexpr std::size_t kNumbersBehind = 2;
  if (lines.size() <= first) return std::nullopt;
  const Line heads(lines[first]);
  const std::vector<std::size_t> ends = endsOf(heads);
  if (ends.size() != kColumns) return std::nullopt;
  std::vector<std::string> headings;
  for (std::size_t i = 0; i < kColumns; ++i) headings.push_back(heads.cell(i == 0 ? 0 : ends[i - 1], ends[i]));
  auto rows = std::make_shared<std::vector<std::string>>();
  for (std::size_t i = first + 1; i < lines.size(); ++i)
    if (!trimmed(lines[i]).empty()) rows->emplace_back(lines[i]);
  const auto cut = [ends](const std::string& text) {
    const Line line(text);
    Cells cells(kColumns);
    const std::size_t more = line.size() > ends.back() ? line.size() - ends.back() : 0;
    std::size_t from = 0;
    for (std::size_t i = 0; i < kColumns; ++i) {
      // A text wider than its column pushes those behind it: numbers in front stay, those at the end count from there.
      if (more != 0 && i == kNumbersInFront) {
        const std::size_t to = ends[kColumns - kNumbersBehind - 1] + more;
        cells[i] = line.cell(from, to);
        i = kColumns - kNumbersBehind - 1;
        from = to;
        continue;
      }
      const std::size_t to = ends[i] + (i > kNumbersInFront ? more : 0);
      cells[i] = line.cell(from, to);
      from = to;
    }
    return cells;
  };
  return tableOver(std::move(headings), std::move(rows), cut);
}

// ---------------------------------------------------------------- the profile projection

std::optional<ReportTable> projectionTable(const std::vector<std::string_view>& lines, std::size_t first) {
  struct Row {
    std::size_t block;
    double offset;
    double elevation;
  };
  struct Block {
    std::string name;
    Value station;
  };
  const auto blocks = std::make_shared<std::vector<Block>>();
  const auto rows = std::make_shared<std::vector<Row>>();
  bool isHead = true;
  for (std::size_t i = first; i < lines.size(); ++i) {
    if (lines[i] == "&") {
      isHead = true;
      continue;
    }
    if (isHead) {
      // The name may end in anything: the station is the last word.
      const std::string_view line = lines[i];
      const std::size_t at = line.rfind("   ");
      const auto station = at == std::string_view::npos ? std::nullopt : numberOf(trimmed(line.substr(at)));
      if (station && station->isStation)
        blocks->push_back({std::string(trimmed(line.substr(0, at))), station->value});
      else
        blocks->push_back({std::string(trimmed(line)), Value()});
      isHead = false;
      continue;
    }
    const std::string_view line = trimmed(lines[i]);
    const std::size_t gap = line.find(' ');
    if (gap == std::string_view::npos) return std::nullopt;
    const auto offset = numberOf(line.substr(0, gap));
    const auto elevation = numberOf(trimmed(line.substr(gap)));
    if (!offset || !elevation || offset->isStation || elevation->isStation) return std::nullopt;
    rows->push_back({blocks->size() - 1, offset->value, elevation->value});
  }
  if (rows->empty()) return std::nullopt;
  ReportTable report;
  report.table.columns = {{Term::SampleLine, Form::Text},
                          {Term::Station, Form::Station},
                          {Term::Offset, Form::Length},
                          {Term::Elevation, Form::Length}};
  report.table.rowCount = rows->size();
  report.table.cell = [blocks, rows](std::size_t row, std::size_t column) -> Value {
    const Row& point = (*rows)[row];
    const Block& block = (*blocks)[point.block];
    if (column == 0) return block.name.empty() ? Value() : Value(block.name);
    if (column == 1) return block.station;
    return column == 2 ? point.offset : point.elevation;
  };
  return report;
}

}  // namespace

std::optional<ReportTable> reportTableOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  const auto isStars = [](std::string_view line) {
    return !line.empty() && line.find_first_not_of('*') == std::string_view::npos;
  };
  if (lines.empty() || !isStars(lines.front())) return std::nullopt;
  const auto head = std::find_if(lines.begin() + 1, lines.end(), isStars);
  const auto begin = head == lines.end() ? head : std::find_if(head + 1, lines.end(), [](std::string_view line) {
    return !trimmed(line).empty();
  });
  if (begin == lines.end()) return std::nullopt;
  const auto first = static_cast<std::size_t>(begin - lines.begin());
  if (lines[first].starts_with("/-")) return glsTable(lines, first);
  if (auto points = pointsTable(lines, first)) return points;
  return projectionTable(lines, first);
}

}  // namespace lvx::properties

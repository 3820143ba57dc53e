#include "properties/go_to.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "text/number_text.h"

namespace lvx::properties {

namespace {

bool isSpace(char letter) { return letter == ' ' || letter == '\t'; }
bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string lower(std::string_view text) {
  std::string low(text);
  for (char& letter : low)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  return low;
}

/// A plain number with a point or a comma for its decimals.
std::optional<double> numberOf(std::string_view text) {
  std::string digits(trimmed(text));
  if (digits.starts_with('+')) digits.erase(0, 1);
  if (digits.empty() || digits.find_first_not_of("-.,0123456789") != std::string::npos) return std::nullopt;
  std::replace(digits.begin(), digits.end(), ',', '.');
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

/// The parts between the separators, without those that are empty.
template <class IsSeparator>
std::vector<std::string_view> split(std::string_view text, IsSeparator isSeparator) {
  std::vector<std::string_view> parts;
  std::size_t first = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && !isSeparator(i)) continue;
    if (const std::string_view part = trimmed(text.substr(first, i - first)); !part.empty()) parts.push_back(part);
    first = i + 1;
  }
  return parts;
}

/// A line of numbers in its parts: at semicolons or slashes, at commas with a space behind them, at spaces, at commas.
std::vector<std::string_view> partsOf(std::string_view text) {
  if (text.find_first_of(";/") != std::string_view::npos)
    return split(text, [&](std::size_t i) { return text[i] == ';' || text[i] == '/'; });
  const auto isParting = [&](std::size_t i) { return text[i] == ',' && i + 1 < text.size() && isSpace(text[i + 1]); };
  for (std::size_t i = 0; i < text.size(); ++i)
    if (isParting(i)) return split(text, isParting);
  if (std::any_of(text.begin(), text.end(), isSpace))
    return split(text, [&](std::size_t i) { return isSpace(text[i]); });
  const auto commas = std::count(text.begin(), text.end(), ',');
  // Two numbers with decimal commas and a comma between them.
  constexpr std::ptrdiff_t kOfTwoDecimals = 3;
  if (commas == kOfTwoDecimals) {
    const std::size_t middle = text.find(',', text.find(',') + 1);
    return split(text, [&](std::size_t i) { return i == middle; });
  }
  if (commas == 1 || text.find('.') != std::string_view::npos)
    return split(text, [&](std::size_t i) { return text[i] == ','; });
  return {text};
}

/// `1+020.5`, `-0-020.5`, `1020.5`.
std::optional<double> stationNumber(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  const std::size_t sign = text.find_first_of("+-", isNegative ? 1 : 0);
  if (sign == std::string_view::npos || sign == 0) return numberOf(text);
  const std::string_view kilometres = text.substr(isNegative ? 1 : 0, sign - (isNegative ? 1 : 0));
  const std::string_view metres = text.substr(sign + 1);
  constexpr double kMetres = 1000.0;
  // Below zero both signs are "-"; "1-020" is no station.
  if ((text[sign] == '-') != isNegative || metres.empty() || !isDigit(metres.front())) return std::nullopt;
  if (kilometres.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const auto whole = numberOf(kilometres);
  const auto rest = numberOf(metres);
  if (!whole || !rest) return std::nullopt;
  const double station = *whole * kMetres + *rest;
  return isNegative ? -station : station;
}

template <class Visit>
void eachAlignment(const civil::Drawing& drawing, const Visit& visit) {
  for (const civil::Site& site : drawing.sites)
    for (const auto& alignment : site.alignments) visit(*alignment);
  for (const auto& alignment : drawing.siteless.alignments) visit(*alignment);
}

/// Collects what fits by how well it does.
class Finder {
 public:
  Finder(const civil::Drawing& drawing, const civil::DrawingIndex& index, std::size_t most)
      : drawing_(drawing), index_(index), most_(most) {}

  void findPoint(std::string_view text) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size())
      if (const civil::Point* const point = index_.pointByNumber(number)) addPoint(*point, kWhole);
    const std::string wanted = lower(text);
    std::size_t found = 0;
    for (const civil::Point& point : drawing_.points) {
      const std::string_view name = point.texts.name();
      if (name.size() < wanted.size() || lower(name.substr(0, wanted.size())) != wanted) continue;
      addPoint(point, name.size() == wanted.size() ? kWhole : kBeginning);
      if (++found >= most_) break;
    }
  }

  void findObjects(std::string_view text) {
    wanted_ = lower(text);
    for (const civil::Site& site : drawing_.sites) offer(site);
    eachAlignment(drawing_, [this](const civil::AlignmentObject& alignment) {
      offer(alignment);
      for (const civil::ProfileObject& profile : alignment.profiles) offer(profile);
      for (const civil::SampleLineGroup& group : alignment.sampleLineGroups) {
        offer(group);
        for (const civil::SampleLine& line : group.lines) offer(line);
      }
    });
    for (const civil::SurfaceObject& surface : drawing_.surfaces) offer(surface);
    for (const civil::PointGroup& group : drawing_.pointGroups) offer(group);
    for (const civil::Corridor& corridor : drawing_.corridors) offer(corridor);
  }

  /// The best of them in front, those that fit alike in the order of the drawing.
  [[nodiscard]] std::vector<GoTo> take() {
    std::stable_sort(found_.begin(), found_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<GoTo> places;
    for (auto& [rank, place] : found_) {
      if (places.size() == most_) break;
      places.push_back(std::move(place));
    }
    return places;
  }

  void add(int rank, GoTo place) { found_.emplace_back(rank, std::move(place)); }

  // How well something fits.
  static constexpr int kCoordinates = 0;
  static constexpr int kWhole = 1;
  static constexpr int kStation = 2;
  static constexpr int kBeginning = 3;
  static constexpr int kPart = 4;

 private:
  void addPoint(const civil::Point& point, int rank) {
    for (const auto& [other, place] : found_)
      if (place.handle == point.handle) return;
    GoTo place;
    place.kind = GoTo::Kind::Point;
    place.text = point.texts.name().empty() ? text::fixedText(point.number, 0) : std::string(point.texts.name());
    place.handle = point.handle;
    place.place = {point.position.x, point.position.y};
    add(rank, std::move(place));
  }

  template <class Object>
  void offer(const Object& object) {
    const std::string name = lower(object.name);
    const std::size_t at = name.find(wanted_);
    if (at == std::string::npos) return;
    // Sample lines come by the ten thousand; no more of one rank than are shown.
    const int rank = name.size() == wanted_.size() ? kWhole : at == 0 ? kBeginning : kPart;
    if (offered_[rank - kWhole]++ >= most_) return;
    GoTo place;
    place.text = object.name;
    place.handle = object.handle;
    add(rank, std::move(place));
  }

  const civil::Drawing& drawing_;
  const civil::DrawingIndex& index_;
  std::size_t most_;
  std::string wanted_;
  std::size_t offered_[kPart - kWhole + 1] = {};
  std::vector<std::pair<int, GoTo>> found_;
};

/// The alignment whose name stands at the begin or the end of `text`, the longest of such names, and the text without it.
struct Named {
  const civil::AlignmentObject* alignment = nullptr;
  std::string_view rest;
};
Named namedIn(const civil::Drawing& drawing, std::string_view text) {
  Named named{nullptr, text};
  const std::string low = lower(text);
  std::size_t longest = 0;
  eachAlignment(drawing, [&](const civil::AlignmentObject& alignment) {
    const std::string name = lower(alignment.name);
    if (name.size() <= longest || name.size() >= low.size()) return;
    std::string_view rest;
    if (low.starts_with(name) && isSpace(low[name.size()]))
      rest = text.substr(name.size());
    else if (low.ends_with(name) && isSpace(low[low.size() - name.size() - 1]))
      rest = text.substr(0, text.size() - name.size());
    if (rest.empty() || !stationOf(rest)) return;
    longest = name.size();
    named = {&alignment, rest};
  });
  return named;
}

std::string writtenStation(const civil::StationOffset& place) {
  std::string text = text::stationText(place.station);
  if (place.offset != 0.0) text += ", " + text::shortText(place.offset);
  return text;
}

}  // namespace

std::optional<civil::Vec2> coordinatesOf(std::string_view text) {
  const std::vector<std::string_view> parts = partsOf(trimmed(text));
  constexpr std::size_t kWithElevation = 3;
  if (parts.size() < 2 || parts.size() > kWithElevation) return std::nullopt;
  for (const std::string_view part : parts)
    if (!numberOf(part)) return std::nullopt;
  return civil::Vec2{*numberOf(parts[0]), *numberOf(parts[1])};
}

std::optional<civil::StationOffset> stationOf(std::string_view text) {
  text = trimmed(text);
  if (const auto alone = stationNumber(text)) {
    // "120,5" is a station with a decimal comma, "1+020,5" too.
    return civil::StationOffset{*alone, 0.0};
  }
  const std::vector<std::string_view> parts = partsOf(text);
  if (parts.size() != 2) return std::nullopt;
  const auto station = stationNumber(parts[0]);
  const auto offset = numberOf(parts[1]);
  if (!station || !offset) return std::nullopt;
  return civil::StationOffset{*station, *offset};
}

GoToAnswer understand(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                      const civil::AlignmentObject* chosen, std::string_view text, std::size_t most) {
  GoToAnswer answer;
  text = trimmed(text);
  if (text.empty()) {
    answer.trouble = GoToTrouble::Empty;
    return answer;
  }
  Finder finder(drawing, index, most);
  // A sign between kilometres and metres makes a station of what could be coordinates.
  const Named named = namedIn(drawing, text);
  const auto station = stationOf(named.rest);
  const bool isWrittenAsStation = named.alignment != nullptr || named.rest.find('+', 1) != std::string_view::npos ||
                                  (named.rest.front() == '-' && named.rest.find('-', 1) != std::string_view::npos &&
                                   station && named.rest.find_first_of(",; /\t") == std::string_view::npos);
  if (const auto place = isWrittenAsStation ? std::nullopt : coordinatesOf(text)) {
    GoTo found;
    found.kind = GoTo::Kind::Coordinates;
    found.text = text::shortText(place->x) + "; " + text::shortText(place->y);
    found.place = *place;
    finder.add(Finder::kCoordinates, std::move(found));
  }
  finder.findPoint(text);
  finder.findObjects(text);
  if (station) {
    answer.alignment = named.alignment != nullptr ? named.alignment : chosen;
    if (answer.alignment == nullptr) {
      answer.trouble = GoToTrouble::NoAlignment;
    } else if (const auto pose = answer.alignment->geometry.pointLocation(station->station, station->offset)) {
      GoTo found;
      found.kind = GoTo::Kind::Station;
      found.text = (named.alignment != nullptr ? named.alignment->name + " " : "") + writtenStation(*station);
      found.alignment = answer.alignment;
      found.station = station->station;
      found.offset = station->offset;
      found.place = pose->point;
      finder.add(isWrittenAsStation ? Finder::kCoordinates : Finder::kStation, std::move(found));
    } else {
      answer.trouble = GoToTrouble::OutsideStation;
    }
  }
  answer.places = finder.take();
  if (!answer.places.empty())
    answer.trouble = GoToTrouble::None;
  else if (answer.trouble == GoToTrouble::None)
    answer.trouble = GoToTrouble::NothingFits;
  return answer;
}

}  // namespace lvx::properties

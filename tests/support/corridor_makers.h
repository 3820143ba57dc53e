#pragma once

#include <algorithm>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "civil/corridor.h"

/// Short text into corridor regions and back.
///
///     "0..100 | 0 Pave+Top(ETW:-4/-0.1 0 ETW:4/-0.1) | 50? Culvert | 75* Pave(-4 0 4) | 100 Pave(-4 0 4)"
///
/// First the bounds, then what stands at each station: a given section, a computed one (*), or only the wish for one
/// (?), each with its label if it has one; then its parts: codes, and in brackets their points as a row of offsets, each
/// with its codes before it and its elevation behind it where it isn't 0.
namespace lvx::civil::test {

inline std::string numberText(double value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(12);
  text << value;
  return text.str();
}

inline double numberOf(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  double value = 0.0;
  if (!(stream >> value) || !stream.eof()) throw std::invalid_argument("corridor text: " + text);
  return value;
}

inline std::vector<std::string> splitAt(const std::string& text, char mark) {
  std::vector<std::string> pieces;
  std::istringstream stream(text);
  for (std::string piece; std::getline(stream, piece, mark);)
    if (!piece.empty()) pieces.push_back(piece);
  return pieces;
}

inline SectionPoint pointFrom(const std::string& text) {
  SectionPoint point;
  const std::size_t colon = text.find(':');
  if (colon != std::string::npos) point.codes = splitAt(text.substr(0, colon), '+');
  const std::string place = colon == std::string::npos ? text : text.substr(colon + 1);
  const std::size_t slash = place.find('/');
  point.offset = numberOf(place.substr(0, slash));
  if (slash != std::string::npos) point.elevation = numberOf(place.substr(slash + 1));
  return point;
}

/// Everything behind a station: "Culvert Pave(-4 0 4) Kerb(4 4/0.1)"
inline void readSection(const std::string& text, CorridorSection& section) {
  for (std::size_t at = text.find_first_not_of(' '); at != std::string::npos; at = text.find_first_not_of(' ', at)) {
    const std::size_t bracket = text.find('(', at);
    const std::size_t blank = std::min(text.find(' ', at), text.size());
    if (blank < bracket) {
      section.label = text.substr(at, blank - at);
      at = blank;
      continue;
    }
    const std::size_t end = text.find(')', bracket);
    if (end == std::string::npos) throw std::invalid_argument("corridor text: " + text);
    SectionPart part;
    part.codes = splitAt(text.substr(at, bracket - at), '+');
    for (const std::string& point : splitAt(text.substr(bracket + 1, end - bracket - 1), ' '))
      part.points.push_back(pointFrom(point));
    section.parts.push_back(std::move(part));
    at = end + 1;
  }
}

inline Region regionFrom(const std::string& text) {
  Region region;
  const std::vector<std::string> items = splitAt(text, '|');
  const std::size_t dots = items.at(0).find("..");
  std::string end = items[0].substr(dots + 2);
  end.erase(end.find_last_not_of(' ') + 1);
  region.startStation = numberOf(items[0].substr(0, dots));
  region.endStation = numberOf(end);
  for (std::size_t i = 1; i < items.size(); ++i) {
    std::istringstream words(items[i]);
    std::string station;
    words >> station;
    std::string rest;
    std::getline(words, rest);
    const char mark = station.back();
    if (mark == '*' || mark == '?') station.pop_back();
    CorridorSection section;
    section.station = numberOf(station);
    if (mark == '*') section.origin = SectionOrigin::Computed;
    readSection(rest, section);
    region.stations.insert(section.station);
    if (mark == '?')
      region.pendingLabels.emplace(section.station, section.label);
    else
      region.sections.push_back(std::move(section));
  }
  return region;
}

inline Baseline baselineFrom(const std::vector<std::string>& regions) {
  Baseline baseline;
  for (const std::string& text : regions) baseline.regions.push_back(regionFrom(text));
  return baseline;
}

inline std::string textOf(const CorridorSection& section) {
  const auto joined = [](const std::vector<std::string>& codes) {
    std::string text;
    for (const std::string& code : codes) text += (text.empty() ? "" : "+") + code;
    return text;
  };
  std::string text = numberText(section.station) + (section.origin == SectionOrigin::Computed ? "*" : "");
  if (!section.label.empty()) text += " " + section.label;
  for (const SectionPart& part : section.parts) {
    text += " " + joined(part.codes) + "(";
    for (const SectionPoint& point : part.points) {
      if (&point != &part.points.front()) text += " ";
      if (!point.codes.empty()) text += joined(point.codes) + ":";
      text += numberText(point.offset);
      if (point.elevation != 0.0) text += "/" + numberText(point.elevation);
    }
    text += ")";
  }
  return text;
}

inline std::string textOf(const Region& region) {
  std::string text = numberText(region.startStation) + ".." + numberText(region.endStation);
  auto section = region.sections.begin();
  for (const double station : region.stations) {
    text += " | ";
    if (section != region.sections.end() && section->station <= station + kSameStation) {
      text += textOf(*section++);
      continue;
    }
    text += numberText(station) + "?";
    const auto label = region.pendingLabels.find(station);
    if (label != region.pendingLabels.end() && !label->second.empty()) text += " " + label->second;
  }
  return text;
}

}  // namespace lvx::civil::test

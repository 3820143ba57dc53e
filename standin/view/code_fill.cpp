#include "view/code_fill.h"

#include <algorithm>
#include <array>

namespace lvx::view {

namespace {

struct Word {
  std::string_view word;  ///< in small letters
  SectionUse use;
};

// The first word that stands in a code decides: what is part of another word comes behind it.
constexpr Word kWords[] = {
    {"subbase", SectionUse::Subbase},
    {"sub_base", SectionUse::Subbase},
    {"sub-base", SectionUse::Subbase},
    {"sub base", SectionUse::Subbase},
    {"subgrade", SectionUse::Subbase},
    {"datum", SectionUse::Subbase},
    {"planum", SectionUse::Subbase},
    {"frostschutz", SectionUse::Subbase},
    {"capping", SectionUse::Subbase},
    {"topsoil", SectionUse::Topsoil},
    {"oberboden", SectionUse::Topsoil},
    {"humus", SectionUse::Topsoil},
    {"sidewalk", SectionUse::Sidewalk},
    {"footway", SectionUse::Sidewalk},
    {"footpath", SectionUse::Sidewalk},
    {"walk", SectionUse::Sidewalk},
    {"gehweg", SectionUse::Sidewalk},
    {"radweg", SectionUse::Sidewalk},
    {"cycle", SectionUse::Sidewalk},
    {"curb", SectionUse::Curb},
    {"kerb", SectionUse::Curb},
    {"gutter", SectionUse::Curb},
    {"bord", SectionUse::Curb},
    {"rinne", SectionUse::Curb},
    {"barrier", SectionUse::Barrier},
    {"guardrail", SectionUse::Barrier},
    {"schutz", SectionUse::Barrier},
    {"median", SectionUse::Median},
    {"mittelstreifen", SectionUse::Median},
    {"ditch", SectionUse::Ditch},
    {"swale", SectionUse::Ditch},
    {"graben", SectionUse::Ditch},
    {"mulde", SectionUse::Ditch},
    {"deckschicht", SectionUse::Pavement},
    {"fahrbahndecke", SectionUse::Pavement},
    {"asphaltdecke", SectionUse::Pavement},
    {"betondecke", SectionUse::Pavement},
    {"deck", SectionUse::Structure},
    {"bridge", SectionUse::Structure},
    {"wall", SectionUse::Structure},
    {"abutment", SectionUse::Structure},
    {"mauer", SectionUse::Structure},
    {"br\xc3\xbc"
     "cke",
     SectionUse::Structure},
    {"shoulder", SectionUse::Shoulder},
    {"verge", SectionUse::Shoulder},
    {"bankett", SectionUse::Shoulder},
    {"unpaved", SectionUse::Shoulder},
    {"pave", SectionUse::Pavement},
    {"asphalt", SectionUse::Pavement},
    {"binder", SectionUse::Pavement},
    {"wearing", SectionUse::Pavement},
    {"belag", SectionUse::Pavement},
    {"fahrbahn", SectionUse::Pavement},
    {"lane", SectionUse::Pavement},
    {"base", SectionUse::Base},
    {"tragschicht", SectionUse::Base},
    {"gravel", SectionUse::Base},
    {"cut", SectionUse::CutSlope},
    {"einschnitt", SectionUse::CutSlope},
    {"fill", SectionUse::FillSlope},
    {"embankment", SectionUse::FillSlope},
    {"damm", SectionUse::FillSlope},
    {"slope", SectionUse::Slope},
    {"daylight", SectionUse::Slope},
    {"b\xc3\xb6schung", SectionUse::Slope},
    {"boeschung", SectionUse::Slope},
    {"existing", SectionUse::Ground},
    {"ground", SectionUse::Ground},
    {"gel\xc3\xa4nde", SectionUse::Ground},
    {"top", SectionUse::Pavement},
};

constexpr FillLook kLooks[] = {
    {{0x9a, 0x9d, 0xa3}, {0x5c, 0x60, 0x68}, {0x4a, 0x4d, 0x52}, {0xa8, 0xac, 0xb4}, Hatch::None},     // Pavement
    {{0xe6, 0xc8, 0x9a}, {0x76, 0x5a, 0x32}, {0x8a, 0x5f, 0x1e}, {0xd8, 0xae, 0x70}, Hatch::Rising},   // Base
    {{0xf1, 0xe3, 0xb5}, {0x5f, 0x55, 0x30}, {0x8c, 0x7a, 0x2a}, {0xc9, 0xb8, 0x6a}, Hatch::Falling},  // Subbase
    {{0xb9, 0xc7, 0xd8}, {0x48, 0x5b, 0x74}, {0x3d, 0x55, 0x72}, {0x9d, 0xb6, 0xd4}, Hatch::Crossed},  // Curb
    {{0xf3, 0xc1, 0xb2}, {0x7a, 0x44, 0x38}, {0x9b, 0x4a, 0x36}, {0xe4, 0x9a, 0x86}, Hatch::Level},    // Sidewalk
    {{0xd8, 0xcf, 0xc4}, {0x5b, 0x53, 0x49}, {0x6d, 0x60, 0x50}, {0xb9, 0xac, 0x9b}, Hatch::Level},    // Shoulder
    {{0xc9, 0xdf, 0xb4}, {0x47, 0x5f, 0x33}, {0x4e, 0x73, 0x2c}, {0xa3, 0xc9, 0x7f}, Hatch::Upright},  // Median
    {{0xb5, 0xdd, 0xe6}, {0x2f, 0x5f, 0x6b}, {0x1e, 0x6a, 0x7c}, {0x7c, 0xc6, 0xd8}, Hatch::Level},    // Ditch
    {{0xd6, 0xc2, 0xe6}, {0x5a, 0x44, 0x70}, {0x66, 0x44, 0x8a}, {0xbd, 0x9d, 0xd9}, Hatch::Upright},  // Barrier
    {{0xcc, 0xcc, 0xe0}, {0x50, 0x50, 0x70}, {0x4c, 0x4c, 0x80}, {0xa5, 0xa5, 0xcf}, Hatch::Crossed},  // Structure
    {{0xf5, 0xc7, 0xa0}, {0x7c, 0x4a, 0x1e}, {0xa3, 0x4f, 0x08}, {0xf0, 0xa0, 0x60}, Hatch::Falling},  // CutSlope
    {{0xb6, 0xd3, 0xf0}, {0x24, 0x4f, 0x7c}, {0x11, 0x57, 0x9a}, {0x7f, 0xb6, 0xec}, Hatch::Rising},   // FillSlope
    {{0xbf, 0xdc, 0xae}, {0x3c, 0x5e, 0x2c}, {0x3f, 0x77, 0x22}, {0x95, 0xc8, 0x78}, Hatch::Rising},   // Slope
    {{0xc8, 0xb0, 0x98}, {0x5e, 0x45, 0x2e}, {0x6e, 0x4a, 0x24}, {0xc4, 0x9c, 0x74}, Hatch::Upright},  // Topsoil
    {{0xdd, 0xd5, 0xbc}, {0x55, 0x4f, 0x3c}, {0x75, 0x6b, 0x48}, {0xb8, 0xae, 0x88}, Hatch::Falling},  // Ground
};
static_assert(std::size(kLooks) + 1 == kSectionUses);

struct Pair {
  Colour light;
  Colour dark;
  Colour strokes;
  Colour darkStrokes;
};
constexpr Pair kOthers[] = {
    {{0xe3, 0xb7, 0xcf}, {0x6d, 0x38, 0x55}, {0x8c, 0x2e, 0x62}, {0xd8, 0x8c, 0xb8}},
    {{0xb4, 0xe0, 0xd0}, {0x2a, 0x5e, 0x4c}, {0x16, 0x72, 0x54}, {0x72, 0xcf, 0xad}},
    {{0xe9, 0xe1, 0x9b}, {0x62, 0x5b, 0x1e}, {0x7c, 0x70, 0x08}, {0xd6, 0xca, 0x5c}},
    {{0xc4, 0xc4, 0xee}, {0x45, 0x45, 0x7e}, {0x40, 0x40, 0xa0}, {0x9f, 0x9f, 0xe8}},
};
constexpr Hatch kOtherHatches[] = {Hatch::Crossed, Hatch::Upright, Hatch::Level};

constexpr FillLook kCut{{0xfb, 0xd9, 0xc4}, {0x5a, 0x30, 0x18}, {0xd5, 0x5e, 0x00}, {0xff, 0x8c, 0x40}, Hatch::Falling};
constexpr FillLook kFill{{0xcd, 0xe2, 0xf5}, {0x17, 0x3a, 0x5a}, {0x00, 0x72, 0xb2}, {0x56, 0xb4, 0xe9}, Hatch::Rising};

// FNV-1a: the same everywhere, unlike the library's own hash.
std::uint32_t hashOf(std::string_view text) noexcept {
  std::uint32_t hash = 2166136261U;
  for (const char letter : text) hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619U;
  return hash ^ (hash >> 15U);
}

/// Of UTF-8 byte by byte: the second byte of a capital umlaut stands for nothing else behind the first one, which both
/// have.
char small(char letter) noexcept {
  const auto byte = static_cast<unsigned char>(letter);
  const bool isCapital = letter >= 'A' && letter <= 'Z';
  const bool isOfUmlaut = byte == 0x84 || byte == 0x96 || byte == 0x9c;
  return isCapital || isOfUmlaut ? static_cast<char>(byte + 0x20) : letter;
}

bool holds(std::string_view code, std::string_view word) noexcept {
  return std::search(code.begin(), code.end(), word.begin(), word.end(),
                     [](char a, char b) { return small(a) == b; }) != code.end();
}

}  // namespace

SectionUse useOf(std::string_view code) noexcept {
  for (const Word& word : kWords)
    if (holds(code, word.word)) return word.use;
  return SectionUse::Other;
}

SectionUse useOf(std::span<const std::string> codes) noexcept {
  for (const std::string& code : codes)
    if (const SectionUse use = useOf(std::string_view(code)); use != SectionUse::Other) return use;
  return SectionUse::Other;
}

FillLook lookOf(SectionUse use, std::string_view code) {
  if (use != SectionUse::Other) return kLooks[static_cast<std::size_t>(use)];
  const std::uint32_t hash = hashOf(code);
  const Pair& pair = kOthers[hash % std::size(kOthers)];
  return {pair.light, pair.dark, pair.strokes, pair.darkStrokes,
          kOtherHatches[hash / std::size(kOthers) % std::size(kOtherHatches)]};
}

FillLook cutFillLook(bool isFill) { return isFill ? kFill : kCut; }

std::vector<CodeFill> fillsOf(std::span<const SectionCorridor> corridors) {
  std::vector<CodeFill> fills;
  for (const SectionCorridor& corridor : corridors) {
    for (const SectionShape& part : corridor.parts) {
      if (part.points.size() < 2) continue;
      const auto known = std::find_if(part.codes.begin(), part.codes.end(), [](const std::string& code) {
        return useOf(std::string_view(code)) != SectionUse::Other;
      });
      std::string code;
      if (known != part.codes.end())
        code = *known;
      else if (!part.codes.empty())
        code = part.codes.front();
      auto fill = std::find_if(fills.begin(), fills.end(), [&](const CodeFill& other) { return other.code == code; });
      if (fill == fills.end())
        fill = fills.insert(fills.end(), {code, lookOf(useOf(std::string_view(code)), code), {}, {}});
      Line line;
      for (const SectionPlace& point : part.points) line.push_back(point.place);
      if (part.isClosed && line.size() > 2 && line.front() == line.back()) line.pop_back();
      if (part.isClosed && line.size() > 2)
        fill->areas.push_back(std::move(line));
      else
        fill->bands.push_back(std::move(line));
    }
  }
  return fills;
}

}  // namespace lvx::view

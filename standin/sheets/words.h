#pragma once

#include <string_view>

namespace lvx::sheets {

/// The words of the sheets in one language.
struct Words {
  std::string_view drawing;
  std::string_view alignment;
  std::string_view crossSections;
  std::string_view longSection;
  std::string_view station;
  std::string_view stations;
  std::string_view scale;
  std::string_view scaleBoth;  ///< along / up
  std::string_view date;
  std::string_view sheet;
  std::string_view of;
  std::string_view datum;
  std::string_view offset;
  std::string_view elevation;
  std::string_view design;
  std::string_view difference;
  std::string_view curvature;
  std::string_view cut;  ///< its area in a section
  std::string_view fill;
  std::string_view nothingHere;
};

/// Of "en" or "de"; any other language gets the English ones.
[[nodiscard]] const Words& wordsOf(std::string_view language);

}  // namespace lvx::sheets

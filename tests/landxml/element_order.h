#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The order of elements that LandXML's schemas give to what saving writes.
namespace lvx::landxml::testing {

/// Names the first element that stands where no schema has it; empty where there is none. Looks at elements that programs
/// get wrong: sections, profiles, points, Features.
inline std::string misplacedElement(const std::string& text) {
  // The children of an element in their order; those behind a bar may mix.
  static const std::map<std::string, std::vector<std::vector<std::string>>> kOrders{
      {"CrossSects", {{"CrossSect"}, {"Feature"}}},
      {"CrossSect", {{"CrossSectSurf"}, {"DesignCrossSectSurf"}, {"Feature"}}},
      {"CrossSectSurf", {{"PntList2D"}, {"Feature"}}},
      {"DesignCrossSectSurf", {{"CrossSectPnt"}, {"Feature"}}},
      {"Profile", {{"ProfAlign", "ProfSurf"}, {"Feature"}}},
      {"ProfSurf", {{"PntList2D"}, {"Feature"}}},
      {"ProfAlign", {{"PVI", "ParaCurve", "UnsymParaCurve", "CircCurve"}, {"Feature"}}},
      {"CgPoints", {{"CgPoint"}, {"CgPoints"}, {"Feature"}}},
      {"CgPoint", {}},
      {"Alignments", {{"Alignment"}, {"Feature"}}},
      {"Feature", {{"Property"}, {"DocFileRef"}, {"Feature"}}},
      {"Alignment",
       {{"Start", "CoordGeom", "AlignPIs", "Cant", "StaEquation", "Profile", "CrossSects", "Superelevation",
         "Feature"}}},
  };
  struct Open {
    std::string name;
    std::size_t rank = 0;
  };
  std::vector<Open> open;
  for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
    if (text.compare(at, 4, "<!--") == 0) {
      at = text.find("-->", at);
      continue;
    }
    if (text[at + 1] == '?') continue;
    const std::size_t end = text.find('>', at);
    if (text[at + 1] == '/') {
      if (open.empty()) return "an end without a start";
      open.pop_back();
      continue;
    }
    std::string name = text.substr(at + 1, text.find_first_of(" \t\r\n/>", at) - at - 1);
    name = name.substr(name.find(':') + 1);
    if (!open.empty()) {
      if (const auto order = kOrders.find(open.back().name); order != kOrders.end()) {
        std::size_t rank = 0;
        const auto holds = [&](const std::vector<std::string>& names) {
          for (const std::string& n : names)
            if (n == name) return true;
          return false;
        };
        while (rank < order->second.size() && !holds(order->second[rank])) ++rank;
        if (rank == order->second.size()) return name + " in " + open.back().name;
        if (rank < open.back().rank) return name + " behind what follows it in " + open.back().name;
        open.back().rank = rank;
      }
    }
    if (text[end - 1] != '/') open.push_back({name, 0});
  }
  return open.empty() ? "" : "no end of " + open.back().name;
}

}  // namespace lvx::landxml::testing

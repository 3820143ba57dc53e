#include <cstdint>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "generator/bulk_drawing.h"
#include "generator/scaled_drawing.h"
#include "generator/valley_road.h"

/// lvx-make-drawing: the example drawing, and drawings of any size for benchmarks and tests.
int main(int argc, char** argv) {
  CLI::App app{
      "Makes LandXML drawings: equal options give the same bytes on every machine.\n"
      "Example: lvx-make-drawing --triangles 5000000 --lines 1000 --shuffled --out big.xml"};
  app.allow_windows_style_options(false);
  lvx::generator::DrawingSize size;
  std::string path;
  std::string example;
  app.add_option("--out", path, "File to write")->required();
  const std::map<std::string, lvx::generator::ValleyPart> parts{
      {"valley-road", lvx::generator::ValleyPart::Whole},
      {"valley-road/road", lvx::generator::ValleyPart::Road},
      {"valley-road/ground", lvx::generator::ValleyPart::Ground},
      {"valley-road/points", lvx::generator::ValleyPart::Points}};
  std::string bulk;
  std::uint64_t megabytes = 40;
  std::vector<std::string> kinds;
  for (const auto& kind : lvx::generator::bulkKinds()) kinds.emplace_back(kind.name);
  app.add_option("--example", example, "Write this example, or a part of it, instead of a drawing of the sizes below")
      ->check(CLI::IsMember(&parts));
  app.add_option("--bulk", bulk, "Write a drawing of one kind of thing instead")->check(CLI::IsMember(kinds));
  app.add_option("--megabytes", megabytes, "Size of that drawing, about");
  app.add_option("--triangles", size.triangles, "Triangles of the surface")->check(CLI::Range(1ULL, 1ULL << 32U));
  app.add_option("--lines", size.sampleLines, "Sample lines");
  app.add_option("--points", size.points, "Survey points, all in one group");
  app.add_option("--elements", size.elements, "Horizontal elements")->check(CLI::Range(1U, 10'000'000U));
  app.add_option("--vertical-curves", size.verticalCurves, "Intersection points with a curve");
  app.add_option("--corridors", size.corridors, "Corridors");
  app.add_option("--baselines", size.baselines, "Baselines of each corridor");
  app.add_option("--corridor-sections", size.corridorSections, "Sections of each baseline");
  app.add_flag("--shuffled", size.shuffled, "Number the surface's points and triangles without locality");
  app.add_option("--seed", size.seed, "Another seed gives another ground and other points");
  app.get_formatter()->column_width(32);
  CLI11_PARSE(app, argc, argv);

  try {
    lvx::generator::TextOutput out(path);
    if (!example.empty())
      lvx::generator::writeValleyRoad(out, parts.at(example));
    else if (!bulk.empty())
      lvx::generator::writeBulkDrawing(out, bulk, megabytes * 1'000'000);
    else
      lvx::generator::writeScaledDrawing(out, size);
    out.finish();
  } catch (const std::exception& error) {
    std::cerr << "lvx-make-drawing: " << error.what() << '\n';
    return 1;
  }
  return 0;
}

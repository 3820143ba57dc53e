#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include "generator/scaled_drawing.h"
#include "generator/valley_road.h"

/// lvx-make-drawing: the example drawing, and drawings of any size for benchmarks and tests.
int main(int argc, char** argv) {
  CLI::App app{
      "Makes LandXML drawings: equal options give the same bytes on every machine.\n"
      "Example: lvx-make-drawing --triangles 5000000 --lines 1000 --shuffled --out big.xml"};
  lvx::generator::DrawingSize size;
  std::string path;
  std::string example;
  app.add_option("--out", path, "File to write")->required();
  app.add_option("--example", example, "Write this example instead of a drawing of the sizes below")
      ->check(CLI::IsMember({"valley-road"}));
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
    if (example.empty()) {
      lvx::generator::writeScaledDrawing(out, size);
    } else {
      lvx::generator::writeValleyRoad(out);
    }
    out.finish();
  } catch (const std::exception& error) {
    std::cerr << "lvx-make-drawing: " << error.what() << '\n';
    return 1;
  }
  return 0;
}

#include "landxml/detail/surface_reader.h"

#include <utility>

#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"
#include "standin_platform/crew.h"

namespace lvx::landxml::detail {

namespace {

void reportFaults(Context& context, Node where, const std::string& speaker, const TinCollector& tin) {
  const TinCollector::Faults& faults = tin.faults;
  struct Row {
    std::size_t count;
    const char* one;
    const char* many;
  };
  const Row rows[] = {
      {faults.pointsWithoutId, "point without a usable id left out", "points without a usable id left out"},
      {faults.repeatedIds, "point with an id given before left out", "points with ids given before left out"},
      {faults.pointsWithoutElevation, "point without an elevation left out", "points without an elevation left out"},
      {faults.unreadablePoints, "unreadable point left out", "unreadable points left out"},
      {faults.facesWithMissingPoints, "face whose points aren't all there left out",
       "faces whose points aren't all there left out"},
      {tin.faces.repeating, "face that names a point twice left out", "faces that name a point twice left out"},
      {faults.unreadableFaces, "unreadable face left out", "unreadable faces left out"},
      {faults.repairedSigns, "point whose sign stood apart from its number was put together",
       "points whose signs stood apart from their numbers were put together"},
      {faults.unknownElements, "other item among its points or faces passed over",
       "other items among its points or faces passed over"},
  };
  std::string text;
  for (const Row& row : rows) {
    if (row.count == 0) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(row.count) + " " + (row.count == 1 ? row.one : row.many);
  }
  if (!text.empty()) {
    if (!tin.faults.firstText.empty()) {
      text += " (first in line " + std::to_string(tin.faults.firstLine) + ": " + tin.faults.firstText + ")";
    }
    context.warn(where, speaker + ": " + text);
  }
  if (!tin.faces.invisible.empty()) {
    context.note(where, speaker + ": " + std::to_string(tin.faces.invisible.size()) +
                            (tin.faces.invisible.size() == 1 ? " invisible face isn't" : " invisible faces aren't") +
                            " part of the surface");
  }
}

void noteSourceData(Context& context, Node where, const std::string& speaker, const SourceDataCounts& counts) {
  std::string text;
  const auto add = [&](std::size_t count, const char* one, const char* many) {
    if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + (count == 1 ? one : many);
  };
  add(counts.breaklines, "breakline", "breaklines");
  add(counts.contours, "contour", "contours");
  add(counts.boundaries, "boundary", "boundaries");
  if (text.empty()) return;
  const bool isOne = counts.breaklines + counts.contours + counts.boundaries == 1;
  context.note(where, speaker + ": " + text + (isOne ? " isn't" : " aren't") + " read; only triangles count");
}

/// A point by reference, which lies in its place already, among points in the file's order of axes.
void addAsInFile(const Context& context, TinCollector& tin, std::int64_t id, civil::Vec3 place) {
  if (context.areAxesSwapped()) std::swap(place.x, place.y);
  tin.addPoint(id, place.y, place.x, place.z);
}

void moveIntoPlace(const Context& context, std::vector<civil::Vec3>& points, double lengthFactor) {
  if (context.areAxesSwapped()) {
    for (civil::Vec3& point : points) std::swap(point.x, point.y);
  }
  if (lengthFactor == 1.0) return;
  for (civil::Vec3& point : points) {
    for (double* const length : {&point.x, &point.y, &point.z}) *length *= lengthFactor;
  }
}

}  // namespace

void readSurfaces(Context& context, ScannedDocument& scanned, double lengthFactor, const ReadOptions& options,
                  const std::function<void()>& goOn) {
  standin_platform::Crew crew(options.threads);
  const auto byCrew = [&](std::size_t count, const std::function<void(std::size_t)>& piece) { crew.run(count, piece); };
  eachChild(context.root, "Surfaces", [&](Node collection) {
    eachChild(collection, "Surface", [&](Node node) {
      civil::SurfaceObject& surface = context.drawing.surfaces.emplace_back();
      surface.name = attributeText(node, "name");
      surface.description = attributeText(node, "desc");
      surface.handle = context.ticket(node, property(feature(node, "lvx_object"), "handle"));
      const Context::Subject subject(context, surface.handle);
      const std::string speaker = "surface '" + surface.name + "'";
      eachChild(node, "SourceData", [&](Node source) {
        const auto found = scanned.sourceData.find(static_cast<std::size_t>(source.place()));
        if (found != scanned.sourceData.end()) noteSourceData(context, source, speaker, found->second);
      });
      bool hasDefinition = false;
      bool isFilled = false;
      eachChild(node, "Definition", [&](Node definition) {
        hasDefinition = true;
        const auto found = scanned.definitions.find(static_cast<std::size_t>(definition.place()));
        if (found == scanned.definitions.end()) return;
        TinCollector tin = std::move(found->second);
        scanned.definitions.erase(found);
        if (isFilled) {
          context.warn(definition, speaker + ": has a second Definition, which isn't read");
          return;
        }
        for (const auto& [id, name] : tin.references) {
          const PlacedPoint placed = context.placeByName(name);
          const std::size_t line = context.lineOf(definition);
          const std::string who = "P " + std::to_string(id) + ": ";
          if (!placed.isPlaced())
            tin.note(&TinCollector::Faults::unreadablePoints, line, who + placed.problem);
          else if (!placed.elevation)
            tin.note(&TinCollector::Faults::pointsWithoutElevation, line, who + "no elevation");
          else
            addAsInFile(context, tin, id, {placed.plan.x, placed.plan.y, *placed.elevation});
        }
        tin.addDeferred();
        reportFaults(context, definition, speaker, tin);
        isFilled = !tin.faces.triangles.empty();
        if (!isFilled) return;
        goOn();
        moveIntoPlace(context, tin.points, lengthFactor);
        constexpr std::size_t kManyTriangles = 50'000;  // what takes threads longer to start than to do
        const bool isLarge = tin.faces.triangles.size() >= kManyTriangles;
        surface.surface = civil::TinSurface(std::move(tin.points), std::move(tin.faces.triangles),
                                            isLarge ? civil::RunPieces(byCrew) : civil::RunPieces(civil::inOrder),
                                            options.groundSearch);
        const auto counts = surface.surface.counts();
        if (counts.degenerate > 0) {
          context.note(definition, speaker + ": " + std::to_string(counts.degenerate) +
                                       (counts.degenerate == 1 ? " triangle has" : " triangles have") +
                                       " no area in plan; there is no ground on " +
                                       (counts.degenerate == 1 ? "it" : "them"));
        }
        if (counts.overlappingEdges > 0) {
          context.warn(definition, speaker + ": " + std::to_string(counts.overlappingEdges) +
                                       (counts.overlappingEdges == 1 ? " edge has" : " edges have") +
                                       " more than two triangles; all are kept");
        }
      });
      if (!hasDefinition)
        context.warn(node, speaker + ": has no Definition and is empty");
      else if (!isFilled)
        context.warn(node, speaker + ": has no visible triangle and is empty");
    });
  });
}

}  // namespace lvx::landxml::detail

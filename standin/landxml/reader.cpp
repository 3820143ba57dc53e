#include "landxml/reader.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "civil/drawing_files.h"
#include "civil/sibling_names.h"
#include "landxml/detail/compressed_source.h"
#include "landxml/detail/context.h"
#include "landxml/detail/corridor_reader.h"
#include "landxml/detail/file_saving.h"
#include "landxml/detail/geometry_reader.h"
#include "landxml/detail/ground_filter.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/point_reader.h"
#include "landxml/detail/profile_reader.h"
#include "landxml/detail/scanner.h"
#include "landxml/detail/section_reader.h"
#include "landxml/detail/source.h"
#include "landxml/detail/surface_reader.h"
#include "landxml/detail/trace.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml {

using namespace detail;

namespace {

/// The sites of a drawing by their names.
class SitesByName {
 public:
  explicit SitesByName(Context& context) : context_(context) {}
  /// The site of that name, a new one where there was none; valid until the next new one.
  civil::Site& siteNamed(const std::string& name, Node position, const std::optional<std::string>& handle) {
    std::vector<civil::Site>& sites = context_.drawing.sites;
    const auto [place, isNew] = places_.try_emplace(name, sites.size());
    if (isNew) {
      sites.emplace_back().name = name;
      sites.back().handle = context_.ticket(position, handle);
    }
    return sites[place->second];
  }

 private:
  Context& context_;
  std::unordered_map<std::string, std::size_t> places_;
};

/// Our own list of sites, which also holds the empty ones.
void readSiteList(Context& context, SitesByName& sites) {
  eachChild(context.root, "Project", [&](Node project) {
    eachChild(feature(project, "lvx_sites"), "Feature", [&](Node node) {
      if (attribute(node, "code") != "lvx_site") return;
      const std::string name = featureName(node);
      if (name.empty()) {
        context.warn(node, "a site without a name is left out");
        return;
      }
      civil::Site& site = sites.siteNamed(name, node, property(node, "handle"));
      if (site.description.empty()) site.description = property(node, "desc").value_or("");
    });
  });
}

std::vector<civil::StationEquation> readEquations(Context& context, Node alignment, const std::string& speaker) {
  std::vector<civil::StationEquation> equations;
  eachChild(alignment, "StaEquation", [&](Node node) {
    const std::string who = speaker + ": StaEquation " + std::to_string(equations.size() + 1);
    // Never applied, so nothing of it is worth more than a note.
    const auto station = [&](const char* name, const char* otherwise) {
      return context.number(node, name, who, {otherwise, civil::Severity::Note});
    };
    const auto internal = station("staInternal", "the equation is left out");
    const auto ahead = station("staAhead", "the equation is left out");
    if (!internal || !ahead) {
      const bool isMissing = attribute(node, "staInternal").empty() || attribute(node, "staAhead").empty();
      if (isMissing) context.note(node, who + ": lacks staInternal or staAhead; left out");
      return;
    }
    equations.push_back({*internal, *ahead, station("staBack", "the equation is kept without it"),
                         attribute(node, "staIncrement") != "decreasing"});
  });
  return equations;
}

/// Tells which elements are passed over: of each name how many there are, what they hold, and where the first stands.
void noteUnread(Context& context, Node parent, const std::string& speaker,
                std::initializer_list<std::string_view> known) {
  struct Unread {
    std::string_view name;
    Node first;
    std::size_t count = 0;
    std::size_t content = 0;
  };
  std::vector<Unread> unread;  // in the order of the file
  std::unordered_map<std::string_view, std::size_t> places;
  eachElement(parent, [&](Node node) {
    const std::string_view name = localName(node);
    if (std::find(known.begin(), known.end(), name) != known.end()) return;
    const auto [place, isNew] = places.try_emplace(name, unread.size());
    if (isNew) unread.push_back({.name = name, .first = node});
    Unread& its = unread[place->second];
    ++its.count;
    eachElement(node, [&](Node) { ++its.content; });
  });
  for (const Unread& u : unread) context.note(u.first, speaker + unreadText(u.name, u.count, u.content));
}

/// What the file holds at its root besides the collections that the scan passed over and told.
void noteUnreadOfRoot(Context& context) {
  noteUnread(context, context.root, "",
             {"Units", "CoordinateSystem", "Project", "Application", "Amendment", "DocFileRef", "FeatureDictionary",
              "Feature", "CgPoints", "Alignments", "Surfaces", "Roadways", "Parcels", "PipeNetworks", "Survey",
              "PlanFeatures", "GradeModel", "Monuments"});
}

/// Corridors come from Roadways and from sections alone: `records` are those that one may name, all where the file
/// `hasRoadways`.
void readAlignment(Context& context, Node node, civil::Site& site, bool hasRoadways,
                   std::vector<AlignmentRecord>& records) {
  auto object = std::make_unique<civil::AlignmentObject>();
  object->name = attributeText(node, "name");
  object->description = attributeText(node, "desc");
  const std::string speaker = "alignment '" + object->name + "'";
  Context::Subject subject(context);
  const auto start = context.number(node, "staStart", speaker, {"0 is assumed", civil::Severity::Error});
  if (!start && attribute(node, "staStart").empty()) {
    context.warn(node, speaker + ": has no start station; 0 is assumed");
  }
  auto geometry = readGeometry(context, node, speaker, start.value_or(0.0));
  if (!geometry) return;
  object->geometry = std::move(*geometry);
  if (auto equations = readEquations(context, node, speaker); !equations.empty())
    object->stationEquations = std::move(equations);

  const auto given = property(feature(node, "lvx_object"), "handle");
  object->handle = context.ticket(node, given);
  subject.is(object->handle);
  object->profiles = readProfiles(context, node, speaker);

  noteUnread(context, node, speaker + ": ",
             {"CoordGeom", "AlignPIs", "Profile", "CrossSects", "StaEquation", "Feature"});

  std::size_t number = 0;
  eachChild(node, "CrossSects", [&](Node sections) {
    ++number;
    if (kindOf(sections) == SectionsKind::Corridor) return;
    object->sampleLineGroups.push_back(readSampleLines(context, sections, *object, speaker, number));
  });
  if (hasRoadways || child(node, "CrossSects"))
    records.push_back({object.get(), Context::parseHandle(given).value_or(0)});
  site.alignments.push_back(std::move(object));
}

std::vector<AlignmentRecord> readAlignments(Context& context, SitesByName& sites) {
  // All sites first: a later one must not move those that alignments already stand in.
  eachChild(context.root, "Alignments", [&](Node collection) {
    const std::string name = attributeText(collection, "name");
    if (!name.empty()) sites.siteNamed(name, collection, std::nullopt);
  });
  std::vector<AlignmentRecord> records;
  const bool hasRoadways = static_cast<bool>(child(context.root, "Roadways"));
  eachChild(context.root, "Alignments", [&](Node collection) {
    const std::string name = attributeText(collection, "name");
    civil::Site& site = name.empty() ? context.drawing.siteless : sites.siteNamed(name, collection, std::nullopt);
    eachChild(collection, "Alignment", [&](Node node) { readAlignment(context, node, site, hasRoadways, records); });
  });
  return records;
}

civil::Drawing readScanned(ScannedDocument& scanned, std::uint64_t total, const std::string& name,
                           const ReadOptions& options, Trace* trace) {
  civil::Drawing drawing;
  drawing.path = name;
  drawing.diagnostics = std::move(scanned.diagnostics);
  Context context(drawing, scanned.document, options.swapAxes, trace);
  const auto goOn = [&] {
    if (options.progress && !options.progress({total, total})) throw Cancelled(name);
  };
  const double lengthFactor = options.lengthFactor ? options.lengthFactor(drawing.linearUnit) : 1.0;
  goOn();
  noteUnreadOfRoot(context);
  SitesByName sites(context);
  readSiteList(context, sites);
  readPoints(context);
  readCorridors(context, readAlignments(context, sites));
  readSurfaces(context, scanned, lengthFactor, options, goOn);
  // Behind all that goes by the file's names.
  civil::tellSiblingsApart(drawing, [&](const std::string& text, civil::Handle ticket, civil::FileNumber) {
    const Context::Subject subject(context, ticket);
    context.warn(context.nodeOf(ticket), text);
  });
  context.settleHandles();
  if (lengthFactor != 1.0) civil::scaleLengths(drawing, lengthFactor);
  return drawing;
}

civil::Drawing readBytes(std::unique_ptr<ByteSource> bytes, const std::string& name, const ReadOptions& options) {
  const std::uint64_t total = bytes->totalBytes();
  ScannedDocument scanned = scanDocument(std::move(bytes), name, options);
  return readScanned(scanned, total, name, options, nullptr);
}

}  // namespace

civil::Drawing detail::readTraced(std::unique_ptr<ByteSource> bytes, const std::string& name,
                                  const ReadOptions& options, Trace& trace) {
  const std::uint64_t total = bytes->totalBytes();
  trace.scanned = scanDocument(std::move(bytes), name, options, ScanMode::Locate);
  return readScanned(trace.scanned, total, name, options, &trace);
}

civil::Drawing readDrawing(const std::string& path, const ReadOptions& options) {
  const std::string& source = options.source.empty() ? path : options.source;
  if (options.namesAlone) {
    try {
      return readBytes(withoutGround(unpacked(openFile(source, path), path)), path, options);
    } catch (const ReadError&) {
      // Left out as it stands there, or the file's own fault: the whole tells.
    }
  }
  civil::FileMark mark;
  civil::Drawing drawing = readBytes(unpacked(openFile(source, path, &mark), path), path, options);
  drawing.file = mark;
  drawing.file.content = contentOf(drawing, 0);
  return drawing;
}

civil::Drawing readDrawingText(std::string_view text, const std::string& name, const ReadOptions& options) {
  return readBytes(unpacked(openText(text), name), name, options);
}

}  // namespace lvx::landxml

#include "cli/name_lookup.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "civil/drawing_edit.h"
#include "cli/failure.h"

namespace lvx::cli {

namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Long names differ at their heads soon enough; the table stays small.
constexpr std::size_t kLongestCompared = 200;

template <class Objects>
std::vector<std::string> namesOf(const Objects& objects) {
  std::vector<std::string> names;
  for (const auto& object : objects) {
    if constexpr (requires { object->name; })
      names.push_back(object->name);
    else
      names.push_back(object.name);
  }
  return names;
}

[[noreturn]] void unknown(const std::string& sentence, std::vector<std::string> names, const std::string& wanted,
                          const char* nothing) {
  throw Failure(kUnknownName, sentence + (names.empty() ? std::string("; ") + nothing
                                                        : "; there is " + offered(std::move(names), wanted)));
}

const civil::AlignmentObject* alignmentIn(const civil::Site& site, const std::string& name) {
  for (const auto& alignment : site.alignments)
    if (alignment->name == name) return alignment.get();
  return nullptr;
}

const civil::Site& findSite(const civil::Drawing& drawing, const std::string& name) {
  const auto rows = siteRows(drawing);
  for (const civil::Site* site : rows)
    if (site->name == name) return *site;
  if (name.empty()) throw Failure(kUnknownName, "every alignment of the drawing stands in a site");
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const civil::Site* site : rows) names.push_back(site->name);
  unknown("no site '" + name + "' with alignments", std::move(names), name, "no site has an alignment");
}

}  // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
  a = a.substr(0, kLongestCompared);
  b = b.substr(0, kLongestCompared);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (lowered(a[i]) == lowered(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

std::string offered(std::vector<std::string> names, std::string_view wanted) {
  constexpr std::size_t kMost = 20;
  std::set<std::string> seen;
  std::erase_if(names, [&](const std::string& name) { return !seen.insert(name).second; });
  std::stable_sort(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
    return editDistance(a, wanted) < editDistance(b, wanted);
  });
  std::string text;
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) text += (i == 0 ? "'" : ", '") + names[i] + "'";
  if (names.size() > kMost) text += " and " + std::to_string(names.size() - kMost) + " more";
  return text;
}

std::string siteWords(const civil::Site& site) {
  return site.name.empty() ? std::string("no site (--site \"\")") : "site '" + site.name + "'";
}

void requireUsableName(const options::NewGroupOptions& wanted, const std::string& kind) {
  try {
    civil::requireUsableName(wanted.name, kind);
  } catch (const civil::EditError& error) {
    throw Failure(kUsage, std::string("--name: ") + error.what());
  }
}

FoundAlignment findAlignment(const civil::Drawing& drawing, const std::string& alignment,
                             const std::optional<std::string>& site) {
  if (site) {
    const civil::Site& wanted = findSite(drawing, *site);
    if (const civil::AlignmentObject* found = alignmentIn(wanted, alignment)) return {&wanted, found};
    unknown("no alignment '" + alignment + "' in " + siteWords(wanted), namesOf(wanted.alignments), alignment, "");
  }
  std::vector<FoundAlignment> found;
  std::vector<std::string> names;
  for (const civil::Site* row : siteRows(drawing)) {
    if (const civil::AlignmentObject* here = alignmentIn(*row, alignment)) found.push_back({row, here});
    const auto more = namesOf(row->alignments);
    names.insert(names.end(), more.begin(), more.end());
  }
  if (found.size() == 1) return found.front();
  if (found.empty())
    unknown("no alignment '" + alignment + "' in the drawing", std::move(names), alignment, "it holds no alignments");
  std::string sites;
  for (const FoundAlignment& entry : found) sites += (sites.empty() ? "" : ", ") + siteWords(*entry.site);
  throw Failure(kUnknownName,
                "alignment '" + alignment + "' stands in several places, --site says which is meant: " + sites);
}

const civil::SampleLineGroup& findGroup(const civil::AlignmentObject& alignment, const std::string& name) {
  for (const civil::SampleLineGroup& group : alignment.sampleLineGroups)
    if (group.name == name) return group;
  unknown("no sample line group '" + name + "' on alignment '" + alignment.name + "'",
          namesOf(alignment.sampleLineGroups), name, "the alignment has none");
}

const civil::ProfileObject& findProfile(const civil::AlignmentObject& alignment, const std::string& name) {
  for (const civil::ProfileObject& profile : alignment.profiles)
    if (profile.name == name) return profile;
  unknown("no profile '" + name + "' on alignment '" + alignment.name + "'", namesOf(alignment.profiles), name,
          "the alignment has none");
}

const civil::SurfaceObject& findSurface(const civil::Drawing& drawing, const std::string& name) {
  for (const civil::SurfaceObject& surface : drawing.surfaces)
    if (surface.name == name) return surface;
  unknown("no surface '" + name + "' in the drawing", namesOf(drawing.surfaces), name, "it holds no surfaces");
}

const civil::PointGroup& findPointGroup(const civil::Drawing& drawing, const std::string& name) {
  for (const civil::PointGroup& group : drawing.pointGroups)
    if (group.name == name) return group;
  unknown("no point group '" + name + "' in the drawing", namesOf(drawing.pointGroups), name,
          "it holds no point groups");
}

}  // namespace lvx::cli

#include "civil/sibling_names.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lvx::civil {

namespace {

struct Kind {
  std::string_view one;
  /// "alignment 'A': " of what the siblings belong to; empty for the drawing.
  std::string owner;
};

/// What an object calls itself in a sentence. A ground and a design under one name are told from one another.
template <class Object>
std::string ownKind(const Object& object, const Kind& kind) {
  if constexpr (requires { object.profile; }) return object.profile.isGround() ? "ground profile" : "design profile";
  return std::string(kind.one);
}

/// Whether no name stands twice, as in most files: a set of all of them would take more memory than many an object.
template <class At>
bool areAllDifferent(std::size_t count, At at) {
  std::vector<const std::string*> names;
  names.reserve(count);
  for (std::size_t i = 0; i < count; ++i) names.push_back(&at(i).name);
  std::sort(names.begin(), names.end(), [](const std::string* a, const std::string* b) { return *a < *b; });
  return std::adjacent_find(names.begin(), names.end(),
                            [](const std::string* a, const std::string* b) { return *a == *b; }) == names.end();
}

/// `at(i)` is the object at a place of the list.
template <class At>
void tellApart(std::size_t count, At at, const Kind& kind, const TellRenamed& tell) {
  if (count < 2) return;
  if (areAllDifferent(count, at)) return;
  std::unordered_set<std::string> names;
  for (std::size_t i = 0; i < count; ++i) names.insert(at(i).name);
  std::unordered_set<std::string> kept;
  std::unordered_map<std::string, std::size_t> lastNumber;  // by the name that the files give
  for (std::size_t i = 0; i < count; ++i) {
    auto& object = at(i);
    if (kept.insert(object.name).second) continue;
    const std::string own = savedName(object);
    std::size_t& number = lastNumber.try_emplace(own, 1).first->second;
    std::string free;
    do {
      free = own + (own.empty() ? "(" : " (") + std::to_string(++number) + ")";
    } while (!names.insert(free).second);
    const std::string before = object.nameInFile ? ", no more '" + object.name + "'," : std::string();
    tell(kind.owner + ownKind(object, kind) + " '" + own + "': another " + std::string(kind.one) +
             " before it has that name; it is called '" + free + "' here" + before + " and keeps its name in the file",
         object.handle, object.file);
    object.nameInFile = own;
    object.name = free;
  }
}

template <class List>
void tellApart(List& list, const Kind& kind, const TellRenamed& tell) {
  tellApart(
      list.size(), [&](std::size_t i) -> auto& { return list[i]; }, kind, tell);
}

}  // namespace

void tellSiblingsApart(Drawing& drawing, const TellRenamed& tell) {
  const auto inSite = [&](Site& site) {
    tellApart(
        site.alignments.size(), [&](std::size_t i) -> auto& { return *site.alignments[i]; },
        {"alignment", site.name.empty() ? std::string() : "site '" + site.name + "': "}, tell);
    for (const auto& alignment : site.alignments) {
      const std::string owner = "alignment '" + alignment->name + "': ";
      tellApart(alignment->profiles, {"profile", owner}, tell);
      tellApart(alignment->sampleLineGroups, {"sample line group", owner}, tell);
    }
  };
  inSite(drawing.siteless);
  for (Site& site : drawing.sites) inSite(site);
  tellApart(drawing.surfaces, {"surface", {}}, tell);
  tellApart(drawing.pointGroups, {"point group", {}}, tell);
}

}  // namespace lvx::civil

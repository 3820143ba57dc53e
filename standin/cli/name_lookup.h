#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "advice/dialog_choices.h"
#include "civil/drawing.h"
#include "cli/failure.h"
#include "options/options.h"

/// From the names of the command line to the drawing's objects, as the dialogs offer them.
namespace lvx::cli {

using advice::siteRows;

/// Steps of inserting, removing or replacing one byte that lead from one text to the other, small and capital ASCII
/// letters being one: how far a mistyped name is from one that exists.
[[nodiscard]] std::size_t editDistance(std::string_view a, std::string_view b);

/// `names` without repetitions, the closest to `wanted` first, quoted and joined by commas; of many the first ones and
/// how many more there are.
[[nodiscard]] std::string offered(std::vector<std::string> names, std::string_view wanted);

/// An alignment with the site whose row it stands in.
struct FoundAlignment {
  const civil::Site* site = nullptr;
  const civil::AlignmentObject* alignment = nullptr;
};

/// The alignment of that name in the site; without a site in the only site that has one of that name. Of several in one
/// site the first. Throws Failure (kUnknownName) that lists what there is.
[[nodiscard]] FoundAlignment findAlignment(const civil::Drawing& drawing, const std::string& alignment,
                                           const std::optional<std::string>& site);

/// The first of that name; throws Failure (kUnknownName) that lists what there is.
[[nodiscard]] const civil::SampleLineGroup& findGroup(const civil::AlignmentObject& alignment, const std::string& name);
[[nodiscard]] const civil::ProfileObject& findProfile(const civil::AlignmentObject& alignment, const std::string& name);
[[nodiscard]] const civil::SurfaceObject& findSurface(const civil::Drawing& drawing, const std::string& name);

[[nodiscard]] const civil::PointGroup& findPointGroup(const civil::Drawing& drawing, const std::string& name);

/// The first group of the wanted name, which the new one is to replace; null where there is none. Throws Failure
/// (kNotWritten) where there is one that isn't to be replaced, in the words given: "alignment 'Main' has a sample line
/// group 'Every 20' already; --replace gives it the new lines."
template <class Group>
[[nodiscard]] const Group* groupToReplace(const std::vector<Group>& groups, const options::NewGroupOptions& wanted,
                                          const std::string& owner, const std::string& kind,
                                          const std::string& members) {
  const auto taken =
      std::find_if(groups.begin(), groups.end(), [&](const Group& group) { return group.name == wanted.name; });
  if (taken == groups.end()) return nullptr;
  if (wanted.replace) return &*taken;
  std::vector<std::string> names;
  for (const Group& group : groups) names.push_back(group.name);
  throw Failure(kNotWritten, "nothing was written: " + owner + " has a " + kind + " '" + wanted.name +
                                 "' already; --replace gives it the new " + members + ". There is " +
                                 offered(std::move(names), wanted.name));
}

/// Throws Failure (kUsage) for a new group's name that is empty or can't stand in a drawing.
void requireUsableName(const options::NewGroupOptions& wanted, const std::string& kind);

/// "site 'North'", or words for the alignments outside any site.
[[nodiscard]] std::string siteWords(const civil::Site& site);

}  // namespace lvx::cli

#include "civil/drawing_edit.h"

#include <algorithm>
#include <limits>
#include <unordered_set>
#include <utility>

#include "civil/detail/profile_users.h"
#include "civil/each_object.h"

namespace lvx::civil {

namespace {

/// `kind` as in "sample line group"; `where` as in " of alignment 'A'", or empty. The object `except` may have the name.
template <class Objects>
void requireNewName(const Objects& objects, const std::string& name, std::string_view kind, const std::string& where,
                    Handle except = 0) {
  requireUsableName(name, kind);
  const bool isTaken = std::any_of(objects.begin(), objects.end(), [&](const auto& object) {
    return object.name == name && (except == 0 || object.handle != except);
  });
  if (isTaken) throw EditError("there is a " + std::string(kind) + " '" + name + "'" + where + " already");
}

std::string ofAlignment(const AlignmentObject& alignment) { return " of alignment '" + alignment.name + "'"; }

}  // namespace

void requireUsableName(const std::string& name, std::string_view kind) {
  if (name.empty()) throw EditError("a " + std::string(kind) + " needs a name");
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20U; };
  if (std::any_of(name.begin(), name.end(), isControl))
    throw EditError("the name of a " + std::string(kind) + " can't hold control characters");
}

Handle largestHandle(const Drawing& drawing) {
  Handle largest = 0;
  eachHandle(drawing, [&](Handle handle) { largest = std::max(largest, handle); });
  return largest;
}

Handle firstNewHandle(const Drawing& drawing, std::size_t count) {
  const Handle largest = largestHandle(drawing);
  if (count >= std::numeric_limits<Handle>::max() - largest)
    throw EditError("there are no handles left for new objects");
  return largest + 1;
}

void requireGroupName(const AlignmentObject& alignment, const std::string& name, Handle except) {
  requireNewName(alignment.sampleLineGroups, name, "sample line group", ofAlignment(alignment), except);
}

SampleLineGroup& addSampleLineGroup(Drawing& drawing, AlignmentObject& alignment, const std::string& name,
                                    std::vector<SampleLine> lines) {
  requireGroupName(alignment, name);
  Handle next = firstNewHandle(drawing, lines.size() + 1);
  SampleLineGroup group;
  group.handle = next++;
  group.name = name;
  group.file = kNoFile;
  for (SampleLine& line : lines) line.handle = next++;
  group.lines = std::move(lines);
  return alignment.sampleLineGroups.emplace_back(std::move(group));
}

ProfileObject& addProfile(Drawing& drawing, AlignmentObject& alignment, const std::string& name, Profile profile) {
  requireNewName(alignment.profiles, name, "profile", ofAlignment(alignment));
  if (profile.isEmpty()) throw EditError("profile '" + name + "' would have no points");
  ProfileObject object;
  object.handle = firstNewHandle(drawing, 1);
  object.name = name;
  object.profile = std::move(profile);
  object.file = kNoFile;
  keepingProfileUsers(drawing, alignment, [&] { alignment.profiles.push_back(std::move(object)); });
  return alignment.profiles.back();
}

PointGroup& addPointGroup(Drawing& drawing, const std::string& name, std::vector<std::int32_t> numbers) {
  requireNewName(drawing.pointGroups, name, "point group", "");
  std::unordered_set<std::int32_t> known;
  known.reserve(drawing.points.size());
  for (const Point& point : drawing.points) known.insert(point.number);
  for (const std::int32_t number : numbers)
    if (known.count(number) == 0) throw EditError("there is no point " + std::to_string(number));
  PointGroup group;
  group.handle = firstNewHandle(drawing, 1);
  group.name = name;
  group.numbers = std::move(numbers);
  group.file = kNoFile;
  return drawing.pointGroups.emplace_back(std::move(group));
}

}  // namespace lvx::civil

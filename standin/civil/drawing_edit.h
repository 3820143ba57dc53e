#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "civil/drawing.h"

/// What a person makes in an open drawing: groups of sample lines and of points, profiles from ground. New objects get
/// handles that no file of the drawing has, and belong to no file (kNoFile) until they are saved.
///
/// All of these change lists of the drawing: pointers into the changed list, and every DrawingIndex, are no longer valid.
namespace lvx::civil {

/// A change that can't be made; the text says why and names the object. The drawing is as it was.
class EditError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// The largest handle in the drawing; 0 where it holds none. O(n).
[[nodiscard]] Handle largestHandle(const Drawing& drawing);

/// The first of `count` handles in a row that no object of the drawing has. Throws EditError where as many aren't left. O(n).
[[nodiscard]] Handle firstNewHandle(const Drawing& drawing, std::size_t count);

/// Throws EditError for a name that is empty or holds control characters, which no drawing file can. `kind` as in "point
/// group".
void requireUsableName(const std::string& name, std::string_view kind);

/// Throws EditError for a name that can't be used and one that a sample line group of the alignment other than `except` has.
void requireGroupName(const AlignmentObject& alignment, const std::string& name, Handle except = 0);

/// A new group at the end of the alignment's, which is one of the drawing's. Lines get new handles. Throws EditError for
/// an empty name and one that another group of the alignment has.
SampleLineGroup& addSampleLineGroup(Drawing& drawing, AlignmentObject& alignment, const std::string& name,
                                    std::vector<SampleLine> lines);

/// A new profile at the end of the alignment's; baselines of corridors keep theirs. Throws EditError for an empty
/// name, one that another profile of the alignment has, and a profile without points.
ProfileObject& addProfile(Drawing& drawing, AlignmentObject& alignment, const std::string& name, Profile profile);

/// A new group of points at the end of the drawing's. Throws EditError for an empty name, one that another point group
/// has, and a number that no point has.
PointGroup& addPointGroup(Drawing& drawing, const std::string& name, std::vector<std::int32_t> numbers);

}  // namespace lvx::civil

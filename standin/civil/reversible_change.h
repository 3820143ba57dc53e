#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "civil/drawing_edit.h"

/// Changes of a drawing that can be taken back. Objects are known by their handles, which stay the same whenever a change
/// is made again; so changes that were made one after the other can be taken back in the opposite order, whatever lists
/// moved in between.
///
///     auto change = addingProfile(alignment.handle, "Ground", profile);
///     change->make(drawing);     // change->object() is the new profile's handle
///     change->undo(drawing);     // as before
///     change->make(drawing);     // the same profile with the same handle
///
/// A change invalidates pointers as civil/drawing_edit.h says.
namespace lvx::civil {

class ReversibleChange {
 public:
  ReversibleChange() = default;
  ReversibleChange(const ReversibleChange&) = delete;
  ReversibleChange& operator=(const ReversibleChange&) = delete;
  virtual ~ReversibleChange() = default;

  /// Throws EditError where it can't be made; the drawing is as it was then.
  virtual void make(Drawing& drawing) = 0;
  /// To be called for a drawing as make() left it.
  virtual void undo(Drawing& drawing) = 0;
  /// What the change is about; of something new 0 until it is made.
  [[nodiscard]] virtual Handle object() const = 0;
};

using ReversibleChangePtr = std::unique_ptr<ReversibleChange>;

// These throw nothing; make() throws EditError as the function of civil/drawing_edit.h does, and for a handle that the
// drawing hasn't got.

[[nodiscard]] ReversibleChangePtr addingProfile(Handle alignment, std::string name, Profile profile);
[[nodiscard]] ReversibleChangePtr addingPointGroup(std::string name, std::vector<std::int32_t> numbers);
[[nodiscard]] ReversibleChangePtr addingSampleLineGroup(Handle alignment, std::string name,
                                                        std::vector<SampleLine> lines);

[[nodiscard]] ReversibleChangePtr removingPointGroup(Handle group);
[[nodiscard]] ReversibleChangePtr removingSampleLineGroup(Handle group);

/// Another name for a group, which must be new among those of its alignment, and other lines for all of it, which get new
/// handles. What isn't given stays.
[[nodiscard]] ReversibleChangePtr changingSampleLineGroup(Handle group, std::optional<std::string> name,
                                                          std::optional<std::vector<SampleLine>> lines);
/// A line more, behind those of smaller or equal stations. It gets a new handle.
[[nodiscard]] ReversibleChangePtr addingSampleLine(Handle group, SampleLine line);
[[nodiscard]] ReversibleChangePtr removingSampleLine(Handle line);
/// Other vertices, at least two.
[[nodiscard]] ReversibleChangePtr changingSampleLine(Handle line, std::vector<Vec2> vertices);

}  // namespace lvx::civil

#pragma once

#include <optional>
#include <utility>

#include "host/model.h"
#include "projection/tsl.h"

namespace lvx::projection {

/// Which sample line groups of an alignment are wanted: every one, or those of one name. The empty name is a name like
/// any other and takes only groups that have none, so "all" is a value of its own.
class GroupFilter {
 public:
  [[nodiscard]] static GroupFilter allGroups() { return GroupFilter(std::nullopt); }
  [[nodiscard]] static GroupFilter named(CString name) { return GroupFilter(std::move(name)); }

  /// Names are compared whole and case-sensitively.
  [[nodiscard]] bool takes(const CString& groupName) const { return !name_ || *name_ == groupName; }

 private:
  explicit GroupFilter(std::optional<CString> name) : name_(std::move(name)) {}

  std::optional<CString> name_;
};

/// Fills `list` with the sample lines of one alignment, ascending by station; the records that it held before are
/// destroyed. The surface isn't touched: projectSampleLines does that next.
///
/// An empty `siteName`, or one that begins with `*` (the dialog's row for the alignments outside any site), looks among
/// the alignments without a site. Of several sites of one name only the first is searched. Every group that the filter
/// takes is read, and the lines of all of them merge into one list. What isn't found leaves the list empty; nobody is
/// told.
///
/// Near-duplicates: a line less than 0.000001 above a station of the list is dropped, whereas one at exactly a station
/// of the list, or a little below it, stays in front of it - unless the line behind that one is within the tolerance.
///
/// Raises framework::AutomationException for a vertex whose location is no array at all; the list is then empty.
/// Costs n log n in sample lines and in the vertices of each, beside the host's own work.
void collectSampleLines(const host::Ref<host::QmtDocument>& document, const host::Ref<host::QmtDatabase>& database,
                        const CString& siteName, const CString& alignmentName, const GroupFilter& groups,
                        SampleLineList& list);

}  // namespace lvx::projection

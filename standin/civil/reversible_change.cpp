#include "civil/reversible_change.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "civil/detail/profile_users.h"

namespace lvx::civil {

namespace {

/// Calls `use` for each alignment until it gives something.
template <class Use>
auto firstOf(Drawing& drawing, Use use) -> decltype(use(std::declval<AlignmentObject&>())) {
  const auto within = [&](Site& site) -> decltype(use(std::declval<AlignmentObject&>())) {
    for (auto& alignment : site.alignments)
      if (auto found = use(*alignment)) return found;
    return nullptr;
  };
  if (auto found = within(drawing.siteless)) return found;
  for (Site& site : drawing.sites)
    if (auto found = within(site)) return found;
  return nullptr;
}

template <class Objects>
auto findIn(Objects& objects, Handle handle) {
  return std::find_if(objects.begin(), objects.end(), [&](const auto& object) { return object.handle == handle; });
}

template <class Object>
Object& existing(Object* object, const char* kind) {
  if (object == nullptr) throw EditError("the drawing has no such " + std::string(kind));
  return *object;
}

AlignmentObject& alignmentOf(Drawing& drawing, Handle handle) {
  AlignmentObject* const found = firstOf(drawing, [&](AlignmentObject& alignment) -> AlignmentObject* {
    return alignment.handle == handle ? &alignment : nullptr;
  });
  return existing(found, "alignment");
}

/// The alignment whose group it is.
AlignmentObject& ownerOfGroup(Drawing& drawing, Handle group) {
  AlignmentObject* const found = firstOf(drawing, [&](AlignmentObject& alignment) -> AlignmentObject* {
    auto& groups = alignment.sampleLineGroups;
    return findIn(groups, group) == groups.end() ? nullptr : &alignment;
  });
  return existing(found, "sample line group");
}

SampleLineGroup& groupOf(Drawing& drawing, Handle handle) {
  return *findIn(ownerOfGroup(drawing, handle).sampleLineGroups, handle);
}

SampleLineGroup& groupOfLine(Drawing& drawing, Handle line) {
  SampleLineGroup* const found = firstOf(drawing, [&](AlignmentObject& alignment) -> SampleLineGroup* {
    for (SampleLineGroup& group : alignment.sampleLineGroups)
      if (findIn(group.lines, line) != group.lines.end()) return &group;
    return nullptr;
  });
  return existing(found, "sample line");
}

/// An object that is by turns in a list and here.
template <class Object>
class Absentee {
 public:
  [[nodiscard]] bool isHere() const { return object_.has_value(); }
  void takeFrom(std::vector<Object>& list, Handle handle) {
    const auto found = findIn(list, handle);
    place_ = static_cast<std::size_t>(found - list.begin());
    object_ = std::move(*found);
    list.erase(found);
  }
  void putBack(std::vector<Object>& list) {
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(std::min(place_, list.size())), std::move(*object_));
    object_.reset();
  }

 private:
  std::optional<Object> object_;
  std::size_t place_ = 0;
};

class AddProfile final : public ReversibleChange {
 public:
  AddProfile(Handle alignment, std::string name, Profile profile)
      : alignment_(alignment), name_(std::move(name)), profile_(std::move(profile)) {}
  void make(Drawing& drawing) override {
    AlignmentObject& alignment = alignmentOf(drawing, alignment_);
    if (absentee_.isHere())
      keepingProfileUsers(drawing, alignment, [&] { absentee_.putBack(alignment.profiles); });
    else
      handle_ = addProfile(drawing, alignment, name_, profile_).handle;
  }
  void undo(Drawing& drawing) override {
    AlignmentObject& alignment = alignmentOf(drawing, alignment_);
    keepingProfileUsers(drawing, alignment, [&] { absentee_.takeFrom(alignment.profiles, handle_); });
  }
  [[nodiscard]] Handle object() const override { return handle_; }

 private:
  Handle alignment_;
  std::string name_;
  Profile profile_;
  Handle handle_ = 0;
  Absentee<ProfileObject> absentee_;
};

class AddPointGroup final : public ReversibleChange {
 public:
  AddPointGroup(std::string name, std::vector<std::int32_t> numbers)
      : name_(std::move(name)), numbers_(std::move(numbers)) {}
  void make(Drawing& drawing) override {
    if (absentee_.isHere())
      absentee_.putBack(drawing.pointGroups);
    else
      handle_ = addPointGroup(drawing, name_, numbers_).handle;
  }
  void undo(Drawing& drawing) override { absentee_.takeFrom(drawing.pointGroups, handle_); }
  [[nodiscard]] Handle object() const override { return handle_; }

 private:
  std::string name_;
  std::vector<std::int32_t> numbers_;
  Handle handle_ = 0;
  Absentee<PointGroup> absentee_;
};

class RemovePointGroup final : public ReversibleChange {
 public:
  explicit RemovePointGroup(Handle group) : handle_(group) {}
  void make(Drawing& drawing) override {
    if (findIn(drawing.pointGroups, handle_) == drawing.pointGroups.end())
      throw EditError("the drawing has no such point group");
    absentee_.takeFrom(drawing.pointGroups, handle_);
  }
  void undo(Drawing& drawing) override { absentee_.putBack(drawing.pointGroups); }
  [[nodiscard]] Handle object() const override { return handle_; }

 private:
  Handle handle_;
  Absentee<PointGroup> absentee_;
};

class AddSampleLineGroup final : public ReversibleChange {
 public:
  AddSampleLineGroup(Handle alignment, std::string name, std::vector<SampleLine> lines)
      : alignment_(alignment), name_(std::move(name)), lines_(std::move(lines)) {}
  void make(Drawing& drawing) override {
    AlignmentObject& alignment = alignmentOf(drawing, alignment_);
    if (absentee_.isHere()) {
      absentee_.putBack(alignment.sampleLineGroups);
      return;
    }
    handle_ = addSampleLineGroup(drawing, alignment, name_, lines_).handle;
    lines_ = {};  // the drawing has them now, and the absentee afterwards
  }
  void undo(Drawing& drawing) override {
    absentee_.takeFrom(alignmentOf(drawing, alignment_).sampleLineGroups, handle_);
  }
  [[nodiscard]] Handle object() const override { return handle_; }

 private:
  Handle alignment_;
  std::string name_;
  std::vector<SampleLine> lines_;
  Handle handle_ = 0;
  Absentee<SampleLineGroup> absentee_;
};

class RemoveSampleLineGroup final : public ReversibleChange {
 public:
  explicit RemoveSampleLineGroup(Handle group) : handle_(group) {}
  void make(Drawing& drawing) override {
    AlignmentObject& alignment = ownerOfGroup(drawing, handle_);
    alignment_ = alignment.handle;
    absentee_.takeFrom(alignment.sampleLineGroups, handle_);
  }
  void undo(Drawing& drawing) override { absentee_.putBack(alignmentOf(drawing, alignment_).sampleLineGroups); }
  [[nodiscard]] Handle object() const override { return handle_; }

 private:
  Handle handle_;
  Handle alignment_ = 0;
  Absentee<SampleLineGroup> absentee_;
};

class ChangeSampleLineGroup final : public ReversibleChange {
 public:
  ChangeSampleLineGroup(Handle group, std::optional<std::string> name, std::optional<std::vector<SampleLine>> lines)
      : handle_(group), name_(std::move(name)), lines_(std::move(lines)) {}
  void make(Drawing& drawing) override {
    AlignmentObject& alignment = ownerOfGroup(drawing, handle_);
    if (name_) requireGroupName(alignment, *name_, handle_);
    if (lines_ && !std::exchange(hasHandles_, true)) {
      Handle next = firstNewHandle(drawing, lines_->size());
      for (SampleLine& line : *lines_) line.handle = next++;
    }
    swap(*findIn(alignment.sampleLineGroups, handle_));
  }
  void undo(Drawing& drawing) override { swap(groupOf(drawing, handle_)); }
  [[nodiscard]] Handle object() const override { return handle_; }

 private:
  void swap(SampleLineGroup& group) {
    if (name_) {
      std::swap(group.name, *name_);
      std::swap(group.nameInFile, nameInFile_);
    }
    if (lines_) std::swap(group.lines, *lines_);
  }

  Handle handle_;
  std::optional<std::string> name_;
  Rare<std::string> nameInFile_;  // a name that a person chose is the file's as well
  std::optional<std::vector<SampleLine>> lines_;
  bool hasHandles_ = false;
};

class AddSampleLine final : public ReversibleChange {
 public:
  AddSampleLine(Handle group, SampleLine line) : group_(group), line_(std::move(line)) {}
  void make(Drawing& drawing) override {
    std::vector<SampleLine>& lines = groupOf(drawing, group_).lines;
    if (absentee_.isHere()) {
      absentee_.putBack(lines);
      return;
    }
    line_.handle = firstNewHandle(drawing, 1);
    const auto behind = std::find_if(lines.rbegin(), lines.rend(),
                                     [&](const SampleLine& line) { return line.station <= line_.station; });
    lines.insert(behind.base(), line_);
  }
  void undo(Drawing& drawing) override { absentee_.takeFrom(groupOf(drawing, group_).lines, line_.handle); }
  [[nodiscard]] Handle object() const override { return line_.handle; }

 private:
  Handle group_;
  SampleLine line_;
  Absentee<SampleLine> absentee_;
};

class RemoveSampleLine final : public ReversibleChange {
 public:
  explicit RemoveSampleLine(Handle line) : line_(line) {}
  void make(Drawing& drawing) override {
    SampleLineGroup& group = groupOfLine(drawing, line_);
    group_ = group.handle;
    absentee_.takeFrom(group.lines, line_);
  }
  void undo(Drawing& drawing) override { absentee_.putBack(groupOf(drawing, group_).lines); }
  [[nodiscard]] Handle object() const override { return line_; }

 private:
  Handle line_;
  Handle group_ = 0;
  Absentee<SampleLine> absentee_;
};

class ChangeSampleLine final : public ReversibleChange {
 public:
  ChangeSampleLine(Handle line, std::vector<Vec2> vertices) : line_(line), vertices_(std::move(vertices)) {}
  void make(Drawing& drawing) override {
    if (vertices_.size() < 2) throw EditError("a sample line needs two vertices");
    swap(drawing);
  }
  void undo(Drawing& drawing) override { swap(drawing); }
  [[nodiscard]] Handle object() const override { return line_; }

 private:
  void swap(Drawing& drawing) { std::swap(findIn(groupOfLine(drawing, line_).lines, line_)->vertices, vertices_); }

  Handle line_;
  std::vector<Vec2> vertices_;
};

}  // namespace

ReversibleChangePtr addingProfile(Handle alignment, std::string name, Profile profile) {
  return std::make_unique<AddProfile>(alignment, std::move(name), std::move(profile));
}

ReversibleChangePtr addingPointGroup(std::string name, std::vector<std::int32_t> numbers) {
  return std::make_unique<AddPointGroup>(std::move(name), std::move(numbers));
}

ReversibleChangePtr addingSampleLineGroup(Handle alignment, std::string name, std::vector<SampleLine> lines) {
  return std::make_unique<AddSampleLineGroup>(alignment, std::move(name), std::move(lines));
}

ReversibleChangePtr removingPointGroup(Handle group) { return std::make_unique<RemovePointGroup>(group); }

ReversibleChangePtr removingSampleLineGroup(Handle group) { return std::make_unique<RemoveSampleLineGroup>(group); }

ReversibleChangePtr changingSampleLineGroup(Handle group, std::optional<std::string> name,
                                            std::optional<std::vector<SampleLine>> lines) {
  return std::make_unique<ChangeSampleLineGroup>(group, std::move(name), std::move(lines));
}

ReversibleChangePtr addingSampleLine(Handle group, SampleLine line) {
  return std::make_unique<AddSampleLine>(group, std::move(line));
}

ReversibleChangePtr removingSampleLine(Handle line) { return std::make_unique<RemoveSampleLine>(line); }

ReversibleChangePtr changingSampleLine(Handle line, std::vector<Vec2> vertices) {
  return std::make_unique<ChangeSampleLine>(line, std::move(vertices));
}

}  // namespace lvx::civil

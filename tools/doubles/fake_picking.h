#pragma once

#include <deque>
#include <list>
#include <map>
#include <optional>
#include <vector>

#include "doubles/fake_host.h"

namespace lvx::test {

/// One document that is current, and how often it was locked and unlocked.
class FakeDocManager final : public host::VnApDocManager {
 public:
  struct Document final : host::VnApDocument {};

  Document document;
  bool hasDocument = true;
  int locks = 0;
  int unlocks = 0;
  std::int32_t lastLockMode = 0;

  [[nodiscard]] host::VnApDocument* currentDocument() override { return hasDocument ? &document : nullptr; }
  std::int32_t lockDocument(host::VnApDocument*, std::int32_t lockMode, const wchar_t*, const wchar_t*, bool) override {
    ++locks;
    lastLockMode = lockMode;
    return 0;
  }
  std::int32_t unlockDocument(host::VnApDocument*) override {
    ++unlocks;
    return 0;
  }
  void addReactor(host::VnApDocManagerReactor*) override {}
  void removeReactor(host::VnApDocManagerReactor*) override {}
};

/// A drawing object of a class, with its handle and a count of its openings.
class PickableObject final : public host::VnDbObject {
 public:
  PickableObject(const wchar_t* classTag, std::uint64_t handle) : class_(classTag, nullptr), handle_(handle) {}
  [[nodiscard]] const host::VnRxClass* isA() const override { return &class_; }
  void getVnDbHandle(host::VnDbHandle& handle) const override { handle = host::VnDbHandle(handle_); }
  std::int32_t close() override {
    --open;
    return host::kSuccess;
  }

  int open = 0;

 private:
  host::VnRxClass class_;
  std::uint64_t handle_;
};

/// A run time in which the user picks what the test queued. An identifier's value is its object's handle.
class PickingRunTime final : public FakeRunTime {
 public:
  /// What a pick gives.
  enum class Kind { Object, Escape, Unidentified, Unopenable };
  struct Pick {
    Kind kind = Kind::Escape;
    std::uint64_t handle = 0;
  };
  /// An empty queue means Escape.
  std::deque<Pick> picks;
  /// What each point selection gives, by handle; empty is Escape, and so is an empty queue.
  std::deque<std::optional<std::vector<std::uint64_t>>> selections;
  /// A handle that vndbGetObjectId can't identify, wherever it comes from.
  std::optional<std::uint64_t> unidentified;
  struct Asked {
    CString mode;
    host::SelectionPrompts prompts;
    host::FilterList filter;
  };
  /// The point selections, in order.
  std::vector<Asked> asked;
  FakeDocManager manager;

  PickingRunTime() { docManager = &manager; }

  PickableObject& addObject(const wchar_t* classTag, std::uint64_t handle) {
    PickableObject& object = pickables_.emplace_back(classTag, handle);
    objects[handle] = &object;
    handles[handle] = handle;
    return object;
  }

  std::int32_t vnedEntSel(const CString& prompt, host::EntityName& entity, host::PickPoint&) override {
    prompts.push_back(prompt);
    if (picks.empty()) return host::kUserGaveUp;
    current_ = picks.front();
    picks.pop_front();
    entity.words[0] = static_cast<std::int64_t>(current_.handle);
    return current_.kind == Kind::Escape ? host::kUserGaveUp : host::kNormal;
  }
  std::int32_t vndbGetObjectId(host::VnDbObjectId& id, const host::EntityName& entity) override {
    if (current_.kind == Kind::Unidentified) return kRefused;
    if (unidentified == static_cast<std::uint64_t>(entity.words[0])) return kRefused;
    id.value = static_cast<std::uint64_t>(entity.words[0]);
    return host::kSuccess;
  }
  std::int32_t vndbOpenObject(host::VnDbObject*& object, host::VnDbObjectId id, std::int32_t mode,
                              bool openErased) override {
    if (current_.kind == Kind::Unopenable) return kRefused;
    const std::int32_t status = FakeRunTime::vndbOpenObject(object, id, mode, openErased);
    if (status == host::kSuccess) ++static_cast<PickableObject*>(object)->open;
    return status;
  }

  std::int32_t vnedSSAdd(host::EntityName& selection) override {
    selection.words = {++lastSet_, 0};
    sets_[lastSet_];
    return host::kNormal;
  }
  std::int32_t vnedSSGet(const CString& mode, const host::SelectionPrompts& shown, const host::FilterList& filter,
                         host::EntityName& selection) override {
    asked.push_back({mode, shown, filter});
    std::optional<std::vector<std::uint64_t>> chosen;
    if (!selections.empty()) {
      chosen = selections.front();
      selections.pop_front();
    }
    if (!chosen) return host::kUserGaveUp;
    if (!sets_.contains(selection.words[0])) vnedSSAdd(selection);
    sets_[selection.words[0]] = *chosen;
    return host::kNormal;
  }
  std::int32_t vnedSSLength(const host::EntityName& selection, std::int64_t& length) override {
    const auto found = sets_.find(selection.words[0]);
    if (found == sets_.end()) return kRefused;
    length = static_cast<std::int64_t>(found->second.size());
    return host::kNormal;
  }
  std::int32_t vnedSSName(const host::EntityName& selection, std::int64_t index, host::EntityName& entity) override {
    entity.words = {static_cast<std::int64_t>(sets_.at(selection.words[0]).at(static_cast<std::size_t>(index))), 0};
    return host::kNormal;
  }
  std::int32_t vnedSSFree(const host::EntityName& selection) override {
    return sets_.erase(selection.words[0]) == 1 ? host::kNormal : kRefused;
  }
  /// Selection sets that were made and not freed.
  [[nodiscard]] std::size_t selectionSets() const { return sets_.size(); }

  /// Objects that were opened and not closed.
  [[nodiscard]] int openObjects() const {
    int count = 0;
    for (const PickableObject& object : pickables_) count += object.open;
    return count;
  }

 private:
  std::list<PickableObject> pickables_;
  Pick current_{Kind::Object, 0};
  std::map<std::int64_t, std::vector<std::uint64_t>> sets_;
  std::int64_t lastSet_ = 0;
};

}  // namespace lvx::test

#pragma once

#include <deque>
#include <list>
#include <vector>

#include "support/fake_host.h"

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

  /// Objects that were opened and not closed.
  [[nodiscard]] int openObjects() const {
    int count = 0;
    for (const PickableObject& object : pickables_) count += object.open;
    return count;
  }

 private:
  std::list<PickableObject> pickables_;
  Pick current_{Kind::Object, 0};
};

}  // namespace lvx::test

#include "runtime/standin_run_time.h"

#include <filesystem>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "platform/utf8.h"

namespace lvx::runtime {

using host::CString;
using host::EntityName;
using host::VnRxClass;

namespace {

constexpr VnRxClass kObjectClass{L"VnDbObject", nullptr};
constexpr VnRxClass kSiteClass{L"QMT_SITE", &kObjectClass};
constexpr VnRxClass kAlignmentClass{L"QMT_ALIGNMENT", &kObjectClass};
constexpr VnRxClass kProfileClass{L"QMT_PROFILE", &kObjectClass};
constexpr VnRxClass kSampleLineGroupClass{L"QMT_SAMPLE_LINE_GROUP", &kObjectClass};
constexpr VnRxClass kSampleLineClass{L"QMT_SAMPLE_LINE", &kObjectClass};
constexpr VnRxClass kSurfaceClass{L"QMT_TIN_SURFACE", &kObjectClass};
constexpr VnRxClass kPointClass{L"QMT_COGO_POINT", &kObjectClass};
constexpr VnRxClass kPointGroupClass{L"QMT_POINT_GROUP", &kObjectClass};
constexpr VnRxClass kCorridorClass{L"QMT_CORRIDOR", &kObjectClass};

/// A drawing object while somebody holds it open; it goes with its `close`.
class OpenObject final : public host::VnDbObject {
 public:
  OpenObject(civil::Handle handle, civil::ObjectKind kind, std::size_t& openObjects)
      : handle_(handle), kind_(kind), openObjects_(openObjects) {
    ++openObjects_;
  }
  ~OpenObject() override { --openObjects_; }
  [[nodiscard]] const VnRxClass* isA() const override { return &classOf(kind_); }
  void getVnDbHandle(host::VnDbHandle& handle) const override { handle = host::VnDbHandle(handle_); }
  std::int32_t close() override {
    delete this;
    return host::kSuccess;
  }

 private:
  civil::Handle handle_;
  civil::ObjectKind kind_;
  std::size_t& openObjects_;
};

/// The class tag that a selection filter asks for; empty for any class.
CString wantedClass(const host::FilterList& filter) {
  for (const host::FilterEntry& entry : filter)
    if (entry.groupCode == host::kEntityStart) return entry.text;
  return {};
}

}  // namespace

const VnRxClass& classOf(civil::ObjectKind kind) {
  switch (kind) {
    case civil::ObjectKind::Site:
      return kSiteClass;
    case civil::ObjectKind::Alignment:
      return kAlignmentClass;
    case civil::ObjectKind::Profile:
      return kProfileClass;
    case civil::ObjectKind::SampleLineGroup:
      return kSampleLineGroupClass;
    case civil::ObjectKind::SampleLine:
      return kSampleLineClass;
    case civil::ObjectKind::Surface:
      return kSurfaceClass;
    case civil::ObjectKind::Point:
      return kPointClass;
    case civil::ObjectKind::PointGroup:
      return kPointGroupClass;
    case civil::ObjectKind::Corridor:
      return kCorridorClass;
  }
  return kObjectClass;
}

StandinRunTime::StandinRunTime(FrontEnd& frontEnd, DocumentManager& documents, host::VnRxDictionary& registry)
    : frontEnd_(frontEnd), documents_(documents), registry_(registry) {}

StandinRunTime::~StandinRunTime() = default;

// ---------------------------------------------------------------- services and registration

void StandinRunTime::vnrxBuildClassHierarchy() {
  // Classes know their parents by themselves: there is no tree to bring up to date.
}

void StandinRunTime::deleteVnRxClass(VnRxClass*) {
  // Classes are constants of whoever declares them and go with their library.
}

std::int32_t StandinRunTime::vnedDefun(const CString& name, std::int16_t index) {
  scriptNames_[index] = name;
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedRegFunc(std::int32_t (*function)(), std::int16_t index) {
  scriptFunctions_[index] = function;
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedUndef(const CString& name, std::int16_t index) {
  const auto found = scriptNames_.find(index);
  if (found == scriptNames_.end() || found->second != name) return kRejected;
  scriptNames_.erase(found);
  scriptFunctions_.erase(index);
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedGetFunCode() {
  // No script runs in this host, so no function is ever wanted.
  return kRejected;
}

// ---------------------------------------------------------------- files and console

void StandinRunTime::vnutPrintf(const CString& text) {
  observe("vnutPrintf");
  frontEnd_.console(text);
}

std::int32_t StandinRunTime::vnedFindFile(const CString& name, CString& path, std::size_t maxLength) {
  observe("vnedFindFile");
  const auto take = [&](const std::string& found) {
    const CString wide = platform::fromUtf8(found);
    if (wide.size() >= maxLength) return kRejected;
    path = wide;
    return host::kNormal;
  };
  if (const auto given = files_.find(name); given != files_.end()) return take(given->second);
  const std::filesystem::path wanted(platform::toUtf8(name));
  if (wanted.empty()) return kRejected;
  std::error_code error;
  if (wanted.is_absolute()) return std::filesystem::is_regular_file(wanted, error) ? take(wanted.string()) : kRejected;
  for (const std::string& folder : supportPaths_) {
    const std::filesystem::path candidate = std::filesystem::path(folder) / wanted;
    if (std::filesystem::is_regular_file(candidate, error)) return take(candidate.string());
  }
  return std::filesystem::is_regular_file(wanted, error) ? take(wanted.string()) : kRejected;
}

// ---------------------------------------------------------------- picking

std::optional<civil::DrawingIndex::Entry> StandinRunTime::find(civil::Handle handle) const {
  return drawing_ ? drawing_->index().byHandle(handle) : std::nullopt;
}

std::int32_t StandinRunTime::vnedEntSel(const CString& prompt, EntityName& entity, host::PickPoint& point) {
  observe("vnedEntSel");
  const auto picked = frontEnd_.pickEntity(prompt);
  if (!picked) return host::kUserGaveUp;
  entity.words = {static_cast<std::int64_t>(*picked), 0};
  point = {};
  return host::kNormal;
}

std::int32_t StandinRunTime::vndbGetObjectId(host::VnDbObjectId& id, const EntityName& entity) {
  observe("vndbGetObjectId");
  const auto handle = static_cast<civil::Handle>(entity.words[0]);
  if (entity.words[1] != 0 || !find(handle)) return kNoSuchObject;
  id.value = handle;
  return host::kSuccess;
}

std::int32_t StandinRunTime::vndbOpenObject(host::VnDbObject*& object, host::VnDbObjectId id, std::int32_t mode,
                                            bool /*openErased*/) {
  observe("vndbOpenObject");
  constexpr std::int32_t kForReading = 0;
  const auto entry = find(id.value);
  if (!entry || mode != kForReading) return kNoSuchObject;
  object = std::make_unique<OpenObject>(id.value, entry->kind(), openObjects_).release();
  return host::kSuccess;
}

host::VnDbHandle StandinRunTime::handle(host::VnDbObjectId id) {
  observe("handle");
  return host::VnDbHandle(find(id.value) ? id.value : 0);
}

// ---------------------------------------------------------------- selection sets

namespace {
constexpr std::int64_t kSelectionMark = 1;  // second word of a selection set's name; a picked entity has 0 there
}

EntityName StandinRunTime::addSelection(std::vector<civil::Handle> handles) {
  const std::int64_t number = ++lastSelection_;
  selectionSets_[number] = std::move(handles);
  return {{number, kSelectionMark}};
}

std::vector<civil::Handle>* StandinRunTime::findSelection(const EntityName& selection) {
  if (selection.words[1] != kSelectionMark) return nullptr;
  const auto found = selectionSets_.find(selection.words[0]);
  return found == selectionSets_.end() ? nullptr : &found->second;
}

std::int32_t StandinRunTime::vnedSSGet(const CString& /*mode*/, const host::SelectionPrompts& prompts,
                                       const host::FilterList& filter, EntityName& selection) {
  observe("vnedSSGet");
  const CString wanted = wantedClass(filter);
  auto chosen = frontEnd_.selectEntities(prompts.add, prompts.remove, wanted);
  if (!chosen) return host::kUserGaveUp;
  std::unordered_set<civil::Handle> selected;
  std::erase_if(*chosen, [&](civil::Handle handle) {
    const auto entry = find(handle);
    // A set holds an object once: selecting it again changes nothing.
    return !entry || (!wanted.empty() && wanted != classOf(entry->kind()).classTag()) ||
           !selected.insert(handle).second;
  });
  if (chosen->empty()) return host::kUserGaveUp;
  if (std::vector<civil::Handle>* standing = findSelection(selection))
    *standing = std::move(*chosen);
  else
    selection = addSelection(std::move(*chosen));
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedSSAdd(EntityName& selection) {
  observe("vnedSSAdd");
  selection = addSelection({});
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedSSLength(const EntityName& selection, std::int64_t& length) {
  observe("vnedSSLength");
  const auto* handles = findSelection(selection);
  if (handles == nullptr) return kRejected;
  length = static_cast<std::int64_t>(handles->size());
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedSSName(const EntityName& selection, std::int64_t index, EntityName& entity) {
  observe("vnedSSName");
  const auto* handles = findSelection(selection);
  if (handles == nullptr || index < 0 || index >= static_cast<std::int64_t>(handles->size())) return kRejected;
  entity.words = {static_cast<std::int64_t>((*handles)[static_cast<std::size_t>(index)]), 0};
  return host::kNormal;
}

std::int32_t StandinRunTime::vnedSSFree(const EntityName& selection) {
  observe("vnedSSFree");
  if (findSelection(selection) == nullptr) return kRejected;
  selectionSets_.erase(selection.words[0]);
  return host::kNormal;
}

host::FilterList* StandinRunTime::vnutBuildList(std::int16_t groupCode, const CString& text) {
  observe("vnutBuildList");
  auto list = std::make_unique<host::FilterList>();
  list->push_back({groupCode, text});
  ++filterLists_;
  return list.release();
}

std::int32_t StandinRunTime::vnutRelRb(host::FilterList* list) {
  observe("vnutRelRb");
  if (list == nullptr) return kRejected;
  const std::unique_ptr<host::FilterList> owned(list);
  --filterLists_;
  return host::kNormal;
}

}  // namespace lvx::runtime

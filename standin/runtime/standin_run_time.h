#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/run_time.h"
#include "runtime/front_end.h"
#include "runtime/host_services.h"
#include "runtime/open_drawing.h"

namespace lvx::runtime {

/// The host's run-time functions over one open drawing. Object identifiers are the drawing's handles.
class StandinRunTime final : public host::RunTime {
 public:
  // What the functions of the two kinds answer beside success.
  static constexpr std::int32_t kRejected = -5003;  ///< of the vned and vnut functions
  static constexpr std::int32_t kNoSuchObject = 1;  ///< of the vndb functions

  StandinRunTime(FrontEnd& frontEnd, DocumentManager& documents, host::VnRxDictionary& registry);
  ~StandinRunTime() override;

  // ---- what the host sets up
  /// The drawing that identifiers and picks refer to; empty for none.
  void setDrawing(OpenDrawingRef drawing) { drawing_ = std::move(drawing); }
  /// Folders that vnedFindFile searches, in order; the current folder stands behind them.
  void setSupportPaths(std::vector<std::string> folders) { supportPaths_ = std::move(folders); }
  /// A file that is found under `name` whatever its own name and folder.
  void setFile(const host::CString& name, const std::string& path) { files_[name] = path; }
  /// Told of every call that belongs inside a command, by the function's name.
  std::function<void(const char* function)> callObserver;
  /// Objects that were opened and not closed again.
  [[nodiscard]] std::size_t openObjectCount() const { return openObjects_; }
  [[nodiscard]] std::size_t selectionSetCount() const { return selectionSets_.size(); }
  [[nodiscard]] std::size_t filterListCount() const { return filterLists_; }

  // ---- services and registration
  [[nodiscard]] host::VnRxDictionary& vnrxSysRegistry() override { return registry_; }
  void vnrxBuildClassHierarchy() override;
  void deleteVnRxClass(host::VnRxClass* classToDelete) override;
  std::int32_t vnedDefun(const host::CString& name, std::int16_t index) override;
  std::int32_t vnedRegFunc(std::int32_t (*function)(), std::int16_t index) override;
  std::int32_t vnedUndef(const host::CString& name, std::int16_t index) override;
  [[nodiscard]] std::int32_t vnedGetFunCode() override;

  // ---- documents and windows
  [[nodiscard]] host::VnApDocManager* vnDocManagerPtr() override { return &documents_; }
  [[nodiscard]] void* vnsw_mainWnd() override { return frontEnd_.mainWindow(); }

  // ---- files and console
  std::int32_t vnedFindFile(const host::CString& name, host::CString& path, std::size_t maxLength) override;
  void vnutPrintf(const host::CString& text) override;

  // ---- picking
  std::int32_t vnedEntSel(const host::CString& prompt, host::EntityName& entity, host::PickPoint& point) override;
  std::int32_t vndbGetObjectId(host::VnDbObjectId& id, const host::EntityName& entity) override;
  std::int32_t vndbOpenObject(host::VnDbObject*& object, host::VnDbObjectId id, std::int32_t mode,
                              bool openErased) override;
  [[nodiscard]] host::VnDbHandle handle(host::VnDbObjectId id) override;

  // ---- selection sets
  std::int32_t vnedSSGet(const host::CString& mode, const host::SelectionPrompts& prompts,
                         const host::FilterList& filter, host::EntityName& selection) override;
  std::int32_t vnedSSAdd(host::EntityName& selection) override;
  std::int32_t vnedSSLength(const host::EntityName& selection, std::int64_t& length) override;
  std::int32_t vnedSSName(const host::EntityName& selection, std::int64_t index, host::EntityName& entity) override;
  std::int32_t vnedSSFree(const host::EntityName& selection) override;
  [[nodiscard]] host::FilterList* vnutBuildList(std::int16_t groupCode, const host::CString& text) override;
  std::int32_t vnutRelRb(host::FilterList* list) override;

 private:
  void observe(const char* function) const {
    if (callObserver) callObserver(function);
  }
  [[nodiscard]] std::optional<civil::DrawingIndex::Entry> find(civil::Handle handle) const;
  /// Null for a name that stands for no set.
  [[nodiscard]] std::vector<civil::Handle>* findSelection(const host::EntityName& selection);
  host::EntityName addSelection(std::vector<civil::Handle> handles);

  FrontEnd& frontEnd_;
  DocumentManager& documents_;
  host::VnRxDictionary& registry_;
  OpenDrawingRef drawing_;
  std::vector<std::string> supportPaths_;
  std::map<host::CString, std::string> files_;
  std::map<std::int16_t, host::CString> scriptNames_;
  std::map<std::int16_t, std::int32_t (*)()> scriptFunctions_;
  std::map<std::int64_t, std::vector<civil::Handle>> selectionSets_;
  std::int64_t lastSelection_ = 0;
  std::size_t openObjects_ = 0;
  std::size_t filterLists_ = 0;
};

/// Class of a drawing object's kind, with the tag that picks compare.
[[nodiscard]] const host::VnRxClass& classOf(civil::ObjectKind kind);

}  // namespace lvx::runtime

#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "framework/module_state.h"
#include "framework/text.h"
#include "host/model.h"

/// The host's run-time functions: services by name, documents and their locks, console, picking, selection sets,
/// opening drawing objects. Names are the host's own.
namespace lvx::host {

/// Status values that callers test against.
/// The request was met: an object was picked, a file was found.
inline constexpr std::int32_t kNormal = 5100;
/// The user pressed Escape or picked nothing. Callers test for kNormal alone: any other value means the same to them.
inline constexpr std::int32_t kUserGaveUp = -5002;
/// Group code of the class name in a selection filter.
inline constexpr std::int32_t kEntityStart = 5020;
/// What the functions whose names begin with vndb answer when they did what was asked.
inline constexpr std::int32_t kSuccess = 0;

/// A class of the host's run-time type system. Host and module each hold constants of their own for one class, so
/// classes are the same where their tags are.
class VnRxClass {
 public:
  constexpr VnRxClass(const wchar_t* classTag, const VnRxClass* parent) : classTag_(classTag), parent_(parent) {}
  /// The class name, for instance "QMT_ALIGNMENT".
  [[nodiscard]] constexpr const wchar_t* classTag() const { return classTag_; }
  /// The class that this one derives from directly; null for one that derives from none.
  [[nodiscard]] constexpr const VnRxClass* myParent() const { return parent_; }
  /// True for the class itself too.
  [[nodiscard]] constexpr bool isDerivedFrom(const VnRxClass* other) const {
    for (const VnRxClass* walk = this; walk != nullptr; walk = walk->parent_)
      if (other != nullptr && std::wstring_view(walk->classTag_) == other->classTag_) return true;
    return false;
  }

 private:
  const wchar_t* classTag_;
  const VnRxClass* parent_;
};

/// Base of what the registry dictionary holds, of drawing objects and of reactors.
class VnRxObject {
 public:
  VnRxObject() = default;
  VnRxObject(const VnRxObject&) = delete;
  VnRxObject& operator=(const VnRxObject&) = delete;
  virtual ~VnRxObject() = default;
  [[nodiscard]] virtual const VnRxClass* isA() const = 0;
};

/// The host's registry dictionary. What it holds belongs to the host.
class VnRxDictionary {
 public:
  virtual ~VnRxDictionary() = default;
  /// The object of that name, or null.
  [[nodiscard]] virtual VnRxObject* at(const CString& name) = 0;
};

/// Service "DynamicLinker".
class VnRxDynamicLinker : public VnRxObject {
 public:
  [[nodiscard]] static const VnRxClass* desc();
  /// Lets the host unload the application again.
  virtual bool unlockApplication(void* appId) = 0;
  /// Registers the application as able to work with several documents.
  virtual bool registerAppMDIAware(void* appId) = 0;
};

/// Whose resources a command's texts come from; null: the host's own.
class VnRxResourceInstance {
 public:
  explicit VnRxResourceInstance(framework::ResourceHandle module) : module_(module) {}
  [[nodiscard]] framework::ResourceHandle module() const { return module_; }

 private:
  framework::ResourceHandle module_;
};

using CommandFunction = void (*)();

/// Service "VANTOR_REGISTERED_COMMANDS".
class VnEdCommandStack : public VnRxObject {
 public:
  [[nodiscard]] static const VnRxClass* desc();
  /// Registers a command. A name that is taken is refused; the caller doesn't look.
  virtual std::int32_t addCommand(const CString& group, const CString& globalName, const CString& localName,
                                  std::uint32_t flags, CommandFunction function, void* uiContext,
                                  std::int32_t localNameNumber, const VnRxResourceInstance* resource) = 0;
  virtual std::int32_t removeCmd(const CString& group, const CString& globalName) = 0;
};

// ---------------------------------------------------------------- documents

/// An open document; owned by the host.
class VnApDocument {
 public:
  virtual ~VnApDocument() = default;
};

/// Told when a document is about to go, while it still stands.
class VnApDocManagerReactor : public VnRxObject {
 public:
  [[nodiscard]] const VnRxClass* isA() const override;
  virtual void documentToBeDestroyed(VnApDocument* document) = 0;
};

inline constexpr std::int32_t kLockForPick = 4;

class VnApDocManager {
 public:
  virtual ~VnApDocManager() = default;
  /// The current document, or null.
  [[nodiscard]] virtual VnApDocument* currentDocument() = 0;
  virtual std::int32_t lockDocument(VnApDocument* document, std::int32_t lockMode, const wchar_t* globalCommandName,
                                    const wchar_t* localCommandName, bool prompt) = 0;
  virtual std::int32_t unlockDocument(VnApDocument* document) = 0;
  virtual void addReactor(VnApDocManagerReactor* reactor) = 0;
  virtual void removeReactor(VnApDocManagerReactor* reactor) = 0;
};

// ---------------------------------------------------------------- drawing objects

/// A picked thing or a selection set; only the host understands the two words.
struct EntityName {
  std::array<std::int64_t, 2> words{};
};

struct PickPoint {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

/// The handle of a drawing object.
class VnDbHandle {
 public:
  constexpr explicit VnDbHandle(std::uint64_t value = 0) : value_(value) {}
  [[nodiscard]] constexpr std::uint64_t value() const { return value_; }
  /// Upper-case hexadecimal without leading zeros. False, and the buffer an empty text, where `bufferSize` wide
  /// characters don't hold it with its closing zero.
  bool getIntoAsciiBuffer(wchar_t* buffer, std::size_t bufferSize = 32) const;

 private:
  std::uint64_t value_;
};

/// A drawing object, open for reading until `close`.
class VnDbObject : public VnRxObject {
 public:
  virtual void getVnDbHandle(VnDbHandle& handle) const = 0;
  virtual std::int32_t close() = 0;
};

/// One entry of a selection filter: a group code and its text.
struct FilterEntry {
  std::int16_t groupCode = 0;
  CString text;
};
using FilterList = std::vector<FilterEntry>;

/// The prompts of a point selection: for adding and for removing.
struct SelectionPrompts {
  CString add;
  CString remove;
};

/// The free functions of the host's run time.
class RunTime {
 public:
  RunTime() = default;
  RunTime(const RunTime&) = delete;
  RunTime& operator=(const RunTime&) = delete;
  virtual ~RunTime() = default;

  // ---- services and registration
  [[nodiscard]] virtual VnRxDictionary& vnrxSysRegistry() = 0;
  virtual void vnrxBuildClassHierarchy() = 0;
  virtual void deleteVnRxClass(VnRxClass* classToDelete) = 0;
  virtual std::int32_t vnedDefun(const CString& name, std::int16_t index) = 0;
  virtual std::int32_t vnedRegFunc(std::int32_t (*function)(), std::int16_t index) = 0;
  virtual std::int32_t vnedUndef(const CString& name, std::int16_t index) = 0;
  /// The index of the scripting function that the host wants called.
  [[nodiscard]] virtual std::int32_t vnedGetFunCode() = 0;

  // ---- documents and windows
  /// The document manager, or null while the host shuts down.
  [[nodiscard]] virtual VnApDocManager* vnDocManagerPtr() = 0;
  /// The host's main window, parent of dialogs; only the host's own front end understands it.
  [[nodiscard]] virtual void* vnsw_mainWnd() = 0;

  // ---- files and console
  /// Searches the support paths. kNormal and the found path, or another status and `path` untouched. A path of
  /// `maxLength` characters or more counts as not found.
  virtual std::int32_t vnedFindFile(const CString& name, CString& path, std::size_t maxLength) = 0;
  /// Prints on the command line.
  virtual void vnutPrintf(const CString& text) = 0;

  // ---- picking
  virtual std::int32_t vnedEntSel(const CString& prompt, EntityName& entity, PickPoint& point) = 0;
  virtual std::int32_t vndbGetObjectId(VnDbObjectId& id, const EntityName& entity) = 0;
  /// Mode 0 opens for reading. Every object opened is closed by its opener.
  virtual std::int32_t vndbOpenObject(VnDbObject*& object, VnDbObjectId id, std::int32_t mode, bool openErased) = 0;
  /// The handle behind an identifier, without opening the object; 0 where there is none.
  [[nodiscard]] virtual VnDbHandle handle(VnDbObjectId id) = 0;

  // ---- selection sets
  /// Fills `selection` by the user's choice. Mode ":$" shows `prompts`. Where `selection` names a set that stands, that
  /// set is filled; otherwise a new one is made. A user who gives up, or selects nothing that passes the filter, leaves
  /// both name and set as they are.
  virtual std::int32_t vnedSSGet(const CString& mode, const SelectionPrompts& prompts, const FilterList& filter,
                                 EntityName& selection) = 0;
  /// Makes an empty selection set.
  virtual std::int32_t vnedSSAdd(EntityName& selection) = 0;
  virtual std::int32_t vnedSSLength(const EntityName& selection, std::int64_t& length) = 0;
  virtual std::int32_t vnedSSName(const EntityName& selection, std::int64_t index, EntityName& entity) = 0;
  virtual std::int32_t vnedSSFree(const EntityName& selection) = 0;
  /// Builds and gives back a filter list.
  [[nodiscard]] virtual FilterList* vnutBuildList(std::int16_t groupCode, const CString& text) = 0;
  virtual std::int32_t vnutRelRb(FilterList* list) = 0;
};

}  // namespace lvx::host

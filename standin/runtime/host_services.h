#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "framework/module_state.h"
#include "host/run_time.h"

/// What a module finds through the host's system registry and document manager.
namespace lvx::runtime {

/// Remembers which applications may be unloaded and which can work with several documents.
class DynamicLinker final : public host::VnRxDynamicLinker {
 public:
  [[nodiscard]] const host::VnRxClass* isA() const override { return desc(); }
  bool unlockApplication(void* appId) override;
  bool registerAppMDIAware(void* appId) override;

  [[nodiscard]] bool isUnlocked(const void* appId) const;
  [[nodiscard]] bool isMdiAware(const void* appId) const;
  /// Forgets an application once it is unloaded.
  void forget(const void* appId);

 private:
  struct Application {
    bool unlocked = false;
    bool mdiAware = false;
  };
  std::map<const void*, Application> applications_;
};

/// One command on the stack.
struct RegisteredCommand {
  host::CString group;
  host::CString globalName;
  host::CString localName;
  std::uint32_t flags = 0;
  host::CommandFunction function = nullptr;
  void* uiContext = nullptr;
  std::int32_t localNameNumber = -1;
  /// Whose resources the command's texts come from; null: the host's own.
  framework::ResourceHandle resourceModule = nullptr;
};

/// The commands in the order of their registration. Group and global name together are taken once.
class CommandStack final : public host::VnEdCommandStack {
 public:
  static constexpr std::int32_t kAdded = 0;
  static constexpr std::int32_t kDuplicate = 1;
  static constexpr std::int32_t kUnknown = 2;

  [[nodiscard]] const host::VnRxClass* isA() const override { return desc(); }
  std::int32_t addCommand(const host::CString& group, const host::CString& globalName, const host::CString& localName,
                          std::uint32_t flags, host::CommandFunction function, void* uiContext,
                          std::int32_t localNameNumber, const host::VnRxResourceInstance* resource) override;
  std::int32_t removeCmd(const host::CString& group, const host::CString& globalName) override;

  /// The command that a user calls by its local or global name; null where there is none.
  [[nodiscard]] const RegisteredCommand* find(const host::CString& name) const;
  [[nodiscard]] const std::vector<RegisteredCommand>& commands() const { return commands_; }

 private:
  std::vector<RegisteredCommand> commands_;
};

/// The system registry: the two services by their names.
class SystemRegistry final : public host::VnRxDictionary {
 public:
  SystemRegistry(DynamicLinker& linker, CommandStack& commands) : linker_(linker), commands_(commands) {}
  [[nodiscard]] host::VnRxObject* at(const host::CString& name) override;

 private:
  DynamicLinker& linker_;
  CommandStack& commands_;
};

/// The open document of this process.
class Document final : public host::VnApDocument {};

/// One document at a time. Locks are counted, so that one left over can be reported.
class DocumentManager final : public host::VnApDocManager {
 public:
  static constexpr std::int32_t kDone = 0;
  static constexpr std::int32_t kNotOurs = 1;
  static constexpr std::int32_t kNotLocked = 2;

  [[nodiscard]] host::VnApDocument* currentDocument() override { return document_.get(); }
  std::int32_t lockDocument(host::VnApDocument* document, std::int32_t lockMode, const wchar_t* globalCommandName,
                            const wchar_t* localCommandName, bool prompt) override;
  std::int32_t unlockDocument(host::VnApDocument* document) override;
  void addReactor(host::VnApDocManagerReactor* reactor) override;
  void removeReactor(host::VnApDocManagerReactor* reactor) override;

  /// Makes a document; the one that was open is closed first.
  void open();
  /// Tells the reactors that the document is about to go, and closes it. Nothing where there is none.
  void close();
  [[nodiscard]] std::size_t lockCount() const { return locks_; }
  [[nodiscard]] std::size_t reactorCount() const { return reactors_.size(); }

 private:
  std::unique_ptr<Document> document_;
  std::vector<host::VnApDocManagerReactor*> reactors_;
  std::size_t locks_ = 0;
};

}  // namespace lvx::runtime

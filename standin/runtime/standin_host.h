#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "companion/companion_access.h"
#include "host/host.h"
#include "platform/system_platform.h"
#include "runtime/file_journal.h"
#include "runtime/front_end.h"
#include "runtime/host_services.h"
#include "runtime/input_files.h"
#include "runtime/module_loader.h"
#include "runtime/observed_platform.h"
#include "runtime/open_drawing.h"
#include "runtime/roadway_objects.h"
#include "runtime/standin_run_time.h"

namespace lvx::runtime {

/// Who writes the workbooks: the spreadsheet program of the machine where one is registered and else this process, always
/// that program, or always this process.
enum class WorkbookWriter : std::uint8_t { Automatic, Spreadsheet, File };

/// How a process sets up its host.
struct HostOptions {
  platform::PlatformSettings platform;
  /// Folders that the module's files are searched in, in order; the current folder stands behind them.
  std::vector<std::string> supportPaths;
  /// Files that are found under a name whatever their own: the message file that the user named.
  std::map<host::CString, std::string> files;
  WorkbookWriter workbookWriter = WorkbookWriter::File;
  /// That pack the sheet of a large workbook; 0: as many as there are processors.
  unsigned workbookThreads = 0;
  /// What is read beside the drawing, and so is no output.
  InputFiles inputs;
  /// True once the user wants to stop; asked during long work.
  std::function<bool()> isInterrupted;
  /// How far long work in the open drawing is; may be empty.
  StartProgress startProgress;
};

/// The host of a process that has no other: answers everything that a module and the companion library ask, over one
/// open drawing. It puts itself behind vnrxHost() and lvxCompanionAccess() for as long as it lives.
///
///     StandinHost host(frontEnd, options);
///     host.open(landxml::readDrawing("road.xml"));
///     …                                   // commands run
///     host.close();
///     host.journal().events();            // what was written, and what couldn't be
///
/// A test of a host that fails overrides the operation that is to fail.
class StandinHost : public host::Host, public companion::CompanionAccess {
 public:
  /// Throws std::invalid_argument where a code page of `options` is unknown.
  explicit StandinHost(FrontEnd& frontEnd, HostOptions options = {});
  ~StandinHost() override;

  /// Opens a drawing as the current document; one that was open is closed first.
  void open(civil::Drawing drawing);
  /// The same for one whose look-ups were built elsewhere, in a thread that reads drawings.
  void open(OpenDrawingRef drawing);
  void close();
  /// Loads a module into this host and tells it of the open drawing. It must go before the host does. Throws ModuleError.
  [[nodiscard]] LoadedModule loadModule(const std::filesystem::path& file);
  /// The open drawing, or empty.
  [[nodiscard]] const OpenDrawingRef& openDrawing() const { return drawing_; }

  /// Why `path` can't be an output of a command, in InputFiles' words; empty where it can.
  [[nodiscard]] std::string whyNoOutput(const std::string& path) const;
  [[nodiscard]] const FileJournal& journal() const { return journal_; }
  [[nodiscard]] FileJournal& journal() { return journal_; }
  [[nodiscard]] CommandStack& commands() { return commands_; }
  [[nodiscard]] DynamicLinker& linker() { return linker_; }
  [[nodiscard]] DocumentManager& documents() { return documents_; }
  [[nodiscard]] StandinRunTime& standinRunTime() { return runTime_; }
  /// True while somebody holds the companion library's references.
  [[nodiscard]] bool isConnected() const { return connected_; }

  // ---- for the module
  [[nodiscard]] host::RunTime& runTime() override { return runTime_; }
  [[nodiscard]] host::UserInterface& userInterface() override { return frontEnd_; }
  [[nodiscard]] host::DialogRunner& dialogs() override { return frontEnd_.dialogs(); }
  [[nodiscard]] bool hasWindows() const override { return frontEnd_.hasWindows(); }
  [[nodiscard]] platform::Platform& platform() override { return observedPlatform_; }
  [[nodiscard]] framework::ModuleState& moduleState() override { return moduleState_; }
  [[nodiscard]] host::Ref<host::AutomationObject> createAutomationObject(const host::CString& programId) override;
  [[nodiscard]] host::ActiveApplication activeApplication(const host::CString& programId) override;

  // ---- for the companion library
  [[nodiscard]] bool connect(host::Ref<host::QmtDocument>& document, host::Ref<host::QmtDatabase>& database) override;
  void disconnect() override;
  [[nodiscard]] const civil::Drawing* drawing() override;
  [[nodiscard]] const civil::AlignmentObject* alignmentBehind(const host::QmtAlignment* alignment) override;

 private:
  struct Automation;

  FrontEnd& frontEnd_;
  HostOptions options_;
  FileJournal journal_;
  /// The system's own automation, from the first program that is started on; no object of one lives longer.
  std::unique_ptr<Automation> automation_;
  platform::SystemPlatform systemPlatform_;
  ObservedPlatform observedPlatform_;
  framework::ModuleState moduleState_;
  DynamicLinker linker_;
  CommandStack commands_;
  SystemRegistry registry_;
  DocumentManager documents_;
  StandinRunTime runTime_;
  OpenDrawingRef drawing_;
  std::shared_ptr<ActiveDrawing> activeDrawing_ = std::make_shared<ActiveDrawing>();
  bool connected_ = false;
  host::Host* formerHost_ = nullptr;
  companion::CompanionAccess* formerAccess_ = nullptr;
};

}  // namespace lvx::runtime

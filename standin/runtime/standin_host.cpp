#include "runtime/standin_host.h"

#include <utility>

#include "accessor/host_accessor.h"
#include "host/excel_operations.h"
#include "native/automation_client.h"
#include "runtime/model_objects.h"
#include "runtime/observed_spreadsheet.h"
#include "runtime/observed_workbook.h"
#include "workbook/workbook_server.h"

namespace lvx::runtime {

struct StandinHost::Automation {
  native::AutomationScope scope;
};

StandinHost::StandinHost(FrontEnd& frontEnd, HostOptions options)
    : frontEnd_(frontEnd),
      options_(std::move(options)),
      systemPlatform_(options_.platform),
      observedPlatform_(systemPlatform_, journal_, options_.isInterrupted,
                        [this](const std::string& path) { return whyNoOutput(path); }),
      registry_(linker_, commands_),
      runTime_(frontEnd, documents_, registry_) {
  runTime_.setSupportPaths(options_.supportPaths);
  for (const auto& [name, path] : options_.files) runTime_.setFile(name, path);
  formerHost_ = accessor::setCurrentHost(this);
  formerAccess_ = companion::setCompanionAccess(this);
}

StandinHost::~StandinHost() {
  close();
  companion::setCompanionAccess(formerAccess_);
  accessor::setCurrentHost(formerHost_);
}

void StandinHost::open(civil::Drawing drawing) {
  close();
  open(std::make_shared<OpenDrawing>(std::move(drawing)));
}

void StandinHost::open(OpenDrawingRef drawing) {
  close();
  drawing_ = std::move(drawing);
  drawing_->isInterrupted = options_.isInterrupted;
  drawing_->startProgress = options_.startProgress;
  activeDrawing_->drawing = drawing_;
  runTime_.setDrawing(drawing_);
  documents_.open();
}

void StandinHost::close() {
  documents_.close();
  runTime_.setDrawing(nullptr);
  drawing_.reset();
  activeDrawing_->drawing.reset();
  connected_ = false;
}

LoadedModule StandinHost::loadModule(const std::filesystem::path& file) {
  LoadedModule module = LoadedModule::load(file, [this](const void* appId) { linker_.forget(appId); });
  if (drawing_) module.drawingLoaded();
  return module;
}

host::Ref<host::AutomationObject> StandinHost::createAutomationObject(const host::CString& programId) {
  if (programId != host::kExcelProgramId) return nullptr;
  auto observer = std::make_unique<ObservedWorkbook>(journal_, options_.isInterrupted,
                                                     [this](const std::string& path) { return whyNoOutput(path); });
  const bool bySpreadsheet =
      options_.workbookWriter == WorkbookWriter::Spreadsheet ||
      (options_.workbookWriter == WorkbookWriter::Automatic && native::isAutomationProgram(programId));
  if (!bySpreadsheet) return workbook::startWorkbookServer(std::move(observer), options_.workbookThreads);
  if (!automation_) automation_ = std::make_unique<Automation>();
  host::Ref<host::AutomationObject> application = native::createAutomationObject(programId);
  return application ? observeSpreadsheet(std::move(application), std::move(observer)) : nullptr;
}

std::string StandinHost::whyNoOutput(const std::string& path) const {
  InputFiles inputs = options_.inputs;
  if (drawing_) inputs.add(drawing_->drawing());
  return inputs.whyNoOutput(path);
}

host::ActiveApplication StandinHost::activeApplication(const host::CString& programId) {
  // This process is one application; none of another identifier runs in it.
  if (programId != host::kApplicationProgramId) return {};
  return {true, makeApplication(activeDrawing_)};
}

bool StandinHost::connect(host::Ref<host::QmtDocument>& document, host::Ref<host::QmtDatabase>& database) {
  if (!drawing_) return false;
  document = makeDocument(drawing_);
  database = makeDatabase(drawing_);
  connected_ = true;
  return true;
}

void StandinHost::disconnect() { connected_ = false; }

const civil::Drawing* StandinHost::drawing() { return connected_ && drawing_ ? &drawing_->drawing() : nullptr; }

const civil::AlignmentObject* StandinHost::alignmentBehind(const host::QmtAlignment* alignment) {
  return runtime::alignmentBehind(alignment);
}

}  // namespace lvx::runtime

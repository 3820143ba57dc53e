#include "doubles/fake_host.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "accessor/host_accessor.h"
#include "platform/utf8.h"
#include "services/message_catalogue.h"

namespace lvx::test {

host::VnRxObject* FakeDictionary::at(const CString& name) {
  const auto found = objects.find(name);
  return found == objects.end() ? nullptr : found->second;
}

CString FakeRunTime::consoleText() const {
  CString text;
  for (const CString& part : console) text += part;
  return text;
}

std::int32_t FakeRunTime::vnedFindFile(const CString& name, CString& path, std::size_t maxLength) {
  searchedFiles.push_back(name);
  const auto found = files.find(name);
  if (found == files.end() || found->second.size() >= maxLength) return kRefused;
  path = found->second;
  return host::kNormal;
}

std::int32_t FakeRunTime::vnedEntSel(const CString& prompt, host::EntityName&, host::PickPoint&) {
  prompts.push_back(prompt);
  return host::kUserGaveUp;
}

std::int32_t FakeRunTime::vndbGetObjectId(host::VnDbObjectId& id, const host::EntityName&) {
  id = {};
  return kRefused;
}

std::int32_t FakeRunTime::vndbOpenObject(host::VnDbObject*& object, host::VnDbObjectId id, std::int32_t, bool) {
  const auto found = objects.find(id.value);
  object = found == objects.end() ? nullptr : found->second;
  return object == nullptr ? kRefused : host::kSuccess;
}

host::VnDbHandle FakeRunTime::handle(host::VnDbObjectId id) {
  const auto found = handles.find(id.value);
  return host::VnDbHandle(found == handles.end() ? 0 : found->second);
}

std::int32_t FakeRunTime::vnedSSGet(const CString&, const host::SelectionPrompts&, const host::FilterList&,
                                    host::EntityName&) {
  return host::kUserGaveUp;
}

std::int32_t FakeRunTime::vnedSSAdd(host::EntityName&) { return kRefused; }

std::int32_t FakeRunTime::vnedSSLength(const host::EntityName&, std::int64_t& length) {
  length = 0;
  return kRefused;
}

std::int32_t FakeRunTime::vnedSSName(const host::EntityName&, std::int64_t, host::EntityName&) { return kRefused; }

std::int32_t FakeRunTime::vnedSSFree(const host::EntityName&) { return kRefused; }

host::FilterList* FakeRunTime::vnutBuildList(std::int16_t groupCode, const CString& text) {
  ++openFilterLists_;
  return new host::FilterList{{groupCode, text}};
}

std::int32_t FakeRunTime::vnutRelRb(host::FilterList* list) {
  if (list == nullptr) return kRefused;
  --openFilterLists_;
  delete list;
  return host::kNormal;
}

host::BoxAnswer FakeUserInterface::messageBox(const CString& text, host::BoxButtons buttons, host::BoxIcon icon) {
  boxes.push_back({text, buttons, icon});
  if (buttons == host::BoxButtons::Ok) return host::BoxAnswer::Ok;
  if (answers.empty()) throw std::logic_error("no answer for the box: " + platform::toUtf8(text));
  const host::BoxAnswer answer = answers.front();
  answers.pop_front();
  if (!host::offers(buttons, answer)) throw std::logic_error("no such button on the box: " + platform::toUtf8(text));
  return answer;
}

std::optional<CString> FakeUserInterface::saveFileBox(const CString& filter, std::uint32_t flags) {
  fileBoxes.push_back({filter, flags});
  if (paths.empty()) throw std::logic_error("no path for the file box");
  const std::optional<CString> path = paths.front();
  paths.pop_front();
  return path;
}

FakeHost::FakeHost(platform::PlatformSettings settings)
    : runTime_(std::make_unique<FakeRunTime>()),
      platform_(std::make_unique<platform::SystemPlatform>(std::move(settings))) {
  services::releaseMessages();
  before_ = accessor::setCurrentHost(this);
}

FakeHost::~FakeHost() {
  services::releaseMessages();
  accessor::setCurrentHost(before_);
  if (folder_.empty()) return;
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void FakeHost::setPlatform(platform::PlatformSettings settings) {
  platform_ = std::make_unique<platform::SystemPlatform>(std::move(settings));
  services::releaseMessages();
}

void FakeHost::useMessages(const std::string& language) {
  const std::string path = std::string(LVX_SOURCE_DIR) + "/messages/" + language + "/LVX_MIRELREPORT.txt";
  if (!std::filesystem::exists(path)) throw std::logic_error("no messages for the language " + language);
  run().files[kMessageFileName] = platform::fromUtf8(path);
  services::releaseMessages();
}

void FakeHost::useMessageBytes(const std::string& bytes) {
  const CString path = folder() + kMessageFileName;
  std::ofstream file(platform::toUtf8(path), std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error("the test's message file can't be written");
  run().files[kMessageFileName] = path;
  services::releaseMessages();
}

void FakeHost::setApplication(const CString& programId, host::Ref<host::VantorApplication> application) {
  applications_[programId] = std::move(application);
}

void FakeHost::replaceRunTime(std::unique_ptr<FakeRunTime> runTime) { runTime_ = std::move(runTime); }

CString FakeHost::folder() {
  if (folder_.empty()) {
    // A name that no other test has, of this process or another.
    std::random_device random;
    for (int i = 0; i < 100 && folder_.empty(); ++i) {
      const auto path = std::filesystem::temp_directory_path() / ("lvx-test-" + std::to_string(random()));
      if (std::filesystem::create_directory(path)) folder_ = path.string();
    }
    if (folder_.empty()) throw std::runtime_error("no folder for the test's files");
  }
  return platform::fromUtf8(folder_) + static_cast<wchar_t>(std::filesystem::path::preferred_separator);
}

host::Ref<host::AutomationObject> FakeHost::createAutomationObject(const CString& programId) {
  return automationFactory_ ? automationFactory_(programId) : nullptr;
}

host::DialogRunner& FakeHost::dialogs() {
  if (dialogRunner_ == nullptr) throw std::logic_error("no one runs the dialog");
  return *dialogRunner_;
}

host::ActiveApplication FakeHost::activeApplication(const CString& programId) {
  const auto found = applications_.find(programId);
  if (found == applications_.end()) return {};
  return {true, found->second};
}

}  // namespace lvx::test

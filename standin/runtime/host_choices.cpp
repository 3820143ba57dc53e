#include "runtime/host_choices.h"

#include <charconv>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "native/automation_client.h"
#include "platform/utf8.h"

namespace lvx::runtime {

namespace {

/// The moment that every header shows, for reports that can be reproduced byte for byte.
std::optional<std::int64_t> fixedMoment() {
  const char* const given = std::getenv("SOURCE_DATE_EPOCH");
  if (given == nullptr) return std::nullopt;
  const std::string_view text(given);
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc() || end != text.data() + text.size() || seconds < 0)
    throw std::invalid_argument("SOURCE_DATE_EPOCH is '" + std::string(text) +
                                "', which is no number of seconds since 1970-01-01 00:00 UTC");
  return seconds;
}

constexpr const wchar_t* kMessageFile = L"LVX_MIRELREPORT.txt";

std::string folderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path().string() : ".";
}

}  // namespace

std::filesystem::path chosenModule(const HostChoices& choices) {
  return choices.module ? std::filesystem::path(*choices.module) : moduleFile(choices.bin);
}

std::filesystem::path chosenMessages(const HostChoices& choices) {
  return choices.messages ? std::filesystem::path(*choices.messages)
                          : messageFolder(choices.language, choices.bin) / kMessageFile;
}

namespace {

WorkbookWriter workbookWriter(const HostChoices& choices) {
  if (!choices.workbook) return WorkbookWriter::Automatic;
  if (*choices.workbook == "file") return WorkbookWriter::File;
  if (!native::hasAutomation())
    throw std::invalid_argument(
        "--workbook excel: on this system no spreadsheet program can be worked; --workbook file writes the same cells");
  return WorkbookWriter::Spreadsheet;
}

}  // namespace

HostOptions hostOptions(const HostChoices& choices) {
  HostOptions options;
  options.platform.fixedMoment = fixedMoment();
  options.workbookWriter = workbookWriter(choices);
  options.platform.release = platform::fromUtf8(choices.release.value_or(""));
  options.platform.messageCodePage = choices.messageCodePage;
  options.platform.reportCodePage = choices.reportCodePage.value_or("");
  if (const auto& messages = choices.messages) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(*messages, error))
      throw std::invalid_argument("--messages: there is no file '" + *messages + "'");
    options.files[kMessageFile] = *messages;
    options.inputs.add(*messages, "the message file");
    options.supportPaths.push_back(folderOf(*messages));
  }
  options.supportPaths.push_back(messageFolder(choices.language, choices.bin).string());
  options.supportPaths.push_back(helpFolder(choices.language, choices.bin).string());
  options.supportPaths.push_back(folderOf(chosenModule(choices)));
  return options;
}

}  // namespace lvx::runtime

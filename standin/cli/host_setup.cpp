#include "cli/host_setup.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "cli/failure.h"
#include "cli/installation.h"
#include "cli/interruption.h"
#include "cli/terminal.h"

namespace lvx::cli {

namespace {

/// The moment that every header shows, for reports that can be reproduced byte for byte.
std::optional<std::int64_t> fixedMoment() {
  const char* const given = std::getenv("SOURCE_DATE_EPOCH");
  if (given == nullptr) return std::nullopt;
  const std::string_view text(given);
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc() || end != text.data() + text.size() || seconds < 0)
    throw Failure(kUsage, "SOURCE_DATE_EPOCH is '" + std::string(text) +
                              "', which is no number of seconds since 1970-01-01 00:00 UTC");
  return seconds;
}

constexpr const wchar_t* kMessageFile = L"LVX_MIRELREPORT.txt";

}  // namespace

std::unique_ptr<runtime::StandinHost> makeHost(runtime::FrontEnd& frontEnd, const CommonOptions& options) {
  runtime::HostOptions setup;
  setup.platform.fixedMoment = fixedMoment();
  setup.platform.release = platform::fromUtf8(options.release);
  setup.platform.messageCodePage = options.messageCodePage;
  setup.platform.reportCodePage = options.reportCodePage;
  setup.isInterrupted = isInterrupted;
  setup.startProgress = [mode = options.progressMode()](const std::string& work) {
    return [line = std::make_shared<ProgressLine>(mode, work)](std::uint64_t done, std::uint64_t total) {
      line->update(done, total);
    };
  };
  if (!options.messages.empty()) {
    const std::filesystem::path file(options.messages);
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
      throw Failure(kUsage, "--messages: there is no file '" + options.messages + "'");
    setup.files[kMessageFile] = options.messages;
    setup.supportPaths.push_back(file.has_parent_path() ? file.parent_path().string() : ".");
  }
  setup.supportPaths.push_back(messageFolder(options.language).string());
  const std::filesystem::path module = options.module.empty() ? moduleFile() : std::filesystem::path(options.module);
  setup.supportPaths.push_back(module.has_parent_path() ? module.parent_path().string() : ".");
  try {
    return std::make_unique<runtime::StandinHost>(frontEnd, std::move(setup));
  } catch (const std::invalid_argument& error) {
    throw Failure(kUsage, error.what());
  }
}

}  // namespace lvx::cli

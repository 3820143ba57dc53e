#include "cli/job_key.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <variant>

#include "cli/file_hash.h"
#include "options/option_table.h"
#include "runtime/host_choices.h"
#include "version/version.h"

namespace lvx::cli {

namespace {

/// Say how a report is run, not what is in it.
constexpr std::array<std::string_view, 6> kOfNoConcern{"overwrite", "keep", "threads", "progress", "quiet", "json"};

bool isOfConcern(std::string_view name) {
  for (const std::string_view other : kOfNoConcern)
    if (name == other) return false;
  return true;
}

/// Adds a text so that no two lists of texts are the same.
void add(std::string& list, std::string_view text) {
  list.append(std::to_string(text.size())).append(":").append(text);
}

template <class Value>
void addValue(std::string& list, const Value& value) {
  if constexpr (std::is_same_v<Value, bool>) {
    add(list, value ? "true" : "false");
  } else if constexpr (std::is_same_v<Value, std::string>) {
    add(list, value);
  } else if constexpr (std::is_same_v<Value, std::vector<std::string>>) {
    add(list, std::to_string(value.size()));
    for (const std::string& text : value) add(list, text);
  } else {
    add(list, value ? "given" : "none");
    if (!value) return;
    if constexpr (std::is_same_v<Value, std::optional<int>>)
      add(list, std::to_string(*value));
    else
      add(list, *value);
  }
}

/// The companion library lies beside its module.
constexpr const char* kCompanion = "LVX_MIRELLIB.vmx";

}  // namespace

std::string hashOrNothing(const std::string& path) {
  try {
    return hashOf(path).digits;
  } catch (const std::system_error&) {
    return {};
  }
}

std::vector<std::string> drawingFiles(const options::Options& options) {
  std::vector<std::string> files{options.drawing};
  files.insert(files.end(), options.files.with.begin(), options.files.with.end());
  return files;
}

std::string JobKeys::options(const Job& job) {
  std::string list;
  options::Options values = job.options;  // fields are found in options that may be written
  add(list, std::to_string(static_cast<int>(job.command)));
  for (const options::OptionDescription* option : options::optionsOf(job.command)) {
    if (!isOfConcern(option->name)) continue;
    add(list, option->name);
    std::visit([&](const auto* value) { addValue(list, *value); }, option->field(values));
  }
  const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
  add(list, epoch == nullptr ? "" : epoch);
  return hashOfText(list).digits;
}

const std::string& JobKeys::program(const Job& job) {
  const std::filesystem::path module = runtime::chosenModule(job.options.common.host);
  std::string& hash = programs_[module.string()];
  if (!hash.empty()) return hash;
  std::string list;
  add(list, version::text());
  const std::array<std::filesystem::path, 3> files{runtime::programFile(), module, module.parent_path() / kCompanion};
  for (const std::filesystem::path& file : files) add(list, hashOrNothing(file.string()));
  hash = hashOfText(list).digits;
  return hash;
}

const std::string& JobKeys::messages(const Job& job) {
  const std::string path = runtime::chosenMessages(job.options.common.host).string();
  const auto [at, isNew] = messages_.try_emplace(path);
  if (isNew) at->second = hashOrNothing(path);
  return at->second;
}

}  // namespace lvx::cli

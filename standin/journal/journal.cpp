#include "journal/journal.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "journal/detail/json_text.h"
#include "standin_platform/append_file.h"
#include "standin_platform/input_file.h"

namespace lvx::journal {

using detail::Json;
using standin_platform::AppendFile;
using standin_platform::InputFile;

namespace {

/// What each line begins with, so that a cut one is known.
constexpr std::string_view kBegin = "{\"line\":";

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r") == std::string_view::npos; }

bool mayBeBegin(std::string_view line) {
  const std::size_t size = std::min(line.size(), kBegin.size());
  return line.substr(0, size) == kBegin.substr(0, size);
}

/// "12" of a line that begins with {"line":12, and goes on somehow.
std::optional<std::size_t> jobLineOf(std::string_view line) {
  if (!line.starts_with(kBegin)) return std::nullopt;
  const std::string_view digits = line.substr(kBegin.size());
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  // Without something behind it further digits may be missing.
  if (error != std::errc() || end == digits.data() + digits.size()) return std::nullopt;
  return number;
}

/// Takes the lines of one journal.
class LineTaker {
 public:
  LineTaker(std::string name, const std::function<void(JobRecord)>& take) : name_(std::move(name)), take_(take) {}

  void take(std::string_view line, bool isCut) {
    ++number_;
    reading_.isCut = isCut;
    if (isBlank(line)) return;
    ++reading_.lines;
    if (std::optional<JobRecord> record = recordOf(line)) {
      take_(std::move(*record));
      return;
    }
    if (reading_.lines == 1 && !mayBeBegin(line)) throw NotAJournal("'" + name_ + "' is no journal of a batch");
    reading_.unreadable.push_back({number_, jobLineOf(line)});
  }
  [[nodiscard]] JournalReading reading() { return std::move(reading_); }

 private:
  std::string name_;
  const std::function<void(JobRecord)>& take_;
  std::size_t number_ = 0;
  JournalReading reading_;
};

}  // namespace

std::string lineOf(const JobRecord& record) {
  Json json = detail::jobJson(record);
  json["key"] = {{"options", record.key.options},
                 {"program", record.key.program},
                 {"messages", record.key.messages},
                 {"drawing", record.key.drawing}};
  if (!record.savedDrawing.empty()) json["saved"] = record.savedDrawing;
  if (record.isSaving) json["saving"] = true;
  constexpr int kOnOneLine = -1;
  return detail::textOf(json, kOnOneLine);
}

std::optional<JobRecord> recordOf(std::string_view line) {
  try {
    const Json json = Json::parse(line.begin(), line.end());
    JobRecord record = detail::jobOf(json);
    const Json& key = json.at("key");
    record.key = {key.at("options").get<std::string>(), key.at("program").get<std::string>(),
                  key.at("messages").get<std::string>(), key.at("drawing").get<std::vector<std::string>>()};
    if (json.contains("saved")) record.savedDrawing = json["saved"].get<std::vector<std::string>>();
    if (json.contains("saving")) record.isSaving = json["saving"].get<bool>();
    return record;
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

void requireJournal(const std::filesystem::path& path) {
  constexpr std::size_t kPart = 4096;
  InputFile file(path);
  std::string part(kPart, '\0');
  part.resize(file.read(part.data(), part.size()));
  const std::size_t begin = part.find_first_not_of(" \t\r\n");
  if (begin != std::string::npos && !mayBeBegin(std::string_view(part).substr(begin)))
    throw NotAJournal("'" + path.string() + "' is no journal of a batch");
}

JournalReading readJournal(const std::filesystem::path& path, const std::function<void(JobRecord)>& take) {
  constexpr std::size_t kPart = 1U << 18U;
  InputFile file(path);
  LineTaker lines(path.string(), take);
  std::string part(kPart, '\0');
  std::string rest;
  while (const std::size_t size = file.read(part.data(), part.size())) {
    std::string_view left(part.data(), size);
    for (std::size_t end = left.find('\n'); end != std::string_view::npos; end = left.find('\n')) {
      rest.append(left.substr(0, end));
      lines.take(rest, false);
      rest.clear();
      left.remove_prefix(end + 1);
    }
    rest.append(left);
  }
  if (!rest.empty()) lines.take(rest, true);
  return lines.reading();
}

struct JournalWriter::State {
  AppendFile file;
  /// The last line has no end.
  bool isCut = false;
};

JournalWriter::JournalWriter(const std::filesystem::path& path, Begin begin)
    : state_(new State{AppendFile(path, begin == Begin::Anew)}) {
  state_->isCut = !state_->file.endsWithLine();
}

JournalWriter::~JournalWriter() = default;

void JournalWriter::add(const JobRecord& record) {
  std::string line = lineOf(record);
  if (state_->isCut) line.insert(0, 1, '\n');
  state_->isCut = true;
  state_->file.append(line);
  state_->isCut = false;
}

}  // namespace lvx::journal

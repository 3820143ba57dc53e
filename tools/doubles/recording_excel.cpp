#include "doubles/recording_excel.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "framework/exceptions.h"
#include "platform/utf8.h"

namespace lvx::test {

namespace {

using host::AutomationArguments;
using host::AutomationObject;
using host::AutomationValue;
using Kind = AutomationValue::Kind;

enum class Role : std::uint8_t { App, Books, Book, Sheets, Sheet, Range, Nothing };
enum class Form : std::uint8_t { Get, Put, Call };

constexpr std::array<const char*, 6> kRoleNames{"app", "books", "book", "sheets", "sheet", "range"};

const char* nameOf(Role role) { return kRoleNames.at(static_cast<std::size_t>(role)); }

struct Operation {
  Role object;
  Form form;
  host::DispatchId id;
  const char* name;
  std::string_view arguments;  ///< a letter each: m missing, i integer, t text
  Role result;
};

// The program's own numbers, written here once more: a test compares the module's with them.
constexpr std::array<Operation, 9> kOperations{{
    {Role::App, Form::Get, 572, "Workbooks", "", Role::Books},
    {Role::Books, Form::Call, 181, "Add", "m", Role::Book},
    {Role::Book, Form::Get, 485, "Worksheets", "", Role::Sheets},
    {Role::Sheets, Form::Get, 170, "Item", "i", Role::Sheet},
    {Role::Sheet, Form::Get, 197, "Range", "tt", Role::Range},
    {Role::Range, Form::Put, 6, "Value", "t", Role::Nothing},
    {Role::Range, Form::Put, 1097, "NumberFormatLocal", "t", Role::Nothing},
    {Role::Sheet, Form::Call, 284, "SaveAs", "tmmmmmmmm", Role::Nothing},
    {Role::App, Form::Call, 302, "Quit", "", Role::Nothing},
}};

char letterOf(Kind kind) {
  switch (kind) {
    case Kind::Missing:
      return 'm';
    case Kind::Integer:
      return 'i';
    case Kind::Text:
      return 't';
    case Kind::Empty:
    case Kind::Object:
      break;
  }
  return '?';
}

std::string textOf(const AutomationValue& value) {
  switch (value.kind()) {
    case Kind::Empty:
      return "empty";
    case Kind::Missing:
      return "missing";
    case Kind::Integer:
      return std::to_string(value.integer());
    case Kind::Text:
      return '"' + platform::toUtf8(value.text()) + '"';
    case Kind::Object:
      return "object";
  }
  return {};
}

/// One started program.
struct Program {
  explicit Program(std::shared_ptr<ExcelRecord> theRecord) : record(std::move(theRecord)) {}
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() {
    if (!hasQuit) ++record->givenUp;
  }

  std::shared_ptr<ExcelRecord> record;
  std::optional<CString> savedAs;
  bool hasQuit = false;
};

class RecordingObject final : public AutomationObject {
 public:
  RecordingObject(std::shared_ptr<Program> program, Role role) : program_(std::move(program)), role_(role) {
    ++record().liveObjects;
  }
  ~RecordingObject() override {
    --record().liveObjects;
    record().calls.push_back(std::string("release ") + nameOf(role_));
  }

  AutomationValue get(host::DispatchId property, AutomationArguments arguments) override {
    return run(Form::Get, property, arguments);
  }
  void put(host::DispatchId property, const AutomationValue& value) override { run(Form::Put, property, {&value, 1}); }
  AutomationValue call(host::DispatchId method, AutomationArguments arguments) override {
    return run(Form::Call, method, arguments);
  }

 private:
  [[nodiscard]] ExcelRecord& record() const { return *program_->record; }

  [[nodiscard]] const Operation& find(Form form, host::DispatchId id, AutomationArguments arguments) const {
    const auto* const found = std::find_if(kOperations.begin(), kOperations.end(), [&](const Operation& each) {
      return each.object == role_ && each.form == form && each.id == id;
    });
    const std::string where = std::string(nameOf(role_)) + ' ' + std::to_string(id);
    if (found == kOperations.end()) throw std::logic_error("no such operation: " + where);
    std::string kinds;
    for (const AutomationValue& argument : arguments) kinds += letterOf(argument.kind());
    if (kinds != found->arguments) throw std::logic_error("arguments of another kind: " + where + ' ' + kinds);
    if (program_->hasQuit) throw std::logic_error("a call after Quit: " + where);
    return *found;
  }

  [[nodiscard]] std::string lineOf(const Operation& operation, AutomationArguments arguments) const {
    std::string line = std::string(nameOf(role_)) + '.' + operation.name;
    if (operation.form == Form::Put) return line + " = " + textOf(arguments[0]);
    for (std::size_t i = 0; i < arguments.size(); ++i) line += (i == 0 ? "(" : ", ") + textOf(arguments[i]);
    if (!arguments.empty()) line += ')';
    if (operation.result != Role::Nothing) line += std::string(" -> ") + nameOf(operation.result);
    return line;
  }

  AutomationValue run(Form form, host::DispatchId id, AutomationArguments arguments) {
    const Operation& operation = find(form, id, arguments);
    const std::string line = lineOf(operation, arguments);
    record().calls.push_back(line);
    if (record().onCall) record().onCall(line);
    if (record().callCount++ == record().failAtCall)
      throw framework::AutomationException("recording program: told to fail at this call");
    keep(operation, arguments);
    if (operation.result == Role::Nothing) return {};
    auto object = std::make_shared<RecordingObject>(program_, operation.result);
    if (operation.result == Role::Range) object->cell_ = arguments[0].text();
    return AutomationValue::ofObject(std::move(object));
  }

  /// What the operation changes.
  void keep(const Operation& operation, AutomationArguments arguments) {
    const std::string_view name = operation.name;
    if (name == "Range") {
      if (arguments[0] != arguments[1]) throw std::logic_error("a range of more than one cell");
    } else if (name == "NumberFormatLocal") {
      if (arguments[0].text() != L"0,000") throw std::logic_error("a number format of other than three decimals");
      threeDecimals_ = true;
    } else if (name == "Value") {
      if (record().writes.size() == record().failAtWrite)
        throw framework::AutomationException("recording program: told to fail at this cell");
      record().texts[cell_] = arguments[0].text();
      record().writes.push_back({cell_, arguments[0].text(), threeDecimals_});
    } else if (name == "SaveAs") {
      if (record().failFinish) throw framework::AutomationException("recording program: told to fail at the saving");
      program_->savedAs = arguments[0].text();
    } else if (name == "Quit") {
      program_->hasQuit = true;
      record().finishedAs = program_->savedAs;
    }
  }

  std::shared_ptr<Program> program_;
  Role role_;
  CString cell_;
  bool threeDecimals_ = false;
};

}  // namespace

std::function<host::Ref<AutomationObject>(const CString&)> recordedBy(std::shared_ptr<ExcelRecord> record) {
  return [record = std::move(record)](const CString& programId) -> host::Ref<AutomationObject> {
    if (programId != L"Excel.Application" || record->failStart) return nullptr;
    record->calls.emplace_back("start app");
    return std::make_shared<RecordingObject>(std::make_shared<Program>(record), Role::App);
  };
}

}  // namespace lvx::test

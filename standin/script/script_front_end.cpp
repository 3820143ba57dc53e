#include "script/script_front_end.h"

#include <charconv>
#include <utility>

#include "platform/utf8.h"
#include "runtime/drawing_objects.h"
#include "windowless/dialog_state.h"

namespace lvx::script {

using platform::fromUtf8;
using platform::toUtf8;
using windowless::Refusal;
using Kind = ScriptAction::Kind;

namespace {

/// 0x00BBGGRR of a light grey scheme; a script has no colours to look at.
constexpr std::uint32_t kFaceColour = 0x00F0F0F0;

const char* wordFor(Refusal refusal) {
  switch (refusal) {
    case Refusal::NoSuchControl:
      return "has no control of that number";
    case Refusal::WrongKind:
      return "has a control of another kind under that number";
    case Refusal::Disabled:
      return "has that control disabled";
    case Refusal::NoSuchRow:
      return "has no such row in that list";
    case Refusal::None:
      break;
  }
  return "";
}

}  // namespace

ScriptFrontEnd::ScriptFrontEnd(std::vector<ScriptAction> actions, Transcript& transcript, DialogOpener opener)
    : actions_(std::make_move_iterator(actions.begin()), std::make_move_iterator(actions.end())),
      transcript_(transcript),
      opener_(std::move(opener)) {
  if (!opener_)
    opener_ = [](host::DialogBehaviour& dialog) { return std::make_unique<windowless::DialogState>(dialog); };
}

std::optional<std::string> ScriptFrontEnd::nextCommand() {
  openings_.clear();
  if (actions_.empty()) return std::nullopt;
  const ScriptAction action = take("nothing");
  if (action.kind != Kind::Command) mismatch(action, "no command runs, and the next action must start one");
  return action.text;
}

ScriptAction ScriptFrontEnd::take(const std::string& waiter) {
  if (actions_.empty()) throw ScriptMismatch("script: it ends while " + waiter);
  ScriptAction action = std::move(actions_.front());
  actions_.pop_front();
  return action;
}

void ScriptFrontEnd::mismatch(const ScriptAction& action, const std::string& waiter) {
  throw ScriptMismatch("script: " + describe(action) + " doesn't fit: " + waiter);
}

int ScriptFrontEnd::runModal(host::DialogBehaviour& behaviour, void*) {
  const std::string name(behaviour.dialogTemplate().name);
  const std::string waiter = "the dialog " + name + " waits";
  const std::unique_ptr<windowless::WorkedDialog> dialog = opener_(behaviour);
  const int opening = ++openings_[name];
  transcript_.dialog(name, opening, *dialog);
  while (!dialog->closedWith()) {
    const ScriptAction action = take(waiter);
    if (action.kind == Kind::Snapshot) {
      transcript_.dialog(name, opening, *dialog);
      continue;
    }
    act(*dialog, action, waiter);
    if (!dialog->closedWith()) transcript_.changes(*dialog);
  }
  transcript_.closed(name, *dialog->closedWith());
  return *dialog->closedWith();
}

void ScriptFrontEnd::act(windowless::WorkedDialog& dialog, const ScriptAction& action, const std::string& waiter) {
  Refusal refusal = Refusal::None;
  switch (action.kind) {
    case Kind::Select:
      refusal = action.row ? dialog.userSelects(action.id, *action.row)
                           : dialog.userSelects(action.id, fromUtf8(action.text));
      break;
    case Kind::Type:
      refusal = dialog.userTypes(action.id, fromUtf8(action.text));
      break;
    case Kind::Tick:
      refusal = dialog.userTicks(action.id, action.on);
      break;
    case Kind::Click:
      refusal = dialog.userClicks(action.id);
      break;
    case Kind::Close:
      dialog.userCloses();
      break;
    default:
      mismatch(action, waiter);
  }
  if (refusal != Refusal::None)
    mismatch(action, waiter + " and " + wordFor(refusal) + " (" + std::to_string(action.id) + ")");
}

civil::Handle ScriptFrontEnd::handleOf(const ScriptAction& action) const {
  if (action.pickClass.empty()) {
    civil::Handle handle = 0;
    const char* end = action.text.data() + action.text.size();
    const auto result = std::from_chars(action.text.data(), end, handle, 16);
    if (result.ec == std::errc() && result.ptr == end && handle != 0) return handle;
    mismatch(action, "'" + action.text + "' is no handle");
  }
  if (drawing_ != nullptr)
    if (const auto handle = runtime::findByName(*drawing_, action.pickClass, action.text)) return *handle;
  mismatch(action, "the drawing has no " + action.pickClass + " of the name '" + action.text + "'");
}

std::optional<civil::Handle> ScriptFrontEnd::pickEntity(const host::CString& prompt) {
  transcript_.prompt(prompt);
  const std::string waiter = "a pick in the drawing waits";
  const ScriptAction action = take(waiter);
  if (action.kind == Kind::Escape) return std::nullopt;
  if (action.kind != Kind::Pick) mismatch(action, waiter);
  return handleOf(action);
}

std::optional<std::vector<civil::Handle>> ScriptFrontEnd::selectEntities(const host::CString& addPrompt,
                                                                         const host::CString& removePrompt,
                                                                         const host::CString&) {
  transcript_.prompt(addPrompt, removePrompt);
  const std::string waiter = "a selection of points waits";
  const ScriptAction action = take(waiter);
  if (action.kind == Kind::Escape) return std::nullopt;
  if (action.kind != Kind::PickPoints) mismatch(action, waiter);
  std::vector<civil::Handle> handles;
  for (const std::int32_t number : action.points) {
    const auto handle = drawing_ == nullptr ? std::nullopt : runtime::findPoint(*drawing_, number);
    if (!handle) mismatch(action, "the drawing has no point " + std::to_string(number));
    handles.push_back(*handle);
  }
  return handles;
}

host::BoxAnswer ScriptFrontEnd::messageBox(const host::CString& text, host::BoxButtons buttons, host::BoxIcon icon) {
  transcript_.box(text, buttons, icon);
  const std::string waiter = "the message box \"" + toUtf8(text) + "\" waits";
  const ScriptAction action = take(waiter);
  if (action.kind != Kind::Answer || !host::offers(buttons, action.answer)) mismatch(action, waiter);
  return action.answer;
}

std::optional<host::CString> ScriptFrontEnd::saveFileBox(const host::CString& filter, std::uint32_t) {
  transcript_.fileBox(filter);
  const std::string waiter = "the file box waits";
  const ScriptAction action = take(waiter);
  if (action.kind == Kind::Escape) return std::nullopt;
  if (action.kind != Kind::File) mismatch(action, waiter);
  if (action.cancelled) return std::nullopt;
  return fromUtf8(action.text);
}

std::uint32_t ScriptFrontEnd::buttonFaceColour() { return kFaceColour; }

}  // namespace lvx::script

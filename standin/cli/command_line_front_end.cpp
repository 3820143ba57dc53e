#include "cli/command_line_front_end.h"

#include <iterator>
#include <stdexcept>
#include <utility>

#include "cli/terminal.h"
#include "host/dialog_controls.h"
#include "platform/utf8.h"
#include "runtime/help_topics.h"
#include "windowless/dialog_state.h"

namespace lvx::cli {

using host::BoxAnswer;
using host::BoxButtons;
using host::CString;
using platform::toUtf8;
using windowless::DialogState;
using windowless::Refusal;

namespace {

Refusal take(DialogState& state, const DialogStep& step) {
  switch (step.kind) {
    case DialogStep::Kind::SelectRow:
      if (!step.text.empty() &&
          (step.row >= state.rowCount(step.control) || state.rowText(step.control, step.row) != step.text))
        return Refusal::NoSuchRow;
      return state.userSelects(step.control, step.row);
    case DialogStep::Kind::Type:
      return state.userTypes(step.control, step.text);
    case DialogStep::Kind::Tick:
      return state.userTicks(step.control, true);
    case DialogStep::Kind::Untick:
      return state.userTicks(step.control, false);
    case DialogStep::Kind::Click:
      return state.userClicks(step.control);
  }
  return Refusal::WrongKind;
}

const char* words(Refusal refusal) {
  switch (refusal) {
    case Refusal::None:
      return "takes it";
    case Refusal::NoSuchControl:
      return "isn't there";
    case Refusal::WrongKind:
      return "is of another kind";
    case Refusal::Disabled:
      return "is disabled";
    case Refusal::NoSuchRow:
      return "doesn't offer that row";
  }
  return "refuses";
}

}  // namespace

void StepDialogs::expect(std::string dialogName, std::vector<std::vector<DialogStep>> openings) {
  openings_[std::move(dialogName)] = {std::make_move_iterator(openings.begin()),
                                      std::make_move_iterator(openings.end())};
}

int StepDialogs::runModal(host::DialogBehaviour& dialog, void* /*parent*/) {
  DialogState state(dialog);
  const std::string name(dialog.dialogTemplate().name);
  if (const auto expected = openings_.find(name); expected != openings_.end() && !expected->second.empty()) {
    const std::vector<DialogStep> steps = std::move(expected->second.front());
    expected->second.pop_front();
    for (const DialogStep& step : steps) {
      if (state.closedWith()) break;
      if (const Refusal refusal = take(state, step); refusal != Refusal::None)
        throw std::logic_error("dialog " + name + ": control " + std::to_string(step.control) + " " + words(refusal) +
                               (step.text.empty() ? "" : ": '" + toUtf8(step.text) + "'"));
    }
  }
  if (!state.closedWith()) state.userCloses();
  return state.closedWith().value_or(host::kIdCancel);
}

BoxAnswer CommandLineFrontEnd::messageBox(const CString& text, BoxButtons buttons, host::BoxIcon icon) {
  const std::string words = toUtf8(text);
  const Severity severity = icon == host::BoxIcon::Stop ? Severity::Error : Severity::Warning;
  if (buttons != BoxButtons::Ok) ++questions_;
  switch (buttons) {
    case BoxButtons::Ok:
      say(words, severity);
      return BoxAnswer::Ok;
    case BoxButtons::YesNo:
      return mayOverwrite(overwrite_, words) ? BoxAnswer::Yes : BoxAnswer::No;
    case BoxButtons::RetryCancel:
      if (!isInteractive()) {
        say(words, severity);
        return BoxAnswer::Cancel;
      }
      return isYes(ask(words + " (y: try again) [y/N] ")) ? BoxAnswer::Retry : BoxAnswer::Cancel;
  }
  return BoxAnswer::Cancel;
}

std::optional<CString> CommandLineFrontEnd::saveFileBox(const CString&, std::uint32_t) { return std::nullopt; }

void CommandLineFrontEnd::showHelp(const CString& topic) {
  const std::filesystem::path page = runtime::helpPage(topic, helpFolder_);
  say("help: " + (page.empty() ? toUtf8(topic) : page.string()), Severity::Note);
}

std::uint32_t CommandLineFrontEnd::buttonFaceColour() {
  constexpr std::uint32_t kLightGrey = 0x00F0F0F0;
  return kLightGrey;
}

void CommandLineFrontEnd::console(const CString& text) {
  // A bare line feed only parts prompts from what stood before them.
  if (text != L"\n") tellConsole(toUtf8(text));
}

std::optional<civil::Handle> CommandLineFrontEnd::pickEntity(const CString&) { return std::nullopt; }

std::optional<std::vector<civil::Handle>> CommandLineFrontEnd::selectEntities(const CString&, const CString&,
                                                                              const CString&) {
  return points_;
}

}  // namespace lvx::cli

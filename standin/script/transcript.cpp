#include "script/transcript.h"

#include "platform/utf8.h"

namespace lvx::script {

using host::ControlKind;
using platform::toUtf8;

namespace {

const char* kindName(ControlKind kind) {
  switch (kind) {
    case ControlKind::PushButton:
      return "button";
    case ControlKind::DefaultButton:
      return "default button";
    case ControlKind::PictureButton:
      return "picture button";
    case ControlKind::GroupBox:
      return "group box";
    case ControlKind::Label:
      return "label";
    case ControlKind::Picture:
      return "picture";
    case ControlKind::DropDownList:
      return "list";
    case ControlKind::CheckBox:
      return "check box";
    case ControlKind::EditBox:
      return "edit box";
  }
  return "control";
}

const char* buttonsName(host::BoxButtons buttons) {
  switch (buttons) {
    case host::BoxButtons::Ok:
      return "ok";
    case host::BoxButtons::YesNo:
      return "yes no";
    case host::BoxButtons::RetryCancel:
      return "retry cancel";
  }
  return "";
}

const char* iconName(host::BoxIcon icon) {
  switch (icon) {
    case host::BoxIcon::None:
      return "none";
    case host::BoxIcon::Stop:
      return "stop";
    case host::BoxIcon::Question:
      return "question";
    case host::BoxIcon::Warning:
      return "warning";
  }
  return "";
}

}  // namespace

void Transcript::write(const Json& event) {
  // Texts of a drawing may hold anything; what is no UTF-8 shows as the replacement character.
  write_(event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

Transcript::Json Transcript::controlState(const windowless::Control& control) {
  const ControlKind kind = control.made->kind;
  Json json{{"id", control.made->id}, {"kind", kindName(kind)}};
  if (kind != ControlKind::DropDownList && kind != ControlKind::Picture && kind != ControlKind::PictureButton)
    json["text"] = toUtf8(control.text);
  if (kind == ControlKind::DropDownList) {
    Json rows = Json::array();
    for (const host::CString& row : control.rows) rows.push_back(toUtf8(row));
    json["rows"] = std::move(rows);
    json["row"] = control.row;
  }
  if (kind == ControlKind::CheckBox) json["ticked"] = control.ticked;
  if (kind != ControlKind::Label && kind != ControlKind::GroupBox && kind != ControlKind::Picture)
    json["enabled"] = control.enabled;
  if (!control.picture.empty()) json["picture"] = control.picture;
  if (!control.tip.empty()) json["tip"] = toUtf8(control.tip);
  return json;
}

void Transcript::dialog(std::string_view name, int opening, const windowless::WorkedDialog& state) {
  shown_.clear();
  Json controls = Json::array();
  for (const windowless::Control* control : state.controls())
    controls.push_back(shown_[control->made->id] = controlState(*control));
  write({{"event", "dialog"},
         {"name", name},
         {"opening", opening},
         {"title", toUtf8(state.title())},
         {"controls", std::move(controls)}});
}

void Transcript::changes(const windowless::WorkedDialog& state) {
  Json controls = Json::array();
  for (const windowless::Control* control : state.controls()) {
    Json now = controlState(*control);
    Json& before = shown_[control->made->id];
    if (now == before) continue;
    before = now;
    controls.push_back(std::move(now));
  }
  if (!controls.empty()) write({{"event", "changed"}, {"controls", std::move(controls)}});
}

void Transcript::closed(std::string_view name, int code) {
  write({{"event", "closed"}, {"name", name}, {"code", code}});
}

void Transcript::box(const host::CString& text, host::BoxButtons buttons, host::BoxIcon icon) {
  write({{"event", "box"}, {"text", toUtf8(text)}, {"icon", iconName(icon)}, {"buttons", buttonsName(buttons)}});
}

void Transcript::prompt(const host::CString& text) { write({{"event", "prompt"}, {"text", toUtf8(text)}}); }

void Transcript::prompt(const host::CString& add, const host::CString& remove) {
  write({{"event", "prompt"}, {"text", toUtf8(add)}, {"remove", toUtf8(remove)}});
}

void Transcript::console(const host::CString& text) { write({{"event", "console"}, {"text", toUtf8(text)}}); }

void Transcript::fileBox(const host::CString& filter) { write({{"event", "filebox"}, {"filter", toUtf8(filter)}}); }

void Transcript::help(const host::CString& topic) { write({{"event", "help"}, {"topic", toUtf8(topic)}}); }

void Transcript::file(const runtime::FileEvent& event) {
  // The module removes nothing else, and no report is empty.
  constexpr const char* kTrial = "tries whether the old workbook may be replaced";
  switch (event.fate) {
    case runtime::FileFate::Written:
      if (event.bytes == 0) {
        write({{"event", "written"}, {"path", event.path}, {"bytes", event.bytes}, {"why", kTrial}});
        break;
      }
      write({{"event", "written"}, {"path", event.path}, {"bytes", event.bytes}});
      break;
    case runtime::FileFate::Removed:
      write({{"event", "removed"}, {"path", event.path}, {"why", kTrial}});
      break;
    case runtime::FileFate::Failed:
      write({{"event", "unwritten"}, {"path", event.path}, {"reason", event.reason}});
      break;
  }
}

void Transcript::exception(const std::string& text) { write({{"event", "exception"}, {"text", text}}); }

void Transcript::misuse(const std::string& text) { write({{"event", "misuse"}, {"text", text}}); }

void Transcript::end(const std::string& command) { write({{"event", "end"}, {"command", command}}); }

}  // namespace lvx::script

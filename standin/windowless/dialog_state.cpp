#include "windowless/dialog_state.h"

#include <algorithm>

#include "framework/exceptions.h"
#include "host/dialog_controls.h"

namespace lvx::windowless {

using host::ControlKind;

namespace {

bool isButton(ControlKind kind) {
  return kind == ControlKind::PushButton || kind == ControlKind::DefaultButton || kind == ControlKind::PictureButton;
}

}  // namespace

DialogState::DialogState(host::DialogBehaviour& behaviour) : behaviour_(behaviour) {
  const host::DialogTemplate& made = behaviour.dialogTemplate();
  title_ = made.title;
  for (const host::ControlTemplate& control : made.controls) {
    Control& state = controls_[control.id];
    state.made = &control;
    state.text = control.text;
    state.enabled = control.startsEnabled;
  }
  behaviour_.onOpening(*this);
  opening_ = false;
}

const DialogState::Control* DialogState::find(int id) const {
  const auto found = controls_.find(id);
  return found == controls_.end() ? nullptr : &found->second;
}

DialogState::Control* DialogState::mutableFind(int id) {
  const auto found = controls_.find(id);
  return found == controls_.end() ? nullptr : &found->second;
}

std::vector<const DialogState::Control*> DialogState::controls() const {
  std::vector<const Control*> inOrder;
  for (const host::ControlTemplate& control : behaviour_.dialogTemplate().controls) inOrder.push_back(find(control.id));
  return inOrder;
}

Refusal DialogState::refusalFor(const Control* control, bool kindFits) const {
  if (control == nullptr) return Refusal::NoSuchControl;
  if (!kindFits) return Refusal::WrongKind;
  return control->enabled ? Refusal::None : Refusal::Disabled;
}

Refusal DialogState::userSelects(int id, int row) {
  Control* control = mutableFind(id);
  const bool isList = control != nullptr && control->made->kind == ControlKind::DropDownList;
  if (const Refusal refusal = refusalFor(control, isList); refusal != Refusal::None) return refusal;
  if (row < 0 || row >= static_cast<int>(control->rows.size())) return Refusal::NoSuchRow;
  control->row = row;
  behaviour_.onSelectionChanged(*this, id);
  return Refusal::None;
}

Refusal DialogState::userSelects(int id, const CString& text) {
  const Control* control = find(id);
  if (control == nullptr) return Refusal::NoSuchControl;
  const auto row = std::find(control->rows.begin(), control->rows.end(), text);
  if (control->made->kind == ControlKind::DropDownList && row == control->rows.end()) return Refusal::NoSuchRow;
  return userSelects(id, static_cast<int>(row - control->rows.begin()));
}

Refusal DialogState::userTypes(int id, const CString& text) {
  Control* control = mutableFind(id);
  const bool isEdit = control != nullptr && control->made->kind == ControlKind::EditBox;
  if (const Refusal refusal = refusalFor(control, isEdit); refusal != Refusal::None) return refusal;
  control->text = text;
  behaviour_.onTextChanged(*this, id);
  return Refusal::None;
}

Refusal DialogState::userTicks(int id, bool on) {
  Control* control = mutableFind(id);
  const bool isCheck = control != nullptr && control->made->kind == ControlKind::CheckBox;
  if (const Refusal refusal = refusalFor(control, isCheck); refusal != Refusal::None) return refusal;
  control->ticked = on;
  return Refusal::None;
}

Refusal DialogState::userClicks(int id) {
  const Control* control = find(id);
  const bool isClickable = control != nullptr && isButton(control->made->kind);
  if (const Refusal refusal = refusalFor(control, isClickable); refusal != Refusal::None) return refusal;
  behaviour_.onClick(*this, id);
  return Refusal::None;
}

void DialogState::userCloses() { behaviour_.onClick(*this, host::kIdCancel); }

void DialogState::setText(int id, const CString& text) {
  Control* control = mutableFind(id);
  if (control == nullptr) return;
  control->text = text;
  if (!opening_ && control->made->kind == ControlKind::EditBox) behaviour_.onTextChanged(*this, id);
}

CString DialogState::text(int id) const {
  const Control* control = find(id);
  return control == nullptr ? CString() : control->text;
}

void DialogState::enable(int id, bool enabled) {
  if (Control* control = mutableFind(id)) control->enabled = enabled;
}

bool DialogState::isEnabled(int id) const {
  const Control* control = find(id);
  return control != nullptr && control->enabled;
}

void DialogState::emptyList(int id) {
  if (Control* control = mutableFind(id)) {
    control->rows.clear();
    control->row = kNone;
  }
}

void DialogState::insertRow(int id, int position, const CString& text) {
  Control* control = mutableFind(id);
  if (control == nullptr) return;
  if (position < 0 || position > static_cast<int>(control->rows.size())) return;  // a real list refuses it too
  control->rows.insert(control->rows.begin() + position, text);
  if (control->row >= position) ++control->row;
}

int DialogState::rowCount(int id) const {
  const Control* control = find(id);
  return control == nullptr ? 0 : static_cast<int>(control->rows.size());
}

CString DialogState::rowText(int id, int row) const {
  const Control* control = find(id);
  if (control == nullptr || row < 0 || row >= static_cast<int>(control->rows.size()))
    throw framework::InvalidArgumentException();
  return control->rows[static_cast<std::size_t>(row)];
}

void DialogState::select(int id, int row) {
  if (Control* control = mutableFind(id))
    control->row = row >= 0 && row < static_cast<int>(control->rows.size()) ? row : kNone;
}

int DialogState::selection(int id) const {
  const Control* control = find(id);
  return control == nullptr ? kNone : control->row;
}

void DialogState::tick(int id, bool ticked) {
  if (Control* control = mutableFind(id)) control->ticked = ticked;
}

bool DialogState::isTicked(int id) const {
  const Control* control = find(id);
  return control != nullptr && control->ticked;
}

void DialogState::setPicture(int id, const host::PictureBits& picture) {
  if (Control* control = mutableFind(id)) control->picture = picture.name;
}

void DialogState::setTip(int id, const CString& text) {
  if (Control* control = mutableFind(id)) control->tip = text;
}

}  // namespace lvx::windowless

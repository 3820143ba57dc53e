#include "cli/pick_dialogs.h"

#include <array>
#include <exception>
#include <string_view>
#include <utility>

#include "host/dialog_controls.h"
#include "platform/utf8.h"

namespace lvx::cli {

using host::ControlKind;
using host::ControlTemplate;
using host::CString;
using host::DialogTemplate;
using host::DialogWindow;
using platform::fromUtf8;
using platform::toUtf8;

namespace {

bool isGermanIn(const std::string& language) { return language == "de"; }

constexpr std::array<ControlTemplate, 4> kObjectControls{{
    {kIdPickPrompt, ControlKind::Label, L"", {7, 7, 246, 18}},
    {kIdPickObjects, ControlKind::DropDownList, L"", {7, 28, 246, 160}},
    {host::kIdOk, ControlKind::DefaultButton, L"OK", {147, 50, 50, 14}, false},
    {host::kIdCancel, ControlKind::PushButton, L"Cancel", {203, 50, 50, 14}},
}};
constexpr DialogTemplate kObjectDialog{"PickObject", L"Pick an object", 260, 71, kObjectControls};

constexpr std::array<ControlTemplate, 5> kPointControls{{
    {kIdPickPrompt, ControlKind::Label, L"", {7, 7, 246, 18}},
    {kIdPickNumbers, ControlKind::EditBox, L"", {7, 28, 246, 13}},
    {kIdPickHint, ControlKind::Label, L"", {7, 45, 246, 34}},
    {host::kIdOk, ControlKind::DefaultButton, L"OK", {147, 83, 50, 14}, false},
    {host::kIdCancel, ControlKind::PushButton, L"Cancel", {203, 83, 50, 14}},
}};
constexpr DialogTemplate kPointDialog{"PickPoints", L"Select points", 260, 104, kPointControls};

/// Prompts of a command line begin on a new line and end with a colon and a blank.
CString withoutEdges(const CString& prompt) {
  constexpr const wchar_t* kBlanks = L" \r\n\t";
  const std::size_t first = prompt.find_first_not_of(kBlanks);
  if (first == CString::npos) return {};
  return prompt.substr(first, prompt.find_last_not_of(kBlanks) + 1 - first);
}

CString hint(bool isGerman) {
  return isGerman ? L"Nummern von Punkten, etwa 1,5,7-9, oder all f\u00FCr alle"
                  : L"Numbers of points, such as 1,5,7-9, or all";
}

}  // namespace

std::vector<PickRow> pickRows(const civil::Drawing& drawing, const std::string& language) {
  const bool isGerman = isGermanIn(language);
  std::vector<PickRow> rows;
  const auto add = [&](civil::Handle handle, std::string_view english, std::string_view german, const std::string& name,
                       const std::string& owner) {
    std::string text(isGerman ? german : english);
    text.append(": ").append(name);
    if (!owner.empty()) text.append(" (").append(owner).append(")");
    rows.push_back({handle, std::move(text)});
  };
  const auto eachAlignment = [&](const auto& use) {
    for (const auto& alignment : drawing.siteless.alignments) use(*alignment, std::string());
    for (const civil::Site& site : drawing.sites)
      for (const auto& alignment : site.alignments) use(*alignment, site.name);
  };
  eachAlignment([&](const civil::AlignmentObject& alignment, const std::string& site) {
    add(alignment.handle, "Alignment", "Achse", alignment.name, site);
  });
  for (const auto& surface : drawing.surfaces) add(surface.handle, "Surface", "DGM", surface.name, {});
  eachAlignment([&](const civil::AlignmentObject& alignment, const std::string&) {
    for (const auto& group : alignment.sampleLineGroups)
      add(group.handle, "Sample line group", "Querprofilgruppe", group.name, alignment.name);
  });
  eachAlignment([&](const civil::AlignmentObject& alignment, const std::string&) {
    for (const auto& profile : alignment.profiles)
      add(profile.handle, "Profile", "L\u00E4ngsschnitt", profile.name, alignment.name);
  });
  for (const auto& group : drawing.pointGroups) add(group.handle, "Point group", "Punktgruppe", group.name, {});
  for (const auto& corridor : drawing.corridors)
    add(corridor.handle, "Corridor", "Stra\u00DFenk\u00F6rper", corridor.name, {});
  return rows;
}

PickObjectDialog::PickObjectDialog(CString prompt, const std::vector<PickRow>& rows, const std::string& language)
    : prompt_(withoutEdges(prompt)), rows_(rows), isGerman_(isGermanIn(language)) {}

const DialogTemplate& PickObjectDialog::dialogTemplate() const { return kObjectDialog; }

void PickObjectDialog::onOpening(DialogWindow& window) {
  if (isGerman_) {
    window.setTitle(L"Ein Objekt w\u00E4hlen");
    window.setText(host::kIdCancel, L"Abbrechen");
  }
  window.setText(kIdPickPrompt, prompt_);
  for (std::size_t i = 0; i < rows_.size(); ++i)
    window.insertRow(kIdPickObjects, static_cast<int>(i), fromUtf8(rows_[i].text));
  window.enable(host::kIdOk, false);
}

void PickObjectDialog::onSelectionChanged(DialogWindow& window, int id) {
  if (id == kIdPickObjects) window.enable(host::kIdOk, window.selection(id) >= 0);
}

void PickObjectDialog::onClick(DialogWindow& window, int id) {
  const int row = window.selection(kIdPickObjects);
  if (id == host::kIdOk) {
    // The default button takes Enter also while it is disabled.
    if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return;
    picked_ = rows_[static_cast<std::size_t>(row)].handle;
  }
  if (id == host::kIdOk || id == host::kIdCancel) window.end(id);
}

PickPointsDialog::PickPointsDialog(CString prompt, Find find, const std::string& language)
    : prompt_(withoutEdges(prompt)), find_(std::move(find)), isGerman_(isGermanIn(language)) {}

const DialogTemplate& PickPointsDialog::dialogTemplate() const { return kPointDialog; }

void PickPointsDialog::onOpening(DialogWindow& window) {
  if (isGerman_) {
    window.setTitle(L"Punkte w\u00E4hlen");
    window.setText(host::kIdCancel, L"Abbrechen");
  }
  window.setText(kIdPickPrompt, prompt_);
  window.setText(kIdPickHint, hint(isGerman_));
  window.enable(host::kIdOk, false);
}

void PickPointsDialog::onTextChanged(DialogWindow& window, int id) {
  if (id != kIdPickNumbers) return;
  window.enable(host::kIdOk, !window.text(id).empty());
  window.setText(kIdPickHint, hint(isGerman_));
}

void PickPointsDialog::onClick(DialogWindow& window, int id) {
  if (id == host::kIdCancel) window.end(id);
  if (id != host::kIdOk || window.text(kIdPickNumbers).empty()) return;
  try {
    picked_ = find_(toUtf8(window.text(kIdPickNumbers)));
    window.end(id);
  } catch (const std::exception& error) {
    window.setText(kIdPickHint, fromUtf8(error.what()));  // and the person may try again
  }
}

}  // namespace lvx::cli

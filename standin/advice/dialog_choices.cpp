#include "advice/dialog_choices.h"

#include <cstddef>
#include <memory>

#include "host/dialog_controls.h"
#include "platform/utf8.h"

namespace lvx::advice {

using host::DialogWindow;
using platform::toUtf8;

namespace {

std::optional<Report> reportOf(std::string_view dialog) {
  if (dialog == host::kProjectionDialog) return Report::Projection;
  if (dialog == host::kPointsDialog) return Report::Points;
  if (dialog == host::kGlsDialog) return Report::Gls;
  return std::nullopt;
}

template <class T>
const T* addressOf(const T& object) {
  return &object;
}
template <class T>
const T* addressOf(const T* object) {
  return object;
}
template <class T>
const T* addressOf(const std::unique_ptr<T>& object) {
  return object.get();
}

/// The object behind the chosen row of a list that shows `objects` in their order; null where there is none.
template <class Objects>
auto chosenOf(const Objects& objects, const DialogWindow& window, int list) -> decltype(addressOf(objects[0])) {
  const int row = window.selection(list);
  return row < 0 || static_cast<std::size_t>(row) >= objects.size() ? nullptr
                                                                    : addressOf(objects[static_cast<std::size_t>(row)]);
}

void takePoints(ReportObjects& objects, const DialogWindow& window, const civil::Drawing& drawing,
                const civil::DrawingIndex& index, const std::vector<civil::Handle>& picked) {
  objects.pointGroup = chosenOf(drawing.pointGroups, window, host::kIdPointGroups);
  if (objects.pointGroup != nullptr) {
    for (const std::int32_t number : objects.pointGroup->numbers)
      if (const civil::Point* const point = index.pointByNumber(number)) objects.points.push_back(point);
  } else if (window.selection(host::kIdPointGroups) == static_cast<int>(drawing.pointGroups.size())) {
    for (const civil::Handle handle : picked)
      if (const auto entry = index.byHandle(handle))
        if (const auto* const point = entry->as<civil::Point>()) objects.points.push_back(point);
  }
}

}  // namespace

std::vector<const civil::Site*> siteRows(const civil::Drawing& drawing) {
  std::vector<const civil::Site*> rows;
  if (!drawing.siteless.alignments.empty()) rows.push_back(&drawing.siteless);
  for (const civil::Site& site : drawing.sites)
    if (!site.alignments.empty()) rows.push_back(&site);
  return rows;
}

std::optional<DialogChoices> choicesIn(std::string_view dialog, const DialogWindow& window,
                                       const civil::Drawing& drawing, const civil::DrawingIndex& index,
                                       const std::vector<civil::Handle>& picked) {
  const std::optional<Report> report = reportOf(dialog);
  if (!report) return std::nullopt;
  DialogChoices choices;
  choices.stem = toUtf8(window.text(host::kIdOutputStem));
  choices.forms = {window.isTicked(host::kIdCheckAscii), window.isTicked(host::kIdCheckExcel),
                   window.isTicked(host::kIdCheckHtml)};
  ReportObjects& objects = choices.objects;
  objects.report = *report;
  objects.site = chosenOf(siteRows(drawing), window, host::kIdSites);
  if (objects.site != nullptr) objects.alignment = chosenOf(objects.site->alignments, window, host::kIdAlignments);
  if (objects.alignment != nullptr && *report != Report::Points)
    objects.group = chosenOf(objects.alignment->sampleLineGroups, window, host::kIdSampleLineGroups);
  if (*report == Report::Projection) objects.surface = chosenOf(drawing.surfaces, window, host::kIdSurfaces);
  if (*report == Report::Gls && objects.alignment != nullptr)
    objects.profile = chosenOf(objects.alignment->profiles, window, host::kIdProfiles);
  if (*report == Report::Points) takePoints(objects, window, drawing, index, picked);
  return choices;
}

}  // namespace lvx::advice

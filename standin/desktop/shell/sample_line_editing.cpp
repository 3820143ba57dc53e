#include "desktop/shell/sample_line_editing.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "civil/reversible_change.h"
#include "desktop/common/icons.h"
#include "desktop/common/qt_text.h"
#include "desktop/panels/console_view.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/session.h"
#include "text/number_text.h"
#include "view/sample_line_edit.h"

namespace lvx::desktop {

namespace {

civil::Vec2 vec(QPointF place) { return {place.x(), place.y()}; }

/// Empty for no text; otherwise whether it is a width is said by `isRight`.
std::optional<double> widthOf(const QLineEdit& edit, bool& isRight) {
  QString typed = edit.text().trimmed().replace(QLatin1Char(','), QLatin1Char('.'));
  if (typed.isEmpty()) return std::nullopt;
  bool isNumber = false;
  const double width = QLocale::c().toDouble(typed, &isNumber);
  if (!isNumber || !std::isfinite(width) || width < view::kLeastWidth) isRight = false;
  return width;
}

}  // namespace

SampleLineEditing::SampleLineEditing(QWidget& window, const WindowPanels& panels, const Session& session, Edits& edits,
                                     Selection& selection)
    : window_(window), at_(panels), session_(session), edits_(edits), selection_(selection) {
  connect(&selection_, &Selection::changed, this, &SampleLineEditing::showHandles);
  connect(at_.plan, &PlanView::handlePulled, this, &SampleLineEditing::pull);
  connect(at_.plan, &PlanView::handleDropped, this, &SampleLineEditing::drop);
  connect(&edits_, &Edits::aboutToChange, this, [this] {
    if (dialog_) dialog_->letGo();
  });
  connect(&edits_, &Edits::changed, this, [this] {
    if (dialog_) dialog_->lookAgain();
  });
  connect(&session_, &Session::commandStarted, this, [this] {
    if (dialog_) dialog_->reject();
  });
}

SampleLineEditing::~SampleLineEditing() = default;

std::optional<SampleLineEditing::Chosen> SampleLineEditing::find(civil::Handle handle) const {
  if (!session_.drawing()) return std::nullopt;
  const auto entry = session_.drawing()->index().byHandle(handle);
  if (!entry) return std::nullopt;
  if (const auto* const group = entry->as<civil::SampleLineGroup>()) return Chosen{entry->alignment, group, nullptr};
  const auto* const line = entry->as<civil::SampleLine>();
  if (line == nullptr) return std::nullopt;
  for (const civil::SampleLineGroup& group : entry->alignment->sampleLineGroups)
    if (!group.lines.empty() && line >= group.lines.data() && line < group.lines.data() + group.lines.size())
      return Chosen{entry->alignment, &group, line};
  return std::nullopt;
}

std::optional<SampleLineEditing::Chosen> SampleLineEditing::chosen() const { return find(selection_.handle()); }

bool SampleLineEditing::hasChosen() const { return chosen().has_value(); }

void SampleLineEditing::forget() {
  if (dialog_) delete dialog_;
  rules_.clear();
}

// ---------------------------------------------------------------- groups

void SampleLineEditing::askNew(civil::Handle alignment) {
  if (!edits_.isPossible()) return;
  if (alignment == 0 && selection_.alignment() != nullptr) alignment = selection_.alignment()->handle;
  open(new SampleLinesDialog(session_.drawing(), alignment, &window_));
}

void SampleLineEditing::askEdit() {
  const auto at = chosen();
  if (!at || !edits_.isPossible()) return;
  const auto known = rules_.find(at->group->handle);
  if (known == rules_.end())
    askNameAndWidths(*at);
  else
    open(new SampleLinesDialog(session_.drawing(), at->group->handle, known->second, &window_));
}

void SampleLineEditing::open(SampleLinesDialog* dialog) {
  if (dialog_) delete dialog_;
  dialog_ = dialog;
  connect(dialog, &SampleLinesDialog::previewed, at_.plan, &PlanView::setPreview);
  connect(dialog, &QDialog::accepted, this, [this, dialog] { take(*dialog); });
  dialog->show();
}

void SampleLineEditing::take(const SampleLinesDialog& dialog) {
  const QString name = toQt(dialog.name());
  civil::Handle group = dialog.group();
  const civil::SampleLineRules rules = dialog.rules();
  std::vector<civil::SampleLine> lines = dialog.lines();
  const std::size_t count = lines.size();
  if (!edits_.isPossible()) {
    at_.console->printError(tr("Nothing was changed, since a drawing is being read."));
    return;
  }
  if (group == 0) {
    group = edits_.make(tr("New sample lines “%1”").arg(name),
                        civil::addingSampleLineGroup(dialog.alignment(), dialog.name(), std::move(lines)));
  } else {
    group = edits_.make(tr("Edit sample lines “%1”").arg(name),
                        civil::changingSampleLineGroup(group, dialog.name(), std::move(lines)));
  }
  if (group == 0) return;
  rules_[group] = rules;
  at_.console->print(tr("Group “%1” has %n sample line(s).", nullptr, static_cast<int>(count)).arg(name));
}

void SampleLineEditing::askNameAndWidths(const Chosen& at) {
  const civil::Handle handle = at.group->handle;
  const QString before = toQt(at.group->name);
  QStringList taken;
  for (const civil::SampleLineGroup& group : at.alignment->sampleLineGroups)
    if (group.handle != handle) taken << toQt(group.name);

  QDialog dialog(&window_);
  dialog.setObjectName(QStringLiteral("groupDialog"));
  dialog.setWindowTitle(tr("Edit sample lines “%1”").arg(before));
  auto* const form = new QFormLayout(&dialog);
  const auto addField = [&](const char* name, const QString& label) {
    auto* const edit = new QLineEdit;
    edit->setObjectName(QLatin1String(name));
    edit->setAccessibleName(QString(label).remove(QLatin1Char('&')));
    form->addRow(label, edit);
    return edit;
  };
  QLineEdit* const name = addField("groupName", tr("&Name"));
  QLineEdit* const left = addField("groupLeft", tr("New width to the &left"));
  QLineEdit* const right = addField("groupRight", tr("New width to the &right"));
  for (QLineEdit* const edit : {left, right}) edit->setPlaceholderText(tr("as it is"));
  name->setText(before);
  auto* const error = new QLabel;
  error->setObjectName(QStringLiteral("groupError"));
  form->addRow(error);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  const auto check = [&] {
    const QString wanted = name->text().trimmed();
    bool isRight = true;
    (void)widthOf(*left, isRight);
    (void)widthOf(*right, isRight);
    QString why;
    if (wanted.isEmpty())
      why = tr("A name is wanted.");
    else if (taken.contains(wanted))
      why = tr("The alignment has a group of this name already.");
    else if (!isRight)
      why = tr("A width above 0 is wanted, or nothing.");
    error->setText(why);
    buttons->button(QDialogButtonBox::Ok)->setEnabled(why.isEmpty());
  };
  for (QLineEdit* const edit : {name, left, right}) connect(edit, &QLineEdit::textChanged, &dialog, check);
  check();
  if (dialog.exec() != QDialog::Accepted || !edits_.isPossible()) return;

  // A command can't have run, but a step may have been undone meanwhile.
  const auto now = find(handle);
  if (!now) return;
  bool isRight = true;
  const std::optional<double> leftWidth = widthOf(*left, isRight);
  const std::optional<double> rightWidth = widthOf(*right, isRight);
  std::optional<std::string> newName;
  if (name->text().trimmed() != before) newName = toUtf8(name->text().trimmed());
  std::optional<std::vector<civil::SampleLine>> lines;
  if (leftWidth || rightWidth) {
    lines = now->group->lines;
    for (civil::SampleLine& line : *lines)
      line.vertices = view::withWidths(line, now->alignment->geometry, leftWidth, rightWidth);
  }
  if (newName || lines)
    edits_.make(tr("Edit sample lines “%1”").arg(name->text().trimmed()),
                civil::changingSampleLineGroup(handle, std::move(newName), std::move(lines)));
}

void SampleLineEditing::remove() {
  const auto at = chosen();
  if (!at || !edits_.isPossible()) return;
  if (at->line != nullptr)
    edits_.make(tr("Delete sample line %1").arg(toQt(at->line->name)), civil::removingSampleLine(at->line->handle));
  else
    edits_.make(tr("Delete sample lines “%1”").arg(toQt(at->group->name)),
                civil::removingSampleLineGroup(at->group->handle));
}

// ---------------------------------------------------------------- single lines

void SampleLineEditing::askAdd() {
  const auto at = chosen();
  if (!at || !edits_.isPossible()) return;
  const civil::Handle group = at->group->handle;
  const civil::Alignment& axis = at->alignment->geometry;
  QInputDialog dialog(&window_);
  dialog.setObjectName(QStringLiteral("stationDialog"));
  dialog.setWindowTitle(tr("Add a sample line"));
  dialog.setLabelText(
      tr("Station from %1 to %2:")
          .arg(toQt(text::stationText(axis.startStation())), toQt(text::stationText(axis.endStation()))));
  if (at->line != nullptr) dialog.setTextValue(toQt(text::stationText(at->line->station)));
  const auto stationOf = [&](QString typed) -> std::optional<double> {
    const std::array rule{
        civil::SampleLineRule{"stations", toUtf8(typed.trimmed().replace(QLatin1Char(','), QLatin1Char('.')))}};
    try {
      const auto stations = civil::sampleLineRules(rule).stations;
      if (stations.size() == 1 && axis.poseAt(stations.front())) return stations.front();
    } catch (const civil::SampleLineError&) {
      return std::nullopt;
    }
    return std::nullopt;
  };
  auto* const buttons = dialog.findChild<QDialogButtonBox*>();
  const auto check = [&](const QString& typed) {
    if (buttons != nullptr) buttons->button(QDialogButtonBox::Ok)->setEnabled(stationOf(typed).has_value());
  };
  connect(&dialog, &QInputDialog::textValueChanged, &dialog, check);
  check(dialog.textValue());
  if (dialog.exec() != QDialog::Accepted) return;
  if (const auto station = stationOf(dialog.textValue())) add(group, *station);
}

void SampleLineEditing::add(civil::Handle group, double station) {
  const auto at = find(group);
  if (!at || !edits_.isPossible()) return;
  std::optional<civil::SampleLine> line =
      view::lineAmong(*at->group, at->alignment->geometry, station, civil::SampleLineRules::kWidth);
  if (!line) return;
  const QString name = toQt(line->name);
  edits_.make(tr("New sample line %1").arg(name), civil::addingSampleLine(group, std::move(*line)));
}

void SampleLineEditing::showHandles() {
  const auto at = chosen();
  std::vector<civil::Vec2> ends;
  if (at && at->line != nullptr && at->line->vertices.size() > 1 && at->alignment->geometry.poseAt(at->line->station))
    ends = {at->line->vertices.front(), at->line->vertices.back()};
  at_.plan->setHandles(std::move(ends));
}

void SampleLineEditing::pull(int index, QPointF place) {
  const auto at = chosen();
  if (!at || at->line == nullptr || !edits_.isPossible()) return;
  at_.plan->setPulled(view::pulledTo(*at->line, at->alignment->geometry, index == 0, vec(place)));
}

void SampleLineEditing::drop(int index, QPointF place) {
  const auto at = chosen();
  if (!at || at->line == nullptr || !edits_.isPossible()) return;
  edits_.make(tr("Width of sample line %1").arg(toQt(at->line->name)),
              civil::changingSampleLine(at->line->handle,
                                        view::pulledTo(*at->line, at->alignment->geometry, index == 0, vec(place))));
}

// ---------------------------------------------------------------- menus

void SampleLineEditing::addEntries(QMenu& menu, civil::Handle handle, std::optional<QPointF> place) {
  if (!edits_.isPossible()) return;
  const auto add = [&](const char* name, const QString& text, auto work) {
    QAction* const action = menu.addAction(text);
    action->setObjectName(QLatin1String(name));
    connect(action, &QAction::triggered, this, work, Qt::QueuedConnection);
  };
  // The group that a line more belongs to: the chosen one, or the first of the alignment under the mouse.
  std::optional<Chosen> at = find(handle);
  if (at) selection_.select(handle, this);
  const auto entry = session_.drawing()->index().byHandle(handle);
  const bool isAlignment = entry && entry->kind() == civil::ObjectKind::Alignment;
  if (isAlignment) add("menuNewLines", tr("Sample &lines…"), [this, handle] { askNew(handle); });
  if (place) {
    if (!at) at = chosen();
    if (!at && isAlignment && !entry->alignment->sampleLineGroups.empty())
      at = Chosen{entry->alignment, &entry->alignment->sampleLineGroups.front(), nullptr};
    const auto where = at ? at->alignment->geometry.stationOffset(vec(*place)) : std::nullopt;
    if (where && at->alignment->geometry.poseAt(where->station))
      add("menuAddHere",
          tr("&Add a line to “%1” here, at %2")
              .arg(toQt(at->group->name).replace(QLatin1Char('&'), QStringLiteral("&&")),
                   toQt(text::stationText(where->station))),
          [this, group = at->group->handle, station = where->station] { this->add(group, station); });
  }
  if (!find(handle)) return;
  add("menuAddLine", tr("Add a line at a &station…"), [this] { askAdd(); });
  add("menuEditLines", tr("&Edit the group…"), [this] { askEdit(); });
  add("menuDelete", find(handle)->line != nullptr ? tr("&Delete the line") : tr("&Delete the group"),
      [this] { remove(); });
}

}  // namespace lvx::desktop

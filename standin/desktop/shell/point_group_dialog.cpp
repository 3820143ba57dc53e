#include "desktop/shell/point_group_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>
#include <string>
#include <utility>

#include "desktop/common/qt_text.h"

namespace lvx::desktop {

namespace {

constexpr int kSettle = 150;  // milliseconds without a change before points are counted again

/// The value of a condition as civil::PointFilter reads it: commas in a text that its user didn't quote are letters.
QString conditionValue(const QString& typed, bool isText) {
  if (!isText || !typed.contains(QLatin1Char(',')) || typed.contains(QLatin1Char('"')) ||
      typed.contains(QLatin1Char('\'')))
    return typed;
  QStringList alternatives = typed.split(QLatin1Char(';'));
  for (QString& alternative : alternatives) alternative = QLatin1Char('"') + alternative.trimmed() + QLatin1Char('"');
  return alternatives.join(QLatin1Char(';'));
}

}  // namespace

PointGroupDialog::PointGroupDialog(const civil::Drawing& drawing, const civil::DrawingIndex& index, QWidget* parent)
    : QDialog(parent),
      drawing_(drawing),
      index_(index),
      name_(new QLineEdit),
      count_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
  setWindowTitle(tr("Point group from filter"));
  build(true);
}

PointGroupDialog::PointGroupDialog(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                                   civil::FilteredPoints chosen, QWidget* parent)
    : QDialog(parent),
      drawing_(drawing),
      index_(index),
      numbers_(std::move(chosen.numbers)),
      hidden_(chosen.hidden),
      name_(new QLineEdit),
      count_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
  setWindowTitle(tr("Point group from selection"));
  build(false);
}

void PointGroupDialog::addFields() {
  const QString range = tr("%1 isn't a number, such as 7, or a range, such as 100..120.");
  const auto add = [this](const char* key, bool isText, const char* example, const QString& problem) {
    auto* const edit = new QLineEdit;
    edit->setObjectName(QLatin1String("filter_") + QLatin1String(key));
    edit->setPlaceholderText(QLatin1String(example));
    fields_.push_back({key, isText, edit, problem});
  };
  add("description", true, "TREE*;BUSH*", tr("Quotes in %1 come in pairs."));
  add("name", true, "GP?", tr("Quotes in %1 come in pairs."));
  add("elevation", false, "100..120", range);
  add("number", false, "1-50;60", range);
}

void PointGroupDialog::build(bool asksConditions) {
  setObjectName(QStringLiteral("pointGroupDialog"));
  name_->setObjectName(QStringLiteral("groupName"));
  count_->setObjectName(QStringLiteral("groupCount"));
  count_->setTextFormat(Qt::PlainText);
  count_->setWordWrap(true);
  constexpr int kLines = 2;
  constexpr int kLetters = 46;
  count_->setMinimumSize(fontMetrics().averageCharWidth() * kLetters, fontMetrics().lineSpacing() * kLines);
  count_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  count_->setAccessibleName(tr("Number of points"));
  auto* const form = new QFormLayout;
  const auto addRow = [form](const QString& label, QWidget* field) {
    form->addRow(label, field);
    field->setAccessibleName(QString(label).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
  };
  addRow(tr("&Name:"), name_);
  if (asksConditions) {
    addFields();
    const QStringList labels{tr("&Description:"), tr("Name o&f the point:"), tr("&Elevation:"), tr("N&umber:")};
    const QString patterns = tr("* stands for any letters, ? for one; semicolons part what else may be");
    const QString ranges = tr("A number or a range; .. stands between its ends, semicolons part what else may be");
    for (std::size_t row = 0; row < fields_.size(); ++row) {
      addRow(labels[static_cast<qsizetype>(row)], fields_[row].edit);
      const QString& tip = fields_[row].isText ? patterns : ranges;
      fields_[row].edit->setToolTip(tip);
      fields_[row].edit->setAccessibleDescription(tip);
      connect(fields_[row].edit, &QLineEdit::textChanged, this, &PointGroupDialog::later);
    }
  }
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(count_);
  layout->addWidget(buttons_);
  settle_.setSingleShot(true);
  settle_.setInterval(kSettle);
  connect(&settle_, &QTimer::timeout, this, &PointGroupDialog::look);
  connect(name_, &QLineEdit::textChanged, this, &PointGroupDialog::later);
  connect(buttons_, &QDialogButtonBox::accepted, this, [this] {
    look();  // what was typed just now counts
    if (problem().isEmpty()) accept();
  });
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  look();
}

QString PointGroupDialog::name() const { return name_->text().trimmed(); }

civil::PointFilter PointGroupDialog::filter() {
  civil::PointFilter all;
  unread_.clear();
  for (const Field& field : fields_) {
    const QString typed = field.edit->text().trimmed();
    if (typed.isEmpty()) continue;
    try {
      all.add(civil::PointFilter::parse(field.key + std::string("=") + toUtf8(conditionValue(typed, field.isText))));
    } catch (const civil::PointFilterError&) {
      unread_ = field.problem.arg(typed);
    }
  }
  return all;
}

void PointGroupDialog::look() {
  settle_.stop();
  if (!fields_.empty()) {
    const civil::PointFilter wanted = filter();
    civil::FilteredPoints found;
    if (unread_.isEmpty()) found = civil::pointsWhere(drawing_, index_, wanted);
    numbers_ = std::move(found.numbers);
    hidden_ = found.hidden;
  }
  const QString against = problem();
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(against.isEmpty());
  QString words = unread_;
  if (words.isEmpty()) {
    words = tr("%n point(s) in the group.", nullptr, static_cast<int>(numbers_.size()));
    if (hidden_ > 0)
      words += QLatin1Char(' ') +
               tr("%n more can't be in a group: their numbers stand twice.", nullptr, static_cast<int>(hidden_));
    if (!against.isEmpty() && !numbers_.empty()) words += QLatin1Char('\n') + against;
  }
  count_->setText(words);
}

QString PointGroupDialog::problem() const {
  if (!unread_.isEmpty()) return unread_;
  if (numbers_.empty()) return tr("No point fits.");
  if (name().isEmpty()) return tr("The group needs a name.");
  for (const civil::PointGroup& group : drawing_.pointGroups)
    if (group.name == toUtf8(name())) return tr("There is a point group of this name already.");
  return {};
}

}  // namespace lvx::desktop

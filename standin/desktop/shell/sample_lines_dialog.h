#pragma once

#include <QDialog>
#include <QString>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "civil/sample_line_rules.h"
#include "desktop/shell/sample_lines_maker.h"
#include "runtime/open_drawing.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QGridLayout;
class QLabel;
class QLineEdit;

namespace lvx::desktop {

/// Asks for the rules of a group of sample lines and shows what they give while they are typed: in the plan by previewed(),
/// count and first names in itself. What is wrong stands beside its field. It hinders nobody from moving the plan.
class SampleLinesDialog : public QDialog {
  Q_OBJECT
 public:
  /// For a new group of an alignment, which can be chosen; 0: the drawing's first one.
  SampleLinesDialog(runtime::OpenDrawingRef drawing, civil::Handle alignment, QWidget* parent);
  /// For a group that is there: its alignment stays.
  SampleLinesDialog(runtime::OpenDrawingRef drawing, civil::Handle group, const civil::SampleLineRules& rules,
                    QWidget* parent);

  /// 0 for a new one.
  [[nodiscard]] civil::Handle group() const { return group_; }
  [[nodiscard]] civil::Handle alignment() const;
  [[nodiscard]] std::string name() const;
  /// Of the last fields without errors.
  [[nodiscard]] const civil::SampleLineRules& rules() const { return rules_; }
  /// Once it was accepted.
  [[nodiscard]] std::vector<civil::SampleLine> lines() const;

  /// The drawing's lists are about to move.
  void letGo();
  /// They have moved.
  void lookAgain();

 Q_SIGNALS:
  /// Null: nothing.
  void previewed(std::shared_ptr<const view::LineSet> lines);

 protected:
  void done(int result) override;

 private:
  /// A text to be typed with the place of its error.
  struct Field {
    QLineEdit* edit = nullptr;
    QLabel* error = nullptr;
  };

  void build();
  [[nodiscard]] QGridLayout* addBox(const QString& title);
  [[nodiscard]] Field addField(QGridLayout& grid, const char* name, const QString& label, const QString& tip);
  [[nodiscard]] Field addTick(QGridLayout& grid, const char* name, const QString& label, QCheckBox*& tick);
  [[nodiscard]] QLabel* addError(QGridLayout& grid, int row, QWidget* buddy);
  void fillAlignments(civil::Handle chosen);
  void fillProfiles();
  void fillSurfaces();
  void setRules(const civil::SampleLineRules& rules);
  void connectFields();

  [[nodiscard]] const civil::AlignmentObject* alignmentObject() const;
  [[nodiscard]] std::optional<double> lengthOf(const Field& field, bool isAbove0);
  [[nodiscard]] std::optional<double> stationOf(const Field& field);
  void fail(const Field& field, const QString& why);
  void readWhere(civil::SampleLineRules& rules, const civil::AlignmentObject& object);
  void readWidths(civil::SampleLineRules& rules);
  void readNames(civil::SampleLineRules& rules, const civil::AlignmentObject& object);
  void change();
  void makeLines();
  void showProgress();
  void tryAccept();

  runtime::OpenDrawingRef drawing_;
  civil::Handle group_ = 0;
  civil::SampleLineRules rules_;
  bool isRight_ = false;
  bool accepts_ = false;
  QTimer settle_;
  SampleLinesMaker maker_;

  QComboBox* alignment_ = nullptr;
  Field name_;
  QCheckBox* everyTick_ = nullptr;
  Field every_;
  QComboBox* origin_ = nullptr;
  QCheckBox* halfTick_ = nullptr;
  Field half_;
  Field from_;
  Field to_;
  QCheckBox* ends_ = nullptr;
  QCheckBox* elements_ = nullptr;
  QComboBox* profile_ = nullptr;
  QLabel* profileError_ = nullptr;
  QCheckBox* points_ = nullptr;
  QCheckBox* curves_ = nullptr;
  Field stations_;
  Field tolerance_;
  QCheckBox* leftTick_ = nullptr;
  Field left_;
  QCheckBox* rightTick_ = nullptr;
  Field right_;
  QComboBox* surface_ = nullptr;
  QLabel* surfaceError_ = nullptr;
  Field largest_;
  Field skew_;
  Field pattern_;
  QLabel* result_ = nullptr;
  QDialogButtonBox* buttons_ = nullptr;
};

}  // namespace lvx::desktop

#pragma once

#include <QString>
#include <optional>

#include "desktop/charts/area_menu.h"
#include "desktop/charts/chart_view.h"
#include "view/free_section.h"

namespace lvx::desktop {

/// The section along a line that the user draws over the plan: all surfaces and corridors over the distance, with cut and
/// fill between two of them.
class FreeSectionView final : public ChartView {
  Q_OBJECT

 public:
  explicit FreeSectionView(QWidget* parent = nullptr);

  /// What stands around the lines.
  struct Surroundings {
    QString fileName;
    std::string linearUnit;
    /// Stations and offsets are told against it; null: none. Used until the next one.
    const civil::AlignmentObject* alignment = nullptr;
  };

  using QWidget::show;
  /// Takes a section as far as it is cut; `isDone` false: more comes. Keeps the zoom while the line has the same length.
  void show(view::FreeSection section, bool isDone, const Surroundings& around);
  void clear();
  /// Whether a line may be drawn or made a sample line now: not while something runs, is read or is asked in the plan.
  void setIdle(bool isIdle);
  /// The alignment goes.
  void forgetAlignment() { around_.alignment = nullptr; }
  [[nodiscard]] const view::FreeSection& section() const { return section_; }
  /// By an upright line where the mouse is along the line in the plan; empty: nothing.
  void showDistance(std::optional<double> distance);
  /// Writes the table of all lines that show as text for spreadsheets: distance, easting, northing, an elevation a line,
  /// differences to the first. The file that was there stays whole unless the new one is complete. False with the reason
  /// where it can't be written.
  bool writeTable(const QString& path, QString& whyNot) const;
  /// The table itself; columns and decimal sign as spreadsheets of the windows' language read them.
  [[nodiscard]] QString table() const;

 Q_SIGNALS:
  /// The user wants the line to be a sample line, another line drawn, or back to cross sections.
  void sampleLineWanted();
  void drawWanted();
  void closeWanted();

 protected:
  [[nodiscard]] QString readout(civil::Vec2 place) const override;
  [[nodiscard]] QString exportName() const override;
  [[nodiscard]] std::vector<ChartFill> areas() override;

 private:
  void askTable();
  [[nodiscard]] QToolButton* addButton(const char* name, const QString& text, const QString& tip);

  AreaMenu areas_;
  view::FreeSection section_;
  Surroundings around_;
  void updateButtons();

  bool isDone_ = true;
  bool isIdle_ = true;
  QHBoxLayout* row_ = nullptr;
  QToolButton* draw_ = nullptr;
  QToolButton* table_ = nullptr;
  QToolButton* sampleLine_ = nullptr;
};

}  // namespace lvx::desktop

#pragma once

#include <QFrame>
#include <optional>

#include "properties/go_to.h"

class QLabel;
class QLineEdit;
class QListWidget;

namespace lvx::desktop {

/// One line in which the user names a place: a point, a station, coordinates, an object. Below it stands, while it is
/// typed, what it means; Enter goes to the first or the chosen of these, the tabulator key puts its text in, Escape goes
/// back to where the keyboard was. It floats over the widget that it was made for.
class GoToBox : public QFrame {
  Q_OBJECT
 public:
  explicit GoToBox(QWidget* over);

  /// Comes to the front for a drawing, which stays open while the box is; see properties::understand().
  void open(const civil::Drawing& drawing, const civil::DrawingIndex& index, const civil::AlignmentObject* chosen);
  /// Goes away, and lets go of the drawing.
  void leave();

  /// A place in words: "Point 17", "Station 1+020.500 of Valley road, 3.000 left".
  [[nodiscard]] static QString wordsOf(const properties::GoTo& place, const civil::DrawingIndex& index);

 Q_SIGNALS:
  void wanted(const lvx::properties::GoTo& place);

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  void understand();
  void tell(const properties::GoToAnswer& answer);
  void accept();
  void complete();
  void place();

  const civil::Drawing* drawing_ = nullptr;
  const civil::DrawingIndex* index_ = nullptr;
  const civil::AlignmentObject* chosen_ = nullptr;
  std::vector<properties::GoTo> places_;
  QLineEdit* edit_;
  QListWidget* list_;
  QLabel* told_;
  QWidget* before_ = nullptr;
};

}  // namespace lvx::desktop

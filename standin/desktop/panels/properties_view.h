#pragma once

#include <QHash>
#include <QWidget>
#include <optional>

#include "civil/drawing.h"
#include "civil/tin_surface.h"
#include "properties/properties.h"

class QLabel;
class QTabWidget;

namespace lvx::desktop {

class ValueTable;

/// What there is to tell of the chosen object, or of the drawing where none is: values on the first page, a page for each
/// table. What a hidden panel would tell is worked out when it comes to sight.
class PropertiesView : public QWidget {
  Q_OBJECT
 public:
  explicit PropertiesView(QWidget* parent = nullptr);

  /// Stations and offsets are told against `alignment`, if there is one. What is given stays as it is until the next call
  /// of this or of clear().
  void show(const civil::Drawing& drawing, const civil::DrawingIndex& index, const civil::AlignmentObject* alignment,
            civil::Handle handle);
  /// The drawing is about to go.
  void clear();
  [[nodiscard]] civil::Handle handle() const { return subject_ ? handle_ : 0; }

 Q_SIGNALS:
  /// A row was double clicked whose thing lies there.
  void placeWanted(const lvx::civil::Box& place);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void fill();
  void fillTitle(const properties::Properties& told);
  ValueTable* page(int number);

  QLabel* title_;
  QTabWidget* pages_;
  std::optional<properties::Subject> subject_;
  civil::Handle handle_ = 0;
  bool isCurrent_ = true;
  /// Of surfaces, which take a while and stay while their drawing is open.
  QHash<quint64, properties::SurfaceFigures> figures_;
};

}  // namespace lvx::desktop

#pragma once

#include <QLabel>

namespace lvx::desktop {

/// A line of plain text that gives way: where its text has no room it ends in "…". Screen readers and tests have all of it.
class ElidedLabel final : public QLabel {
 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace lvx::desktop

#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace lvx::desktop {

/// What stands in place of the plan while no drawing is open: drawings to open, as buttons. Lies over the whole of the
/// widget that it was made for.
class StartPage : public QWidget {
  Q_OBJECT
 public:
  struct Entry {
    QString name;
    /// Where it lies, or why it can't be opened.
    QString place;
    bool isThere = true;
  };

  explicit StartPage(QWidget* over);

  /// Shows these; what is chosen is told by its place in the list. Without an example that one isn't offered.
  void setEntries(const QList<Entry>& recent, const QString& example);

 Q_SIGNALS:
  void recentWanted(int number);
  void exampleWanted();
  void openWanted();

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addHeading(const QString& text);
  template <class Work>
  void addButton(const QString& name, const QString& text, const QString& place, bool isThere, Work work);

  QVBoxLayout* column_;
};

}  // namespace lvx::desktop

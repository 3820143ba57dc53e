#pragma once

#include <QUrl>
#include <QWidget>
#include <filesystem>

#include "framework/text.h"

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QToolBar;

namespace lvx::desktop {

class HelpBrowser;

/// The help pages of one language in a window of its own: contents, pages, back and forward, find, zoom. It stands beside
/// the other windows and belongs to none of them, so it can be read while a dialog waits: dialogs are modal to their
/// parents' windows only. Closing it hides it.
class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  /// `helpFolder` holds the pages of one language: index.html and the pages under project-resources. The pictures of the
  /// pages may lie beside it, and nothing outside the folder above it is read. A folder that isn't there is told in the
  /// window.
  explicit HelpWindow(std::filesystem::path helpFolder);

  /// Shows the page of a topic ("Vantor Lorvix Extension.chm::/project-resources/LVX_015_001.html") and brings the window to
  /// the front. False where there is no such page: the window says so over its contents.
  bool showTopic(const framework::CString& topic);
  void showContents();
  /// The page on the main window.
  void showWindowPage();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void makeTools();
  void addZooms(QToolBar& tools);
  void addFind(QToolBar& tools);
  void addFindKeys();
  void fillContents();
  void comeToFront();
  void open(const QUrl& page);
  void followLink(const QUrl& link);
  void pageChanged(const QUrl& page);
  void find(bool backwards);
  void setNotice(const QString& text);
  [[nodiscard]] QUrl contentsPage() const;

  std::filesystem::path folder_;
  QListWidget* contents_ = nullptr;
  QLabel* notice_ = nullptr;
  HelpBrowser* browser_ = nullptr;
  QLineEdit* findBox_ = nullptr;
  QLabel* findResult_ = nullptr;
};

}  // namespace lvx::desktop

#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/dialogs/dialog_runner.h"
#include "host/dialog_window.h"
#include "runtime/front_end.h"

class QEventLoop;

namespace lvx::desktop {

class HelpWindow;
class LongWork;
class PlanView;

/// Answers a module's commands through windows: its dialogs, picks in the plan view, message and file boxes, help pages.
/// Each question waits in an event loop of its own, so the windows live meanwhile.
///
/// Once the user wants to leave (giveUpAll), whatever waits is answered at once, and so is all that is asked afterwards:
/// Cancel, No, nothing picked. The command then unwinds by itself.
class DesktopFrontEnd final : public QObject, public runtime::FrontEnd, private host::DialogRunner {
  Q_OBJECT
 public:
  /// All three outlive the front end; `window` is what dialogs stand over.
  DesktopFrontEnd(QWidget& window, PlanView& plan, LongWork& work, std::filesystem::path helpFolder);
  ~DesktopFrontEnd() override;

  void giveUpAll();
  /// Asks the user again from now on.
  void askAgain();
  /// True while the user is asked to pick or select.
  [[nodiscard]] bool isPicking() const { return picking_; }
  /// Lets the user select points in the plan, no command being run; those of `first` are selected to begin with. Empty
  /// where they gave it up.
  [[nodiscard]] std::optional<std::vector<civil::Handle>> selectPoints(const QString& addPrompt,
                                                                       const QString& removePrompt,
                                                                       const std::vector<civil::Handle>& first);
  /// The help window at its first page, brought to the front.
  void showHelpContents();
  /// The page on the window itself.
  void showWindowHelp();
  void closeHelp();

  // ---- runtime::FrontEnd
  [[nodiscard]] host::DialogRunner& dialogs() override { return *this; }
  [[nodiscard]] void* mainWindow() override { return &window_; }
  void console(const host::CString& text) override;
  [[nodiscard]] std::optional<civil::Handle> pickEntity(const host::CString& prompt) override;
  [[nodiscard]] std::optional<std::vector<civil::Handle>> selectEntities(const host::CString& addPrompt,
                                                                         const host::CString& removePrompt,
                                                                         const host::CString& classTag) override;
  host::BoxAnswer messageBox(const host::CString& text, host::BoxButtons buttons, host::BoxIcon icon) override;
  [[nodiscard]] std::optional<host::CString> saveFileBox(const host::CString& filter, std::uint32_t flags) override;
  void showHelp(const host::CString& topic) override;
  [[nodiscard]] std::uint32_t buttonFaceColour() override;

 Q_SIGNALS:
  void printed(const QString& text);
  /// A dialog of the running command is about to open.
  void dialogOpening();
  /// The user accepts a dialog of the running command, called `name`, with what stands in its controls; before the dialog
  /// itself takes it.
  /// Another button of a dialog was pressed, which the dialog hears of next.
  void dialogPressed(const QString& dialog, int button, const lvx::host::DialogWindow& window);
  void dialogAccepting(const QString& name, const lvx::host::DialogWindow& window);
  /// The user selected objects for the running command; empty where they gave it up.
  void selectedForCommand(const std::vector<lvx::civil::Handle>& handles);
  /// isPicking() is another.
  void pickingChanged();

 private:
  int runModal(host::DialogBehaviour& dialog, void* parent) override;
  HelpWindow& help();
  /// `first`: selected to begin with.
  std::optional<std::vector<civil::Handle>> select(const QString& addPrompt, const QString& removePrompt,
                                                   std::optional<civil::ObjectKind> only,
                                                   const std::vector<civil::Handle>& first);
  /// Waits until the pick that `start` begins ends.
  void waitForPick(const std::function<void(QEventLoop& loop, QObject& context)>& start);

  QWidget& window_;
  PlanView& plan_;
  LongWork& work_;
  std::filesystem::path helpFolder_;
  QtDialogRunner dialogs_;
  std::unique_ptr<HelpWindow> help_;
  bool givenUp_ = false;
  bool picking_ = false;
};

}  // namespace lvx::desktop

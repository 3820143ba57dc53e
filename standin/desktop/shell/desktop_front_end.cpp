#include "desktop/shell/desktop_front_end.h"

#include <QApplication>
#include <QEventLoop>
#include <string_view>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/dialogs/boxes.h"
#include "desktop/dialogs/template_dialog.h"
#include "desktop/panels/help_window.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/long_work.h"
#include "host/dialog_controls.h"
#include "runtime/standin_run_time.h"

namespace lvx::desktop {

using host::BoxAnswer;
using host::BoxButtons;
using host::CString;

namespace {

/// What a user who leaves answers.
BoxAnswer leavingAnswer(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::Ok:
      return BoxAnswer::Ok;
    case BoxButtons::YesNo:
      return BoxAnswer::No;
    case BoxButtons::RetryCancel:
      return BoxAnswer::Cancel;
  }
  return BoxAnswer::Cancel;
}

std::optional<civil::ObjectKind> kindOf(const CString& classTag) {
  using Kind = civil::ObjectKind;
  for (const Kind kind : {Kind::Site, Kind::Alignment, Kind::Profile, Kind::SampleLineGroup, Kind::SampleLine,
                          Kind::Surface, Kind::Point, Kind::PointGroup, Kind::Corridor})
    if (classTag == runtime::classOf(kind).classTag()) return kind;
  return std::nullopt;
}

/// A dialog that tells which buttons its user presses, before it hears of them.
class ClickWatch final : public host::DialogBehaviour {
 public:
  using Told = std::function<void(const host::DialogWindow& window, int button)>;
  ClickWatch(host::DialogBehaviour& dialog, Told told) : dialog_(dialog), told_(std::move(told)) {}

  [[nodiscard]] const host::DialogTemplate& dialogTemplate() const override { return dialog_.dialogTemplate(); }
  void onOpening(host::DialogWindow& window) override { dialog_.onOpening(window); }
  void onClick(host::DialogWindow& window, int id) override {
    told_(window, id);
    dialog_.onClick(window, id);
  }
  void onSelectionChanged(host::DialogWindow& window, int id) override { dialog_.onSelectionChanged(window, id); }
  void onTextChanged(host::DialogWindow& window, int id) override { dialog_.onTextChanged(window, id); }

 private:
  host::DialogBehaviour& dialog_;
  Told told_;
};

}  // namespace

DesktopFrontEnd::DesktopFrontEnd(QWidget& window, PlanView& plan, LongWork& work, std::filesystem::path helpFolder)
    : window_(window), plan_(plan), work_(work), helpFolder_(std::move(helpFolder)) {}

DesktopFrontEnd::~DesktopFrontEnd() { QtDialogRunner::reopen(); }

void DesktopFrontEnd::giveUpAll() {
  givenUp_ = true;
  work_.cancel();
  QtDialogRunner::closeAll();
  if (plan_.isInteracting()) plan_.cancelInteraction();
}

void DesktopFrontEnd::askAgain() {
  givenUp_ = false;
  QtDialogRunner::reopen();
}

int DesktopFrontEnd::runModal(host::DialogBehaviour& dialog, void* parent) {
  const LongWork::Question question(work_);
  if (!givenUp_) Q_EMIT dialogOpening();
  const std::string_view name = dialog.dialogTemplate().name;
  const QString called = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  ClickWatch watched(dialog, [&](const host::DialogWindow& window, int button) {
    if (button == host::kIdOk)
      Q_EMIT dialogAccepting(called, window);
    else
      Q_EMIT dialogPressed(called, button, window);
  });
  return dialogs_.runModal(watched, parent);
}

void DesktopFrontEnd::console(const CString& text) { Q_EMIT printed(toQt(text)); }

void DesktopFrontEnd::waitForPick(const std::function<void(QEventLoop&, QObject&)>& start) {
  const LongWork::Question question(work_);
  QEventLoop loop;
  QObject context;
  connect(&plan_, &PlanView::gaveUp, &context, [&loop] { loop.quit(); });
  // A pick may end while it starts, where nothing can be picked.
  bool ended = false;
  connect(&plan_, &PlanView::gaveUp, &context, [&ended] { ended = true; });
  picking_ = true;
  Q_EMIT pickingChanged();
  window_.raise();
  window_.activateWindow();
  start(loop, context);
  if (!ended) loop.exec();
  picking_ = false;
  Q_EMIT pickingChanged();
}

std::optional<civil::Handle> DesktopFrontEnd::pickEntity(const CString& prompt) {
  std::optional<civil::Handle> picked;
  if (givenUp_) return picked;
  waitForPick([&](QEventLoop& loop, QObject& context) {
    connect(&plan_, &PlanView::picked, &context, [this, &loop, &picked](quint64 handle) {
      picked = handle;
      // The dialog may show another object of that name.
      Q_EMIT printed(tr("Picked: %1").arg(plan_.titleOf(handle).simplified()));
      loop.quit();
    });
    plan_.startPick(toQt(prompt));
  });
  return givenUp_ ? std::nullopt : picked;
}

std::optional<std::vector<civil::Handle>> DesktopFrontEnd::selectEntities(const CString& addPrompt,
                                                                          const CString& removePrompt,
                                                                          const CString& classTag) {
  auto selected = select(toQt(addPrompt), toQt(removePrompt), kindOf(classTag), {});
  Q_EMIT selectedForCommand(selected.value_or(std::vector<civil::Handle>{}));
  return selected;
}

std::optional<std::vector<civil::Handle>> DesktopFrontEnd::selectPoints(const QString& addPrompt,
                                                                        const QString& removePrompt,
                                                                        const std::vector<civil::Handle>& first) {
  return select(addPrompt, removePrompt, civil::ObjectKind::Point, first);
}

std::optional<std::vector<civil::Handle>> DesktopFrontEnd::select(const QString& addPrompt, const QString& removePrompt,
                                                                  std::optional<civil::ObjectKind> only,
                                                                  const std::vector<civil::Handle>& first) {
  std::optional<std::vector<civil::Handle>> selected;
  if (givenUp_) return selected;
  waitForPick([&](QEventLoop& loop, QObject& context) {
    connect(&plan_, &PlanView::selected, &context, [&loop, &selected](const QList<quint64>& handles) {
      selected.emplace(handles.begin(), handles.end());
      loop.quit();
    });
    plan_.startSelection(addPrompt, removePrompt, only);
    for (const civil::Handle handle : first) plan_.offerPick(handle);
  });
  return givenUp_ ? std::nullopt : std::move(selected);
}

BoxAnswer DesktopFrontEnd::messageBox(const CString& text, BoxButtons buttons, host::BoxIcon icon) {
  if (givenUp_) return leavingAnswer(buttons);
  const LongWork::Question question(work_);
  const BoxAnswer answer = showMessageBox(&window_, toQt(text), buttons, icon);
  return givenUp_ ? leavingAnswer(buttons) : answer;
}

std::optional<CString> DesktopFrontEnd::saveFileBox(const CString& filter, std::uint32_t flags) {
  if (givenUp_) return std::nullopt;
  const LongWork::Question question(work_);
  const std::optional<QString> path = askSavePath(&window_, toQt(filter), flags);
  return givenUp_ || !path ? std::nullopt : std::optional(toWide(*path));
}

HelpWindow& DesktopFrontEnd::help() {
  if (!help_) help_ = std::make_unique<HelpWindow>(helpFolder_);
  return *help_;
}

void DesktopFrontEnd::showHelp(const CString& topic) {
  if (!help().showTopic(topic)) Q_EMIT printed(tr("There is no help page for %1.").arg(toQt(topic)));
}

void DesktopFrontEnd::showHelpContents() { help().showContents(); }

void DesktopFrontEnd::showWindowHelp() { help().showWindowPage(); }

void DesktopFrontEnd::closeHelp() { help_.reset(); }

std::uint32_t DesktopFrontEnd::buttonFaceColour() { return faceColour(QApplication::palette()); }

}  // namespace lvx::desktop

#include "report_user.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QTreeView>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "desktop/common/qt_text.h"
#include "desktop/plan/plan_view.h"
#include "host/dialog_controls.h"
#include "runtime/open_drawing.h"
#include "support/places.h"
#include "text/number_text.h"

namespace lvx::test {

namespace {

QString named(int id) { return QStringLiteral("control%1").arg(id); }

/// Finds a row of the tree by the beginning of its text, opening what it stands in.
QModelIndex treeRow(const QTreeView& view, const QString& text, const QModelIndex& parent = {}) {
  for (int row = 0; row < view.model()->rowCount(parent); ++row) {
    const QModelIndex index = view.model()->index(row, 0, parent);
    if (index.data().toString().startsWith(text)) return index;
    if (const QModelIndex below = treeRow(view, text, index); below.isValid()) return below;
  }
  return {};
}

/// Places to try in order to have an object under the mouse.
std::vector<civil::Vec2> placesOf(const civil::Drawing& drawing, civil::Handle handle) {
  std::vector<civil::Vec2> places;
  constexpr double kStep = 7.3;
  const auto tryAlignment = [&](const civil::AlignmentObject& alignment) {
    if (alignment.handle == handle) {
      const double end = alignment.geometry.endStation();
      for (double station = alignment.geometry.startStation() + kStep; station < end; station += kStep)
        if (const auto pose = alignment.geometry.poseAt(station)) places.push_back(pose->point);
    }
    for (const civil::SampleLineGroup& group : alignment.sampleLineGroups)
      for (const civil::SampleLine& line : group.lines)
        if (line.handle == handle)
          for (double part = 0.05; part < 1.0; part += 0.1)
            places.push_back(line.vertices[0] + part * (line.vertices[1] - line.vertices[0]));
  };
  for (const auto& alignment : drawing.siteless.alignments) tryAlignment(*alignment);
  for (const civil::Site& site : drawing.sites)
    for (const auto& alignment : site.alignments) tryAlignment(*alignment);
  for (const civil::Point& point : drawing.points)
    if (point.handle == handle) places.push_back({point.position.x, point.position.y});
  for (const civil::SurfaceObject& surface : drawing.surfaces) {
    if (surface.handle != handle) continue;
    const auto& vertices = surface.surface.points();
    for (std::size_t i = 0; i < vertices.size(); i += 97) places.push_back({vertices[i].x, vertices[i].y});
  }
  return places;
}

}  // namespace

ReportUser::ReportUser(const QString& drawing, const desktop::DesktopOptions& options) : program(drawing, options) {}

// ---------------------------------------------------------------- commands and their dialogs

void ReportUser::start(const std::string& command, const char* dialogName) {
  program.enter(command);
  expectDialog(dialogName);
}

void ReportUser::expectDialog(const char* name) {
  if (name != nullptr) dialogName_ = name;
  dialog_ = nullptr;
  program.user.waitFor([this] {
    QWidget* const active = QApplication::activeWindow();
    if (active == nullptr || !active->isVisible() || active->objectName().toStdString() != dialogName_) return false;
    dialog_ = active;
    return true;
  });
  if (dialog_ == nullptr) throw std::runtime_error("the dialog " + dialogName_ + " doesn't come");
}

QWidget* ReportUser::control(int id) const {
  auto* const found = onGui([&] { return dialog_->findChild<QWidget*>(named(id)); });
  if (found == nullptr) throw std::runtime_error("the dialog has no control " + std::to_string(id));
  return found;
}

void ReportUser::choose(int list, const std::string& row) {
  auto* const combo = qobject_cast<QComboBox*>(control(list));
  const QString text = QString::fromStdString(row);
  program.user.click(combo);
  ASSERT_TRUE(program.user.waitFor([&] { return combo->view()->isVisible(); }));
  const int index = onGui([&] { return combo->findText(text); });
  ASSERT_GE(index, 0) << row << " isn't among " << rows(list);
  const QPoint place = onGui([&] { return combo->view()->visualRect(combo->model()->index(index, 0)).center(); });
  program.user.click(onGui([&] { return combo->view()->viewport(); }), place);
  ASSERT_TRUE(program.user.waitFor([&] { return !combo->view()->isVisible() && combo->currentText() == text; })) << row;
}

std::string ReportUser::rows(int list) const {
  auto* const combo = qobject_cast<QComboBox*>(control(list));
  return onGui([&] {
    QStringList rows;
    for (int row = 0; row < combo->count(); ++row)
      rows << (row == combo->currentIndex() ? QStringLiteral("[%1]") : QStringLiteral("%1")).arg(combo->itemText(row));
    return rows.join(QLatin1Char('|')).toStdString();
  });
}

std::string ReportUser::textOf(int id) const {
  QWidget* const widget = control(id);
  return onGui([&]() -> std::string {
    if (const auto* edit = qobject_cast<QLineEdit*>(widget)) return edit->text().toStdString();
    if (const auto* label = qobject_cast<QLabel*>(widget)) return label->text().toStdString();
    if (const auto* button = qobject_cast<QAbstractButton*>(widget)) return button->text().toStdString();
    return {};
  });
}

void ReportUser::typeStem(const std::filesystem::path& stem) {
  program.user.click(control(host::kIdOutputStem));
  program.user.key(Qt::Key_A, Qt::ControlModifier);
  program.user.type(stem.string());
  const auto* const edit = qobject_cast<QLineEdit*>(control(host::kIdOutputStem));
  ASSERT_TRUE(program.user.waitFor([&] { return edit->text().toStdString() == stem.string(); }))
      << textOf(host::kIdOutputStem);
}

void ReportUser::toggle(int form) {
  auto* const box = qobject_cast<QCheckBox*>(control(form));
  const bool before = onGui([&] { return box->isChecked(); });
  constexpr QPoint kMark(8, 8);
  program.user.click(box, kMark);
  ASSERT_TRUE(program.user.waitFor([&] { return box->isChecked() != before; }));
}

void ReportUser::press(int id) {
  QWidget* const button = control(id);
  ASSERT_TRUE(program.user.waitFor([&] { return button->isEnabled(); })) << id;
  program.user.click(button);
}

bool ReportUser::waitForEnd() const {
  return program.user.waitFor([this] { return !program.window->session().isRunning(); }, std::chrono::seconds(60));
}

// ---------------------------------------------------------------- picks

void ReportUser::expectPrompt(const std::string& prompt) const {
  const QString text = QString::fromStdString(prompt);
  auto* const label = program.part<QLabel>("consolePrompt");
  EXPECT_TRUE(program.user.waitFor([&] {
    return label->text().trimmed() == text && QApplication::activeWindow() == program.window &&
           QApplication::activeModalWidget() == nullptr;
  })) << prompt;
  EXPECT_EQ(onGui([&] { return program.window->plan().pointerBox().value(0).trimmed().toStdString(); }), prompt);
}

QPoint ReportUser::pixelOf(civil::Vec2 place) const {
  return onGui([&] {
    const civil::Vec2 pixel = program.window->plan().viewport().toPixels(place);
    return QPoint(static_cast<int>(std::lround(pixel.x)), static_cast<int>(std::lround(pixel.y)));
  });
}

bool ReportUser::movesOnto(QPoint pixel, civil::Handle wanted) {
  auto* const plan = program.part<desktop::PlanView>("plan");
  const QString place = onGui([&] {
    const civil::Vec2 under =
        plan->viewport().toDrawing({static_cast<double>(pixel.x()), static_cast<double>(pixel.y())});
    return desktop::toQt("E " + text::fixedText(under.x) + "   N " + text::fixedText(under.y));
  });
  // From beside it, since a mouse that stands there already tells nothing.
  program.user.moveTo(plan, pixel + QPoint(3, 3));
  program.user.moveTo(plan, pixel);
  auto* const coordinates = program.part<QLabel>("coordinates");
  EXPECT_TRUE(program.user.waitFor([&] { return coordinates->text() == place; })) << place.toStdString();
  return onGui([&] { return plan->hovered() && plan->hovered()->handle == wanted; });
}

QPoint ReportUser::pointAt(civil::Handle wanted) {
  auto* const plan = program.part<desktop::PlanView>("plan");
  const std::vector<civil::Vec2> places = onGui([&] { return placesOf(drawing(), wanted); });
  constexpr int kMargin = 12;
  constexpr int kMostZooms = 8;
  constexpr int kMostTries = 20;
  for (int zooms = 0; zooms < kMostZooms; ++zooms) {
    const QRect inner = onGui([&] { return plan->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin); });
    QPoint last;
    int tries = 0;
    for (const civil::Vec2 place : places) {
      const QPoint pixel = pixelOf(place);
      if (!inner.contains(pixel)) continue;
      last = pixel;
      if (movesOnto(pixel, wanted)) return pixel;
      if (++tries == kMostTries) break;
    }
    if (last.isNull()) break;
    const double before = onGui([&] { return plan->viewport().scale(); });
    program.user.wheel(2);
    EXPECT_TRUE(program.user.waitFor([&] { return plan->viewport().scale() > before; }));
  }
  throw std::runtime_error("no place in the plan is nearest to that object");
}

void ReportUser::clickAt(civil::Handle wanted, Qt::KeyboardModifiers modifiers) {
  const QPoint place = pointAt(wanted);
  program.user.click(program.part("plan"), place, Qt::LeftButton, modifiers);
}

void ReportUser::clickTree(const std::string& row) {
  auto* const view = program.part<QTreeView>("treeView");
  const QPoint place = onGui([&] {
    const QModelIndex index = treeRow(*view, QString::fromStdString(row));
    view->scrollTo(index);
    return index.isValid() ? view->visualRect(index).center() : QPoint(-1, -1);
  });
  ASSERT_NE(place, QPoint(-1, -1)) << row;
  program.user.click(onGui([&] { return view->viewport(); }), place);
}

// ---------------------------------------------------------------- boxes

QWidget* ReportUser::expectBox(const char* name, int icon, const std::string& text) const {
  QMessageBox* box = nullptr;
  program.user.waitFor([&] {
    QWidget* const active = QApplication::activeWindow();
    box = active != nullptr && active->isVisible() && active->objectName() == QLatin1String(name)
              ? qobject_cast<QMessageBox*>(active)
              : nullptr;
    return box != nullptr && (box->text() + box->informativeText()).contains(QString::fromStdString(text));
  });
  if (box == nullptr) throw std::runtime_error(std::string("the box ") + name + " doesn't come for: " + text);
  EXPECT_NE(onGui([&] { return (box->text() + box->informativeText()).toStdString(); }).find(text), std::string::npos);
  if (icon >= 0) {
    EXPECT_EQ(onGui([&] { return static_cast<int>(box->icon()); }), icon) << text;
  }
  return box;
}

void ReportUser::answer(QWidget* box, const char* button) {
  QPushButton* const found = ProgramWindow::button(box, button);
  ASSERT_NE(found, nullptr) << button;
  program.user.click(found);
}

// ---------------------------------------------------------------- the drawing

const civil::Drawing& ReportUser::drawing() const { return program.window->session().drawing()->drawing(); }

const civil::AlignmentObject& ReportUser::alignment(const std::string& name) const {
  for (const civil::Site& site : drawing().sites)
    for (const auto& each : site.alignments)
      if (each->name == name) return *each;
  for (const auto& each : drawing().siteless.alignments)
    if (each->name == name) return *each;
  throw std::runtime_error("no alignment " + name);
}

const civil::Point& ReportUser::point(std::int32_t number) const {
  for (const civil::Point& each : drawing().points)
    if (each.number == number) return each;
  throw std::runtime_error("no point " + std::to_string(number));
}

// ---------------------------------------------------------------- files

Forms ReportUser::formsOf(const std::filesystem::path& stem) {
  Forms forms;
  for (const char* ending : {".txt", ".xls", ".html"}) {
    const std::filesystem::path path = stem.string() + ending;
    if (std::filesystem::exists(path)) forms[ending] = fileBytes(path);
  }
  return forms;
}

void ReportUser::expectAsTheLineWrites(const std::filesystem::path& stem, std::vector<std::string> arguments) {
  const Forms written = formsOf(stem);
  EXPECT_FALSE(written.empty());
  std::string forms;
  for (const auto& [ending, bytes] : written) {
    forms += (forms.empty() ? "" : ",") + ending.substr(1);
    std::filesystem::remove(stem.string() + ending);
  }
  arguments.insert(arguments.end(), {"--forms", forms, "--out", stem.string()});
  RunRequest request;
  request.program = test::inBuild("/bin/lvxhost");
  request.arguments = std::move(arguments);
  const RunResult line = runProgram(request);
  ASSERT_EQ(line.exitCode, 0) << line.errors;
  const Forms expected = formsOf(stem);
  ASSERT_EQ(expected.size(), written.size());
  for (const auto& [ending, bytes] : expected) {
    EXPECT_GT(bytes.size(), 300U) << ending;
    EXPECT_TRUE(written.at(ending) == bytes) << ending << " differs";
  }
}

}  // namespace lvx::test

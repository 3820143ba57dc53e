#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "host/dialog_controls.h"
#include "program_window.h"

class QComboBox;

namespace lvx::test {

/// Bytes of files by their endings: ".txt".
using Forms = std::map<std::string, std::string>;

/// Somebody who makes reports in the program's window. All reports are dated by one moment, so that two programs write
/// the same bytes.
///
///     ReportUser user;
///     user.start("lvx_Report_Que", host::kProjectionDialog);
///     user.choose(host::kIdSites, "Valley road upgrade");
///     user.typeStem(stem);
///     user.press(host::kIdOk);
///     user.expectAsTheLineWrites(stem, {"projection", …});
class ReportUser {
 public:
  explicit ReportUser(const QString& drawing = kExample, const desktop::DesktopOptions& options = {});

  // ---- commands and their dialogs
  /// Types a command; its dialog, of that name, has the keyboard afterwards.
  void start(const std::string& command, const char* dialogName);
  /// Waits for the command's dialog, or another of that name.
  void expectDialog(const char* name = nullptr);
  [[nodiscard]] QWidget* dialog() const { return dialog_; }
  [[nodiscard]] QWidget* control(int id) const;
  /// Chooses a row of a list: opens it and clicks the row.
  void choose(int list, const std::string& row);
  /// Rows of a list as they stand, the chosen one in brackets: "A|[B]".
  [[nodiscard]] std::string rows(int list) const;
  [[nodiscard]] std::string textOf(int control) const;
  void typeStem(const std::filesystem::path& stem);
  /// Ticks a form on or off by a click on its mark.
  void toggle(int form);
  void press(int control);
  /// Waits until the running command is over.
  bool waitForEnd() const;

  // ---- picks
  /// Waits until the program asks so, in the console and beside the pointer, and no dialog is in the way.
  void expectPrompt(const std::string& prompt) const;
  /// Puts the mouse where an object alone is under it, zooming in where it has to; the place in the plan.
  QPoint pointAt(civil::Handle wanted);
  /// Clicks an object in the plan.
  void clickAt(civil::Handle wanted, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  /// A place of the drawing in the plan.
  [[nodiscard]] QPoint pixelOf(civil::Vec2 place) const;
  void clickTree(const std::string& row);

  // ---- boxes
  /// Waits for a box of that object name with that icon (-1: any) and a text that holds `text`.
  QWidget* expectBox(const char* name, int icon, const std::string& text) const;
  void answer(QWidget* box, const char* button);

  // ---- the drawing, to look up where things are
  [[nodiscard]] const civil::Drawing& drawing() const;
  [[nodiscard]] const civil::AlignmentObject& alignment(const std::string& name) const;
  [[nodiscard]] const civil::Point& point(std::int32_t number) const;

  // ---- files
  /// What stands under a stem.
  [[nodiscard]] static Forms formsOf(const std::filesystem::path& stem);
  /// Runs lvxhost with these arguments, and `--out stem`, in place of what stands under the stem, and expects the same
  /// files with the same bytes.
  static void expectAsTheLineWrites(const std::filesystem::path& stem, std::vector<std::string> arguments);
  [[nodiscard]] std::filesystem::path stem(const std::string& name = "report") const { return program.folder / name; }

  ProgramWindow program;

 private:
  [[nodiscard]] bool movesOnto(QPoint pixel, civil::Handle wanted);

  QWidget* dialog_ = nullptr;
  std::string dialogName_;
};

}  // namespace lvx::test

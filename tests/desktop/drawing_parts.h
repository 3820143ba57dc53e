#pragma once

#include <QTreeView>
#include <filesystem>
#include <fstream>
#include <string>

#include "program_window.h"

/// Small drawings as real projects split them, and the tree that shows them.
namespace lvx::test {

inline std::string drawingIn(const std::string& unit, const std::string& content) {
  const std::string system = unit == "meter" ? "Metric" : "Imperial";
  return "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\"><Units><" + system + " linearUnit=\"" + unit +
         "\" angularUnit=\"decimal degrees\"/></Units>" + content + "</LandXML>\n";
}

/// An alignment "Road" due north over 100, from 0 north, 50 east.
inline const std::string kRoad =
    "<Alignments><Alignment name=\"Road\" length=\"100\" staStart=\"0\"><CoordGeom><Line><Start>0 50</Start>"
    "<End>100 50</End></Line></CoordGeom></Alignment></Alignments>";
/// A surface "Ground" from 0 north to 80 north and 0 east to 200 east, rising to the north by 1 in 10.
inline const std::string kGround =
    "<Surfaces><Surface name=\"Ground\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">0 0 1</P><P id=\"2\">0 200 1</P>"
    "<P id=\"3\">80 200 9</P><P id=\"4\">80 0 9</P></Pnts><Faces><F>1 2 3</F><F>1 3 "
    "4</F></Faces></Definition></Surface>"
    "</Surfaces>";
/// Five points along the road, three of them trees.
inline const std::string kPoints =
    "<CgPoints><CgPoint name=\"1\" desc=\"TREE oak\">10 20 100</CgPoint><CgPoint name=\"2\" desc=\"TREE ash\">20 30 101"
    "</CgPoint><CgPoint name=\"3\" desc=\"FENCE\">40 20 102</CgPoint><CgPoint name=\"4\" desc=\"TREE elm\">60 80 103"
    "</CgPoint><CgPoint name=\"5\" desc=\"HYDRANT\">90 80 104</CgPoint></CgPoints>";

inline QString writeDrawing(const TemporaryFolder& folder, const std::string& name, const std::string& text) {
  std::ofstream(folder / name) << text;
  return QString::fromStdString((folder / name).string());
}

/// A row of the tree by the beginning of its text, opening what it stands in. Windows' thread.
inline QModelIndex findTreeRow(const QTreeView& view, const std::string& text, const QModelIndex& parent = {}) {
  for (int row = 0; row < view.model()->rowCount(parent); ++row) {
    const QModelIndex index = view.model()->index(row, 0, parent);
    if (index.data().toString().startsWith(QString::fromStdString(text))) return index;
    if (const QModelIndex below = findTreeRow(view, text, index); below.isValid()) return below;
  }
  return {};
}

/// Text of the first row of the tree that begins so; empty where there is none.
inline std::string treeText(const ProgramWindow& program, const std::string& beginning, int role = Qt::DisplayRole) {
  auto* const view = program.part<QTreeView>("treeView");
  return onGui([&] { return findTreeRow(*view, beginning).data(role).toString().toStdString(); });
}

/// Asks for a row's menu and chooses an entry by its name; false where it isn't offered.
inline bool chooseInTree(ProgramWindow& program, const std::string& row, const char* entry) {
  auto* const view = program.part<QTreeView>("treeView");
  const QPoint place = onGui([&] {
    const QModelIndex index = findTreeRow(*view, row);
    view->scrollTo(index);
    return view->visualRect(index).center();
  });
  program.user.click(onGui([&] { return view->viewport(); }), place, Qt::RightButton);
  QMenu* menu = nullptr;
  EXPECT_TRUE(program.user.waitFor([&] {
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    return menu != nullptr && menu->objectName() == QLatin1String("treeMenu");
  }));
  if (menu == nullptr) return false;
  const QRect entryPlace = onGui([&] {
    for (QAction* const action : menu->actions())
      if (action->objectName() == QLatin1String(entry) && action->isEnabled()) return menu->actionGeometry(action);
    return QRect();
  });
  if (!entryPlace.isValid()) {
    program.user.key(Qt::Key_Escape);
    return false;
  }
  program.user.click(menu, entryPlace.center());
  return true;
}

}  // namespace lvx::test

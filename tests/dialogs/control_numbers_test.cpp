#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "gls/add_sections_dialog.h"
#include "gls/gls_dialog.h"
#include "points/points_dialog.h"
#include "projection/projection_dialog.h"
#include "support/places.h"

namespace lvx::dialogs {
namespace {

/// The dialogs in the order of their columns in the table for authors of scripts.
std::vector<std::unique_ptr<DialogBehaviour>> allDialogs(host::Host& host) {
  std::vector<std::unique_ptr<DialogBehaviour>> dialogs;
  dialogs.push_back(std::make_unique<projection::CMyDialog1>(host));
  dialogs.push_back(std::make_unique<points::CExportPointsDlg>(host));
  dialogs.push_back(std::make_unique<gls::CMyDialog3>(host));
  dialogs.push_back(std::make_unique<gls::CMyDialog4>(host));
  return dialogs;
}

bool isWorkedByUsers(ControlKind kind) {
  return kind != ControlKind::Label && kind != ControlKind::Picture && kind != ControlKind::GroupBox;
}

/// Cells of a row without their outer blanks.
std::vector<std::string> cellsOf(const std::string& row) {
  std::vector<std::string> cells;
  std::istringstream rest(row.substr(1));
  for (std::string cell; std::getline(rest, cell, '|');) {
    const std::size_t first = cell.find_first_not_of(' ');
    cells.push_back(first == std::string::npos ? "" : cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
  }
  return cells;
}

/// The rows of the table that begins with "| Control |".
std::vector<std::vector<std::string>> tableForScripts() {
  std::ifstream page(test::inSource("/docs/scripts.md"));
  std::vector<std::vector<std::string>> table;
  for (std::string line; std::getline(page, line);)
    if (line.starts_with("| Control |") || (!table.empty() && line.starts_with('|')))
      table.push_back(cellsOf(line));
    else if (!table.empty())
      break;
  return table;
}

TEST(ControlNumbers, OfDialogsAreToldToAuthorsOfScriptsAndNoOthersAre) {
  const auto table = tableForScripts();
  ASSERT_GT(table.size(), 2U);
  test::FakeHost host;
  std::size_t column = 0;
  for (const auto& dialog : allDialogs(host)) {
    const DialogTemplate& made = dialog->dialogTemplate();
    ++column;
    ASSERT_LT(column, table.front().size());
    EXPECT_EQ(table.front()[column].rfind("`" + std::string(made.name) + "`", 0), 0U) << table.front()[column];
    std::multiset<int> told;
    for (std::size_t row = 2; row < table.size(); ++row)
      if (!table[row].at(column).empty()) told.insert(std::atoi(table[row][column].c_str()));
    std::multiset<int> worked;
    for (const ControlTemplate& control : made.controls)
      if (isWorkedByUsers(control.kind)) worked.insert(control.id);
    EXPECT_EQ(told, worked) << made.name;
  }
  EXPECT_EQ(column + 1, table.front().size());
}

TEST(ControlNumbers, StandOnceInADialog) {
  test::FakeHost host;
  for (const auto& dialog : allDialogs(host)) {
    std::set<int> numbers;
    for (const ControlTemplate& control : dialog->dialogTemplate().controls)
      EXPECT_TRUE(numbers.insert(control.id).second) << dialog->dialogTemplate().name << ' ' << control.id;
  }
}

}  // namespace
}  // namespace lvx::dialogs

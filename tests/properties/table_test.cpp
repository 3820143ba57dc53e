#include "properties/table.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::properties {
namespace {

using testing::ElementsAre;

Table of(Form form, std::vector<Value> values) {
  Table table;
  table.columns = {{Term::Name, form}};
  table.rowCount = values.size();
  table.cell = [values = std::move(values)](std::size_t row, std::size_t) { return values[row]; };
  return table;
}

const Words kWords = [](Term term) { return std::string(term == Term::Arc ? "Arc" : "Line"); };

TEST(Table, SortsNumbersAsNumbersWithRowsWithoutOneLast) {
  const Table table = of(Form::Length, {10.0, Value(), 9.0, -1.5, std::numeric_limits<double>::infinity(), 9.0});
  EXPECT_THAT(sorted(table, 0, true, {}), ElementsAre(3, 2, 5, 0, 4, 1));
  EXPECT_THAT(sorted(table, 0, false, {}), ElementsAre(4, 0, 2, 5, 3, 1)) << "rows of one value keep their order";
}

TEST(Table, SortsTextsRegardlessOfCaseAndNumbersInThemAsNumbers) {
  const Table table = of(Form::Text, {std::string("L10"), std::string("l2"), Value(), std::string("L1"), Term::Line,
                                      Term::Arc, std::string("L02b")});
  EXPECT_THAT(sorted(table, 0, true, kWords), ElementsAre(5, 3, 1, 6, 0, 4, 2));
  EXPECT_THAT(sorted(table, 0, false, kWords), ElementsAre(4, 0, 6, 1, 3, 5, 2));
}

TEST(Table, OrdersTextsStrictly) {
  const std::vector<std::string> texts = {"", "0", "00", "1", "01", "a", "A", "a1", "a01", "a1b", "a10", "ä", "b-2"};
  for (const std::string& a : texts) {
    EXPECT_FALSE(comesBefore(a, a)) << a;
    for (const std::string& b : texts) {
      EXPECT_FALSE(comesBefore(a, b) && comesBefore(b, a)) << a << " " << b;
      for (const std::string& c : texts)
        EXPECT_TRUE(!comesBefore(a, b) || !comesBefore(b, c) || comesBefore(a, c)) << a << " " << b << " " << c;
    }
  }
}

TEST(Table, WritesValuesByTheirForm) {
  struct Case {
    Value value;
    Form form;
    const char* text;
  };
  const Case cases[] = {
      {Value(), Form::Length, ""},
      {1020.5, Form::Station, "1+020.500"},
      {4500123.4567, Form::Length, "4500123.457"},
      {17.0, Form::Whole, "17"},
      {1234.567, Form::Area, "1234.57"},
      {0.025, Form::Percent, "2.500"},
      {civil::kPi / 2.0, Form::Gon, "100.0000"},
      {std::numeric_limits<double>::infinity(), Form::Length, "∞"},
      {std::nan(""), Form::Length, "-"},
      {std::string("GP 1"), Form::Text, "GP 1"},
      {Term::Arc, Form::Text, "Arc"},
  };
  for (const Case& row : cases) EXPECT_EQ(textOf(row.value, row.form, kWords), row.text);
}

TEST(Table, AsksForEachValueOnceToSort) {
  Table table;
  table.columns = {{Term::Number, Form::Whole}};
  table.rowCount = 100'000;
  std::size_t asked = 0;
  table.cell = [&asked](std::size_t row, std::size_t) -> Value {
    ++asked;
    return static_cast<double>((row * 7919) % 100'003);
  };
  const auto rows = sorted(table, 0, true, {});
  EXPECT_EQ(asked, table.rowCount);
  ASSERT_EQ(rows.size(), table.rowCount);
  for (std::size_t i = 1; i < rows.size(); ++i)
    ASSERT_LT((std::size_t{rows[i - 1]} * 7919) % 100'003, (std::size_t{rows[i]} * 7919) % 100'003);
}

}  // namespace
}  // namespace lvx::properties

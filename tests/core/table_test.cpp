// Tables: order, texts, and what leaves them.
#include "core/table.h"

#include <gtest/gtest.h>

namespace ormel {
namespace {

Table Sample() {
  Table table(
      {{.name = "Label", .caption = "Label", .number = false},
       {.name = "Head", .caption = "Head", .mask = "0.00", .special = -9999.0, .special_text = "dry"}});
  table.AddRow({"b, the \"old\" one", 2.0 / 3.0});
  table.AddRow({"A", -9999.0});
  table.AddRow({"a", Value()});
  table.AddRow({"10\t11", 1e300 * 1e300});
  return table;
}

std::string Column(const Table& table, std::size_t column) {
  std::string text;
  for (std::size_t i = 0; i < table.Rows(); ++i) text += table.Text(i, column) + "|";
  return text;
}

TEST(Table, SortsByValueAndKeepsTheOrderOfEqualRows) {
  Table table = Sample();
  table.Sort(1, false);
  EXPECT_EQ(Column(table, 1), "|dry|0.67|inf|");
  EXPECT_EQ(table.Source(0), 2U);
  table.Sort(1, true);
  EXPECT_EQ(Column(table, 1), "inf|0.67|dry||");
  table.Sort(0, false);
  EXPECT_EQ(Column(table, 0), "10\t11|A|a|b, the \"old\" one|")
      << "without regard to case, the dry one first";
}

TEST(Table, LeavesWithAllDigitsAndQuotes) {
  Table table = Sample();
  EXPECT_EQ(table.CsvHeadings(), "Label,Head");
  EXPECT_EQ(table.CsvRow(0), "\"b, the \"\"old\"\" one\",0.666666666666667");
  EXPECT_EQ(table.CsvRow(1), "A,-9999");
  EXPECT_EQ(table.Tabbed({}),
            "Label\tHead\nb, the \"old\" one\t0.666666666666667\nA\t-9999\na\t\n10 11\tinf\n");
  const int rows[] = {2};
  EXPECT_EQ(table.Tabbed(rows), "Label\tHead\na\t\n");
}

TEST(Table, ChangesTheRowThatIsShown) {
  Table table = Sample();
  table.Sort(0, true);
  table.Change(0, 1, 5.0);
  table.Sort(0, false);
  EXPECT_EQ(table.At(3, 1), Value(5.0));
  EXPECT_THROW(table.AddRow({1, 2, 3}), std::logic_error);
}

}  // namespace
}  // namespace ormel

// The description of a report: what it lays down, and what is said of one that is wrong.
#include "analysis/report_template.h"

#include <gtest/gtest.h>

namespace ormel {
namespace {

TEST(ReportTemplate, TheStandardOneIsWhole) {
  const auto parsed = ParseReport(StandardReport(), "standard");
  ASSERT_TRUE(std::holds_alternative<ReportDescription>(parsed)) << std::get<FileDamage>(parsed).Message();
  const auto& report = std::get<ReportDescription>(parsed);
  EXPECT_EQ(report.page.paper, "A4");
  EXPECT_GE(report.sections.size(), 12U);
  EXPECT_EQ(report.sections.front().id, "title");
}

TEST(ReportTemplate, TextsTablesAndPictures) {
  const auto parsed = ParseReport(
      "@* a remark\r\n@title T\r\n@paper Letter landscape 20\r\n@section one | One | results\r\n"
      "<p>k is {select AQHydCond from Model | rate | s3}, {{as it stands}}</p>\r\n"
      "@table Wells\r\n@select Label\r\n  from Wells\r\n@column Label | Well\r\n"
      "@column X | X | map length | 0.0\r\n@empty none\r\n@end\r\n@picture map | 300x200 | The map\r\n",
      "a.txt");
  ASSERT_TRUE(std::holds_alternative<ReportDescription>(parsed)) << std::get<FileDamage>(parsed).Message();
  const auto& report = std::get<ReportDescription>(parsed);
  EXPECT_TRUE(report.page.landscape);
  EXPECT_EQ(report.page.margin, 20);
  ASSERT_EQ(report.sections.size(), 1U);
  EXPECT_TRUE(report.sections[0].needs_results);
  const auto& blocks = report.sections[0].blocks;
  ASSERT_EQ(blocks.size(), 3U);
  const auto& text = std::get<ReportText>(blocks[0].content);
  EXPECT_EQ(text.fields.at(0).what, "select AQHydCond from Model");
  EXPECT_NE(text.html.find("{as it stands}"), std::string::npos);
  const auto& table = std::get<ReportTable>(blocks[1].content);
  EXPECT_EQ(table.query, "select Label from Wells");
  EXPECT_EQ(table.columns.at(1).format.Text(12.345), "12.3");
  EXPECT_EQ(std::get<ReportPicture>(blocks[2].content).height, 200);
}

TEST(ReportTemplate, FaultsNameTheirLine) {
  struct Case {
    const char* text;
    std::size_t line;
    const char* words;
  };
  for (const Case& c : {
           Case{"@section a | A\n@chapter b\n", 2, "no instruction @chapter"},
           Case{"<p>early</p>\n", 1, "before the first @section"},
           Case{"@section a | A\n@table t\n@source zones\n@column Label\n", 4, "no @end"},
           Case{"@section a | A\n@table t\n@source zones\n@end\n", 4, "no @column"},
           Case{"@section a | A\n@table t\n@column L\n@end\n", 4, "neither @select nor @source"},
           Case{"@section a | A\n@table t\n@select 1; delete from Wells\n@column L\n@end\n", 5, "semicolon"},
           Case{"@section a | A\n@column L\n", 2, "inside of a @table"},
           Case{"@section a | A\n@table t\n@section b | B\n", 3, "has no @end"},
           Case{"@section a | A\n{select delete | parsec}\n", 2, "no quantity \"parsec\""},
           Case{"@section a | A\n{x | rate | many}\n", 2, "is no format"},
           Case{"@section a | A\n{select 1; delete from Wells}\n", 2, "without a semicolon"},
           Case{"@section a | A\n<p>{open</p>\n", 2, "has no }"},
           Case{"@section a | A\n@section a | B\n", 2, "two sections"},
           Case{"@section a | A\n@picture face | 300x300\n", 2, "no picture \"face\""},
           Case{"@section a | A\n@picture map | 3x3\n", 2, "between 100 and 3000"},
           Case{"@paper A7\n", 1, "A4, A3"},
           Case{"", 0, "no @section"},
       }) {
    const auto parsed = ParseReport(c.text, "my report.txt");
    ASSERT_TRUE(std::holds_alternative<FileDamage>(parsed)) << c.text;
    const auto& damage = std::get<FileDamage>(parsed);
    EXPECT_EQ(damage.line, c.line) << c.text;
    EXPECT_NE(damage.reason.find(c.words), std::string::npos) << damage.reason;
  }
}

TEST(ReportNumbers, SignificantDigitsNeverCutWholeOnes) {
  struct Case {
    const char* format;
    double value;
    const char* text;
  };
  for (const Case& c :
       {Case{"s4", 1234567.8, "1234568"}, Case{"s4", 12.34567, "12.35"}, Case{"s4", 0.000123456, "0.0001235"},
        Case{"s3", 1.5e-7, "1.50E-07"}, Case{"s3", 0, "0"}, Case{"s3", -0.02, "-0.0200"},
        Case{"s3", 9.996, "10.00"}, Case{"given", 0.1, "0.1"}, Case{"0.0", 2.25, "2.2"}}) {
    const auto format = NumberFormat::Parse(c.format);
    ASSERT_TRUE(format.has_value()) << c.format;
    EXPECT_EQ(format->Text(c.value), c.text) << c.format << ' ' << c.value;
  }
  EXPECT_FALSE(NumberFormat::Parse("s0").has_value());
  EXPECT_FALSE(NumberFormat::Parse("digits").has_value());
  EXPECT_EQ(UnitHtml("m^3/day"), "m<sup>3</sup>/day");
}

}  // namespace
}  // namespace ormel

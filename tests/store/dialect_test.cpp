#include "store/dialect.h"

#include <gtest/gtest.h>

#include "new_project.h"

namespace ormel {
namespace {

using test::FailureOf;

TEST(Dialect, Translates) {
  const struct {
    const char* sql;
    const char* native;
  } cases[] = {
      {"DELETE * FROM WLResults;", "DELETE FROM WLResults"},
      {"delete Wells.* from Wells where VID=1", "delete from Wells where VID=1"},
      {"select * from T where ChangeB=True or Show=false;", "select * from T where ChangeB=(-1) or Show=0"},
      {"select [True], T.False from T", "select [True], T.False from T"},
      {"select \"a'b\"\"c\" & 'it''s'", "select 'a''b\"c' || 'it''s'"},
      {"select 'True & [x] #1/2/2026# delete * from' from T",
       "select 'True & [x] #1/2/2026# delete * from' from T"},
      {"select 5--3", "select 5- -3"},
      {"select * from P where Updated>#2026-11-24 13:05#",
       "select * from P where Updated>'2026-11-24 13:05:00'"},
      {"x<#11/24/2026#", "x<'2026-11-24 00:00:00'"},
      {"x='a#b' and y=#99/99/2026#", "x='a#b' and y=#99/99/2026#"},
      {"Label='\u00dc [b' ;;", "Label='\u00dc [b'"},
      {"select * from T where X < 1.5E-05 and Y>=.5", "select * from T where X < 1.5E-05 and Y>=.5"},
  };
  for (const auto& c : cases) EXPECT_EQ(dialect::Translate(c.sql), c.native);
  for (const char* sql : {"select 'open", "select \"open", "select [open", "'''"}) {
    EXPECT_EQ(FailureOf([&] { dialect::Translate(sql); }), StoreErrorCode::kSyntax) << sql;
  }
}

TEST(Dialect, PutsComputedColumnsIn) {
  EXPECT_EQ(dialect::TranslateExpandingAliases(
                "select (1-x) as dx,dx*dx as r2, f(dx), t.dx, r2+dx from v order by dx"),
            "select (1-x) as dx,((1-x))*((1-x)) as r2, f(((1-x))), t.dx, (((1-x))*((1-x)))+((1-x)) from v "
            "order by dx");
}

TEST(Dialect, FieldsGoBeforeComputedColumns) {
  test::ProjectFixture project;
  project.AddVertices(1);
  Recordset rows = project.db.OpenRecordset("select X+10 as Y, Y as Z from Vertices");
  EXPECT_EQ(rows.Get<double>("Z"), -1.0);
}

TEST(Dialect, TellsTheKindOfASelect) {
  const struct {
    const char* sql;
    bool single;
    const char* tail;
    const char* order;
  } cases[] = {
      {"select * from Wells;", true, "", ""},
      {"select Wells.* from [Wells] where VID=1", true, "where VID=1", ""},
      {"select X,Vertices.Y from Vertices order by Seq desc;", true, "", "Seq desc"},
      {"select * from V where PID in (select PID from L order by 1) order by Seq", true,
       "where PID in (select PID from L order by 1)", "Seq"},
      {"select * from V order by 2", false, "", ""},
      {"select X+1 from V", false, "", ""},
      {"select max(X) from V", false, "", ""},
      {"select X as A from V", false, "", ""},
      {"select *,X from V", false, "", ""},
      {"select distinct X from V", false, "", ""},
      {"select * from A,B", false, "", ""},
      {"select * from A inner join B on A.X=B.X", false, "", ""},
      {"select * from A where X=1 group by X", false, "", ""},
      {"select * from A limit 1", false, "", ""},
      {"select * from A union select * from B", false, "", ""},
      {"select * from (select 1)", false, "", ""},
      {"select", false, "", ""},
      {"", false, "", ""},
  };
  for (const auto& c : cases) {
    const dialect::SelectInfo info = dialect::AnalyzeSelect(c.sql);
    EXPECT_EQ(info.single_table, c.single) << c.sql;
    if (!info.single_table) continue;
    EXPECT_EQ(info.tail, c.tail);
    EXPECT_EQ(info.order, c.order);
  }
}

TEST(Dialect, RefusesWithTheStatement) {
  test::ProjectFixture project;
  const struct {
    const char* sql;
    StoreErrorCode code;
  } cases[] = {{"select * from Nowhere", StoreErrorCode::kNoSuchTable},
               {"select Nowhere from Wells", StoreErrorCode::kNoSuchField},
               {"select * from Wells where Nowhere=1", StoreErrorCode::kNoSuchField},
               {"select from where", StoreErrorCode::kSyntax},
               {"", StoreErrorCode::kSyntax},
               {"select 1; delete from Model", StoreErrorCode::kSyntax},
               {"select 'a", StoreErrorCode::kSyntax}};
  for (const auto& c : cases) {
    EXPECT_EQ(FailureOf([&] { project.db.OpenRecordset(c.sql); }), c.code) << c.sql;
  }
  EXPECT_EQ(FailureOf([&] { project.db.Execute("delete from Nowhere"); }), StoreErrorCode::kNoSuchTable);
  EXPECT_EQ(FailureOf([&] { project.db.Execute("delete from Wells", {1}); }),
            StoreErrorCode::kMissingParameter);
}

}  // namespace
}  // namespace ormel

#include "store/schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>

#include <array>
#include <filesystem>

#include "new_project.h"
#include "text/strings.h"

namespace ormel {
namespace {

using test::FailureOf;
using test::ProjectFixture;
using testing::AllOf;
using testing::HasSubstr;

/// What the independent tool `sqlite3` says.
std::string Tool(const std::string& path, const std::string& sql) {
  const std::string command = "sqlite3 '" + path + "' \"" + sql + "\" 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  std::string out;
  std::array<char, 4096> buffer;
  while (fgets(buffer.data(), static_cast<int>(buffer.size()), pipe) != nullptr) out += buffer.data();
  EXPECT_EQ(pclose(pipe), 0) << out;
  return out;
}

// Fields that procedures and older files count on by position.
TEST(Schema, TablesAndFieldsComeInTheirOrder) {
  ProjectFixture project;
  EXPECT_THAT(project.db.TableNames(),
              testing::ElementsAre("Basemaps", "LinesinkStrings", "Model", "NoFlowStrings", "Inhomogeneities",
                                   "Particles", "Polygons", "Project", "TestPoints", "TextLabels", "Vertices",
                                   "Wells", "LSResults", "INResults", "NFResults", "TPResults", "FIResults",
                                   "WLResults", "SavedWindows", "FluxInspect", "Capzones", "Zones",
                                   "MapLabels", "WHPAs", "Checksums"));
  const struct {
    const char* table;
    std::size_t fields;
    const char* first;
    std::size_t position;
    const char* at_position;
  } cases[] = {{"Basemaps", 5, "MapName", 4, "UseColorField"},
               {"LinesinkStrings", 16, "PID", 11, "Farfield"},
               {"Model", 48, "AQBase", 34, "CONTOURLevel"},
               {"NoFlowStrings", 8, "PID", 7, "Label"},
               {"Inhomogeneities", 13, "PID", 12, "ChangeA"},
               {"Project", 6, "Description", 4, "ProjectVersion"},
               {"TextLabels", 11, "Text", 10, "LabelType"},
               {"Vertices", 5, "VID", 2, "Seq"},
               {"Wells", 19, "VID", 18, "PathlineColor"},
               {"LSResults", 15, "Label", 12, "Error"},
               {"INResults", 20, "Label", 19, "DeltaPCntr"},
               {"NFResults", 14, "Label", 13, "DeltaFlowNode"},
               {"TPResults", 7, "Label", 6, "Y"},
               {"WLResults", 8, "Label", 7, "Head"},
               {"SavedWindows", 5, "Name", 4, "Y2"},
               {"WHPAs", 20, "Well", 16, "WHPAData"}};
  for (const auto& c : cases) {
    Recordset rows = project.db.OpenRecordset(std::string("select * from ") + c.table);
    EXPECT_EQ(rows.FieldCount(), c.fields) << c.table;
    EXPECT_EQ(rows.FieldName(0), c.first);
    EXPECT_EQ(rows.FieldName(c.position), c.at_position);
    EXPECT_EQ(rows.RecordCount(),
              std::string(c.table) == "Model" || std::string(c.table) == "Project" ? 1 : 0);
  }
}

TEST(Schema, ANewProjectHasItsDefaults) {
  const test::TempDir folder;
  const std::string path = folder / "plan.v2.orm";
  NewDatabaseOptions options;
  options.BasemapMeters = false;
  options.file_title = "plan.v2.orm";
  options.working_directory = "C:\\O'Neill";
  DBNewDatabase(path, options);
  Database db = Database::Open(path);
  Recordset model = db.OpenRecordset("select * from Model");
  EXPECT_FALSE(model.Get<bool>("BasemapMeters"));
  EXPECT_TRUE(model.Get<bool>("ComputeMeters"));
  EXPECT_TRUE(model.Get<bool>("EDITGRIDShow"));
  EXPECT_EQ(model.Get<double>("WINDOWX1"), 100.0);
  EXPECT_EQ(model.Get<double>("WINDOWX2"), -100.0);
  EXPECT_EQ(model.Get<double>("SOLVERX0"), -100.0);
  Recordset project = db.OpenRecordset("select * from Project");
  EXPECT_EQ(project.Get<int>("ProjectVersion"), 208);
  EXPECT_EQ(project.Get<std::string>("ormelbasename"), "plan");
  EXPECT_EQ(project.Get<std::string>("OrmelBasePath"), "C:\\O'Neill");
  EXPECT_EQ(project.Get<std::string>("Description"), "New Ormel Model");
  EXPECT_EQ(project.Get<std::string>("Updated").size(), 19U);
  Recordset barriers = db.OpenRecordset("select * from NoFlowStrings");
  barriers.AddNew();
  EXPECT_EQ(barriers["BottomElevation"].AsDouble(), -9999.0);
  Recordset wells = db.OpenRecordset("select * from Wells");
  wells.AddNew();
  EXPECT_EQ(wells["PathlineColor"].AsLong(), -99);
  wells["VID"] = 1;
  wells["PathlineColor"] = nullptr;
  wells.Update();
  EXPECT_TRUE(wells["PathlineColor"].IsNull());
  Recordset strings = db.OpenRecordset("select * from LinesinkStrings");
  strings.AddNew();
  EXPECT_EQ(strings["ScenResistance"].AsText(), "__NONE__");
  strings["Label"] = "";  // may be blank, but not missing
  strings["Drain"] = nullptr;
  strings.Update();
  EXPECT_FALSE(strings["Drain"].AsBool());
}

TEST(Schema, RulesHoldOnEveryWayOfWriting) {
  ProjectFixture project;
  project.db.Execute("insert into Wells (VID,Label) values (1,'a')");
  project.db.Execute("insert into TestPoints (VID,Label) values (1,'a')");
  const struct {
    const char* sql;
    StoreErrorCode code;
    const char* table;
    const char* field;
  } cases[] = {
      {"insert into Wells (Label) values ('x')", StoreErrorCode::kRequired, "Wells", "VID"},
      {"insert into FluxInspect (PID) values (1)", StoreErrorCode::kRequired, "FluxInspect", "Label"},
      {"insert into Wells (VID) values (1)", StoreErrorCode::kDuplicateKey, "Wells", "VID"},
      {"update TestPoints set Label='123456789012345678901234567890123'", StoreErrorCode::kTooLong,
       "TestPoints", "Label"},
      {"update Wells set Head='abc'", StoreErrorCode::kWrongType, "Wells", "Head"},
      {"update Wells set Head=9e999", StoreErrorCode::kWrongType, "Wells", "Head"},
      {"update Wells set Head=null", StoreErrorCode::kRequired, "Wells", "Head"},
      {"update Wells set NParticles=3000000000", StoreErrorCode::kWrongType, "Wells", "NParticles"},
      {"update Wells set NParticles=1.5", StoreErrorCode::kWrongType, "Wells", "NParticles"},
      {"update Model set SOLVERIterations=40000", StoreErrorCode::kWrongType, "Model", "SOLVERIterations"},
      {"update Model set EDITGRIDSnap=1", StoreErrorCode::kWrongType, "Model", "EDITGRIDSnap"},
      {"update Project set Updated='today'", StoreErrorCode::kWrongType, "Project", "Updated"},
  };
  for (const auto& c : cases) {
    try {
      project.db.Execute(c.sql);
      ADD_FAILURE() << c.sql;
    } catch (const StoreError& error) {
      EXPECT_EQ(error.code(), c.code) << c.sql;
      EXPECT_EQ(error.table(), c.table) << c.sql;
      EXPECT_EQ(error.field(), c.field) << c.sql;
      EXPECT_THAT(error.what(), AllOf(HasSubstr(c.table), HasSubstr(c.field))) << c.sql;
    }
  }
  // Sizes count characters, not bytes.
  std::string label;
  for (int i = 0; i < 32; ++i) label += "\u00fc";
  project.db.Execute("update TestPoints set Label=?", {label});
  EXPECT_EQ(FailureOf([&] { project.db.Execute("update TestPoints set Label=?", {label + "x"}); }),
            StoreErrorCode::kTooLong);
  BulkInsert rows(project.db, "Capzones", {"Label", "PID"});
  EXPECT_EQ(FailureOf([&] { rows.Row(label + "x", 1); }), StoreErrorCode::kTooLong);
  EXPECT_EQ(FailureOf([&] { rows.Row(label, "1x"); }), StoreErrorCode::kWrongType);
  EXPECT_EQ(FailureOf([&] { rows.Row(label); }), StoreErrorCode::kMissingParameter);
  rows.Row(
      "S\xfc"
      "d",
      1);  // a label from an older text file
  EXPECT_EQ(project.db.Scalar("select Label from Capzones").AsText(), "S\u00fcd");
}

TEST(Schema, LabelsMayShareAnX) {
  ProjectFixture project;
  for (int i = 0; i < 2; ++i) project.db.Execute("insert into TextLabels (X,Y) values (1,2)");
  EXPECT_EQ(project.db.RowCount("TextLabels"), 2);
}

TEST(Schema, OtherProgramsFindASoundFile) {
  ProjectFixture project;
  {
    Transaction command(project.db);
    for (const char* name : {"/maps/\u00c4pfel.bbm", "/maps/\u00e1.bbm", "/maps/Zebra.bbm", "/maps/_x.bbm"}) {
      project.db.Execute("insert into MapLabels (MapName) values (?)", {name});
      project.db.Execute(
          "insert into WLResults (VadoxLabel,X,Y,Radius,SpecifiedHead,Discharge,Head) values "
          "('WL_00000" +
          std::to_string(std::string_view(name).size()) + "',0,0,0,0,0,0)");
    }
  }
  project.AddVertices(1000);
  project.db.Close();
  EXPECT_EQ(Tool(project.path, "pragma integrity_check"), "ok\n");
  EXPECT_EQ(
      Tool(project.path, "select \\\"unique\\\" from pragma_index_list('Wells') where name='Wells_VID'"),
      "1\n");
  EXPECT_EQ(Tool(project.path,
                 "select type,\\\"notnull\\\",dflt_value from pragma_table_info('Wells') where name='Label'"),
            "VARCHAR(64)|0|''\n");
  EXPECT_EQ(Tool(project.path, "select count(*),sum(X) from Vertices"), "1000|500500.0\n");
}

TEST(Schema, AFieldThatAnOlderFileLacksIsTold) {
  ProjectFixture project;
  project.db.Execute("alter table LinesinkStrings drop column Farfield");
  EXPECT_FALSE(project.db.HasField("LinesinkStrings", "farfield"));
  Recordset rows = project.db.OpenRecordset("select * from LinesinkStrings");
  EXPECT_FALSE(rows.HasField("Farfield"));
  std::string message;
  EXPECT_EQ(FailureOf([&] { rows["Farfield"].AsBool(); }, &message), StoreErrorCode::kNoSuchField);
  EXPECT_THAT(message, AllOf(HasSubstr("LinesinkStrings"), HasSubstr("Farfield")));
  const schema::Table* table = schema::FindTable("LINESINKSTRINGS");
  ASSERT_NE(table, nullptr);
  project.db.Execute("alter table LinesinkStrings add column " +
                     schema::FieldDeclaration(*table, *schema::FindField(*table, "Farfield")));
  EXPECT_TRUE(project.db.OpenRecordset("select * from LinesinkStrings").HasField("Farfield"));
  EXPECT_EQ(
      FailureOf([&] { project.db.Execute("insert into LinesinkStrings (Label,Farfield) values ('a','b')"); }),
      StoreErrorCode::kWrongType);
}

TEST(Schema, TheDocumentTellsEveryField) {
  const std::string document = test::ReadAll(std::string(ORMEL_SOURCE_DIR) + "/docs/formats.md");
  for (const schema::Table& table : schema::Tables()) {
    std::string line;
    for (const schema::Field& field : table.fields) {
      line += (line.empty() ? "" : ", ") + std::string(field.name) + " " + schema::TypeName(field);
      if (field.automatic) line += " automatic";
      if (field.has_default)
        line += "=" + (field.default_value.empty() ? "\"\"" : std::string(field.default_value));
      if (!field.required) line += "?";
    }
    EXPECT_THAT(document, HasSubstr("| `" + std::string(table.name) + "` | " + line + " |"));
  }
}

TEST(Schema, NothingHalfMadeIsLeft) {
  const test::TempDir folder;
  const std::string path = folder / "new.orm";
  test::WriteAll(path, "mine");
  EXPECT_EQ(FailureOf([&] { DBNewDatabase(path, {}); }), StoreErrorCode::kFileExists);
  EXPECT_EQ(test::ReadAll(path), "mine");
  NewDatabaseOptions bad;
  bad.description = std::string(300, 'x');
  std::string message;
  EXPECT_EQ(FailureOf([&] { DBNewDatabase(folder / "other.orm", bad); }, &message), StoreErrorCode::kTooLong);
  EXPECT_THAT(message, HasSubstr("Description"));
  EXPECT_EQ(FailureOf([&] { DBNewDatabase(folder / "none/x.orm", {}); }, &message), StoreErrorCode::kBadPath);
  EXPECT_THAT(message, HasSubstr("none/x.orm\""));  // the name asked for, not the one it is made under
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

}  // namespace
}  // namespace ormel

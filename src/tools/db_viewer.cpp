#include "tools/db_viewer.h"

#include <array>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/status.h"
#include "core/table.h"
#include "core/table_file.h"
#include "core/user_interface.h"
#include "model/validity.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr const char* kTitle = "Ormel Database Viewer";
/// More rows than anybody looks at; a query that joins without a condition must not fill the memory.
constexpr std::size_t kMostRows = 1'000'000;

constexpr std::array kControls{
    ControlSpec{.name = "TABLES", .kind = ControlKind::kCombo, .caption = "Base &Tables"},
    ControlSpec{.name = "grid", .kind = ControlKind::kTable, .caption = "Table"},
    ControlSpec{.name = "OPTIONS", .kind = ControlKind::kCheck, .caption = "&Allow Modifications"},
    ControlSpec{.name = "SQL", .kind = ControlKind::kButton, .caption = "S&QL..."},
    kCopyButton,
    kExportButton,
    ControlSpec{.name = "HELP_CMDS", .kind = ControlKind::kButton, .caption = "&Help"},
    ControlSpec{
        .name = "EXIT", .kind = ControlKind::kButton, .caption = "E&xit", .role = ButtonRole::kReject}};

constexpr std::array kBaseTables{"Basemaps",   "LinesinkStrings", "Model",   "NoFlowStrings",
                                 "Particles",  "Polygons",        "Project", "TestPoints",
                                 "TextLabels", "Vertices",        "Wells",   "Inhomogeneities"};

}  // namespace

DBViewer::DBViewer(Ormel& ormel) : Form(ormel) {
  InitControls();
  ControlState& tables = Mutable("TABLES");
  tables.items.assign(kBaseTables.begin(), kBaseTables.end());
  tables.selected = {0};
  ShowBaseTable(kBaseTables.front());
}

std::span<const ControlSpec> DBViewer::Controls() const {
  return kControls;
}

void DBViewer::Fill(const std::string& sql, const std::string& caption, bool with_numbers) {
  RowReader rows(ormel().db(), sql);
  const int first = with_numbers ? 1 : 0;
  std::vector<TableColumn> columns;
  std::vector<std::int64_t> numbers;
  for (int i = first; i < rows.ColumnCount(); ++i)
    columns.push_back({.name = rows.ColumnName(i), .caption = rows.ColumnName(i)});
  auto table = std::make_shared<Table>(columns);
  std::vector<bool> texts(columns.size(), false);
  bool more = false;
  while (rows.Next()) {
    if (table->Rows() == kMostRows) {
      more = true;
      break;
    }
    std::vector<Value> values;
    values.reserve(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      values.push_back(rows.Get(static_cast<int>(i) + first));
      texts[i] = texts[i] || !(values.back().IsNull() || values.back().IsNumber());
    }
    if (with_numbers) numbers.push_back(rows.Long(0));
    table->AddRow(std::move(values));
  }
  for (std::size_t i = 0; i < columns.size(); ++i) table->AlignLeft(i, texts[i]);
  row_numbers_ = std::move(numbers);
  ControlState& grid = Mutable("grid");
  grid.table = std::move(table);
  grid.selected.clear();
  grid.caption = caption + (more ? "  (only the first 1,000,000 rows)" : "");
  OfferEdits();
}

void DBViewer::ShowBaseTable(const std::string& name) {
  Fill("select rowid,* from [" + name + "] order by rowid", "Table: " + name, true);
  base_table_ = name;
  OfferEdits();
}

void DBViewer::OfferEdits() {
  Mutable("grid").editable = Checked("OPTIONS") && !base_table_.empty();
}

void DBViewer::AskSql() {
  const auto sql = ormel().ui().Ask(InputBox{"SQL Query", "Enter the SQL query for data retrieval:", ""});
  if (!sql || Trim(*sql).empty()) return;
  if (!StartsWithNoCase(Trim(*sql), "select")) {
    Inform(ormel(), "SQL Query",
           Lines({"Only queries that begin with \"select\" can be shown here.", "Nothing was run."}),
           Icon::kWarning);
    return;
  }
  try {
    Fill(*sql, "SQL: " + *sql, false);
    base_table_.clear();
    OfferEdits();
    Mutable("TABLES").selected.clear();
  } catch (...) {
    ShowFailure(ormel(), "DBViewDatabase");
  }
}

void DBViewer::Changed(std::string_view name) {
  if (name == "OPTIONS") OfferEdits();
  if (name == "TABLES" && !State(name).selected.empty())
    ShowBaseTable(kBaseTables[static_cast<std::size_t>(State(name).selected.front())]);
}

void DBViewer::CellEdited(std::string_view name, std::size_t row, std::size_t column, std::string_view text) {
  if (base_table_.empty()) return;
  Table& table = *State(name).table;
  try {
    Recordset rows = ormel().db().OpenRecordset("select * from [" + base_table_ + "]");
    rows.SetBookmark({row_numbers_.at(table.Source(row))});
    rows.Edit();
    rows.Set(table.columns()[column].name, text.empty() ? Value() : Value(text));
    rows.Update();
    modified_ = true;
    row_numbers_[table.Source(row)] = rows.GetBookmark().row;
    table.Change(row, column, rows.Get(table.columns()[column].name));
  } catch (...) {
    ShowFailure(ormel(), "DBViewDatabase");
  }
}

void DBViewer::Pressed(std::string_view name) {
  if (name == "SQL") return AskSql();
  if (name == "Copy") return CopyTable("grid");
  if (name == "Export")
    return SaveTable(ormel(), *State("grid").table, base_table_.empty() ? "query" : base_table_);
  if (name == "HELP_CMDS") return ormel().ui().ShowHelp(Name());
  if (name == "EXIT") Hide();
}

void DBViewDatabase(Ormel& ormel) {
  RunCommand(ormel, "DBViewDatabase", [&] {
    const bool go_on =
        AskYesNo(ormel, kTitle,
                 Lines({"The database viewer is intended for advanced users only.  Its intended",
                        "use is as an inspection tool for debugging purposes.  You cannot modify",
                        "Ormel's underlying tables with this tool. Some of the structure of the",
                        "database may not be intuitive to you; a detailed description of the ",
                        "database structure may be included in the future.", "",
                        "To view the results of a solution, use the results viewer under the 'Model' menu.",
                        "", "Do you wish to start the database viewer?"}),
                 Icon::kQuestion);
    if (!go_on) return;
    DBViewer form(ormel);
    ormel.ui().ShowForm(form);
    if (!form.modified()) return;
    ReadProjectState(ormel);
    InvalidateSolution(ormel, true, false);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

}  // namespace ormel

// list, delete, and set of elements: found by label or by a field, changed and deleted by the procedures of
// the window
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <optional>

#include "document/kinds.h"
#include "model/delete.h"
#include "model/dialog.h"
#include "model/edit.h"
#include "model/element_properties.h"
#include "model/model_values.h"
#include "model/observation_forms.h"
#include "model/vertices.h"
#include "ormelcmd/options.h"
#include "ormelcmd/table.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct ElementOptions {
  std::string path;
  std::vector<std::string> labels, where, assignments;
  std::optional<std::int64_t> id;
  bool all = false, csv = false, json = false;
};

/// The column that tells one row from all others.
std::string IdOf(const ElementKind& kind) {
  return kind.key.empty() ? "rowid" : std::string(kind.key);
}

std::string Quoted(const std::string& text) {
  return "'" + SQLSafe(text) + "'";
}

/// "Head=5" of the kind's table.
std::string WhereOf(const ElementKind& kind, const std::string& text) {
  const std::size_t equals = text.find('=');
  const schema::Table* table = schema::FindTable(kind.table);
  const std::string name = text.substr(0, equals);
  const schema::Field* field = table == nullptr ? nullptr : schema::FindField(*table, name);
  if (equals == std::string::npos || field == nullptr)
    throw UserError("--where takes Field=value with a field of " + std::string(kind.table) + ", not \"" +
                    text + "\"");
  const std::string value = text.substr(equals + 1);
  const bool is_text = field->type == schema::FieldType::kText;
  if (!is_text && !IsNumeric(value))
    throw UserError("--where " + text + ": \"" + value + "\" is not a number");
  return "[" + std::string(field->name) + "]=" + (is_text ? Quoted(value) : NumberText(Val(value)));
}

std::string ConditionOf(const KindRow& row, const ElementOptions& given) {
  const ElementKind& kind = *FindKind(row.element);
  std::string condition = "1=1";
  if (given.id) condition += " and " + IdOf(kind) + "=" + std::to_string(*given.id);
  if (!given.labels.empty()) {
    if (row.label.empty())
      throw UserError("a " + std::string(row.name) + " has no label; use --id or --where");
    std::string list;
    for (const std::string& label : given.labels) list += (list.empty() ? "" : ",") + Quoted(label);
    condition += " and " + std::string(row.label) + " in (" + list + ")";
  }
  for (const std::string& text : given.where) condition += " and " + WhereOf(kind, text);
  return condition;
}

std::vector<std::int64_t> Matching(Ormel& ormel, const KindRow& row, const ElementOptions& given) {
  const ElementKind& kind = *FindKind(row.element);
  std::vector<std::int64_t> ids;
  RowReader rows(ormel.db(), "select " + IdOf(kind) + " from " + std::string(kind.table) + " where " +
                                 ConditionOf(row, given) + " order by " + IdOf(kind));
  while (rows.Next()) ids.push_back(rows.Long(0));
  return ids;
}

/// Those that a change or a deletion is meant for.
std::vector<std::int64_t> Chosen(Ormel& ormel, const KindRow& row, const ElementOptions& given) {
  if (given.labels.empty() && given.where.empty() && !given.id && !given.all)
    throw UserError("say which " + std::string(row.name) +
                    " by --label, --id or --where, or all of them by --all");
  std::vector<std::int64_t> ids = Matching(ormel, row, given);
  if (ids.empty()) throw UserError("there is no such " + std::string(row.name) + "; nothing was changed");
  if (ids.size() > std::max<std::size_t>(1, given.labels.size()) && !given.all)
    throw UserError(std::to_string(ids.size()) + " elements fit; --all means all of them, --id one");
  return ids;
}

/// As a click on the map selects it.
void Choose(Ormel& ormel, const KindRow& row, std::int64_t id) {
  const ElementKind& kind = *FindKind(row.element);
  Selection& selection = ormel.selection;
  selection.SelectedType = row.element;
  selection.vid = id;
  selection.pid = kSinglePoint;
  if (!kind.Polygon()) return;
  const std::vector<VertexRow> vertices = VerticesOf(ormel, id);
  selection.pid = id;
  selection.vid = vertices.empty() ? -1 : vertices.front().vid;
}

// list ------------------------------------------------------------------------------------------------------

TextTable ReadElements(Ormel& ormel, const KindRow& row, const ElementOptions& given) {
  const ElementKind& kind = *FindKind(row.element);
  const bool points = kind.shape == Shape::kPoint;
  const std::string table(kind.table), id = IdOf(kind);
  const std::string places =
      points ? ",(select X from Vertices where Vertices.VID=" + table +
                   ".VID) as X,(select Y from Vertices where "
                   "Vertices.VID=" +
                   table + ".VID) as Y"
      : kind.Polygon() ? ",(select group_concat(X || ',' || Y,' ') from (select X,Y from Vertices where "
                         "Vertices.PID=" +
                             table + ".PID order by Seq)) as Points"
                       : ",rowid as ID";
  RowReader rows(ormel.db(), "select *" + places + " from " + table + " where " + ConditionOf(row, given) +
                                 " order by " + id);
  TextTable text;
  for (int i = 0; i < rows.ColumnCount(); ++i) text.columns.push_back({rows.ColumnName(i)});
  while (rows.Next()) {
    std::vector<std::string>& cells = text.rows.emplace_back();
    for (int i = 0; i < rows.ColumnCount(); ++i) {
      const Value value = rows.Get(i);
      if (!value.IsNull() && !value.IsNumber()) text.columns[static_cast<std::size_t>(i)].number = false;
      cells.push_back(value.AsText());
    }
  }
  return text;
}

int List(const CommonOptions& common, const KindRow& row, const ElementOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenForReading(given.path);
  const TextTable table = ReadElements(session.ormel(), row, given);
  if (given.json)
    PrintJson(std::cout, table);
  else if (given.csv)
    PrintCsv(std::cout, table);
  else
    PrintAligned(std::cout, table);
  if (!std::cout.flush()) throw UserError("standard output took no more text");
  return session.Finish();
}

// delete ----------------------------------------------------------------------------------------------------

int Delete(const CommonOptions& common, const KindRow& row, const ElementOptions& given) {
  BatchOptions options = MakeBatchOptions(common);
  // Who names an element on the command line has decided; what would go with it is still asked.
  const ElementKind& kind = *FindKind(row.element);
  for (const char* question :
       {"Delete this particle?", "Delete this test point?", "Delete this label?", "Delete this element?"})
    options.answers.push_back({question, "OK", true});
  options.settings.push_back({"LSConfirm", "cmdWhole", "yes", true});
  Session session(options);
  session.OpenForEdit(given.path);
  Ormel& ormel = session.ormel();
  std::size_t deleted = 0;
  session.Edit([&] {
    for (const std::int64_t id : Chosen(ormel, row, given)) {
      Choose(ormel, row, id);
      ElemDeleteElements(ormel);
      const bool stands =
          ormel.db()
              .Scalar("select count(*) from " + std::string(kind.table) + " where " + IdOf(kind) + "=?", {id})
              .AsLong() > 0;
      if (stands || session.ui().failed()) throw UserError("nothing was deleted");
      ++deleted;
    }
  });
  if (!common.quiet) session.ui().Say(std::to_string(deleted) + " deleted");
  return session.Finish();
}

// set -------------------------------------------------------------------------------------------------------

/// Field and value for the controls of the dialog; names that no dialog has are refused.
void Use(BatchInterface& ui, const KindRow& row, const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) throw UserError("\"" + text + "\" is not of the form Field=value");
  const std::string name = text.substr(0, equals), value = text.substr(equals + 1);
  const auto property = std::find_if(row.properties.begin(), row.properties.end(),
                                     [&](const Property& p) { return EqualNoCase(p.name, name); });
  if (property == row.properties.end()) {
    const schema::Table* table = schema::FindTable(FindKind(row.element)->table);
    const bool kept = table != nullptr && schema::FindField(*table, name) != nullptr;
    std::string known;
    for (const Property& p : row.properties) known += (known.empty() ? "" : ", ") + std::string(p.name);
    throw UserError(kept ? name + " of a " + std::string(row.name) + " is kept by the program"
                         : "a " + std::string(row.name) + " has no field \"" + name + "\"; it has " + known);
  }
  const std::vector<ControlSetting> settings = SettingsOf(*property, value);
  if (settings.empty()) throw UserError(std::string(property->name) + ": \"" + value + "\" is not a number");
  for (const ControlSetting& setting : settings)
    ui.Use({std::string(row.form), setting.control, setting.value});
}

void EditFluxLine(Ormel& ormel, BatchInterface& ui, Pid pid) {
  const auto edit = EditOf(ormel, {Element::kFluxLine, pid});
  if (edit == nullptr) return;
  ui.ShowForm(edit->form());
  if (edit->form().Result == OkCancelForm::kOk) edit->Store();
}

int SetElement(const CommonOptions& common, const KindRow& row, const ElementOptions& given) {
  if (given.assignments.empty()) throw UserError("nothing to set: Field=value ...");
  Session session(MakeBatchOptions(common));
  for (const std::string& text : given.assignments) Use(session.ui(), row, text);
  session.OpenForEdit(given.path);
  Ormel& ormel = session.ormel();
  session.Edit([&] {
    std::vector<std::int64_t> ids{-1};
    if (row.element == Element::kUniformFlow) {
      if (ReadModel(ormel).UNIFLOWCompute == 0) throw UserError("the model has no uniform flow");
    } else {
      ids = Chosen(ormel, row, given);
    }
    for (const std::int64_t id : ids) {
      Choose(ormel, row, id);
      if (row.element == Element::kFluxLine)
        EditFluxLine(ormel, session.ui(), id);
      else
        ElemSetProperties(ormel);
      if (session.ui().unanswered() || session.ui().failed()) throw UserError("nothing was changed");
    }
  });
  return session.Finish();
}

// ------------------------------------------------------------------------------------------------------------

using Run = int (*)(const CommonOptions&, const KindRow&, const ElementOptions&);

CLI::App* DefineKind(CLI::App& parent, Program& program, const KindRow& row, Run run,
                     const std::shared_ptr<ElementOptions>& given) {
  CLI::App* command = parent.add_subcommand(std::string(row.name), std::string(row.text));
  command->add_option("project", given->path, "The project")->required();
  if (row.element != Element::kUniformFlow) {
    command->add_option("--label", given->labels, "Its label; may be given several times")
        ->allow_extra_args(false);
    command->add_option("--id", given->id, "Its identity, as list shows it (VID, PID or ID)");
    command->add_option("--where", given->where, "Field=value; may be given several times")
        ->allow_extra_args(false);
  }
  command->callback([&program, &row, given, run] {
    program.run = [&program, &row, given, run] { return run(program.common, row, *given); };
  });
  return command;
}

}  // namespace

void AddSetKinds(CLI::App& set, Program& program) {
  for (const KindRow& row : KindRows()) {
    const auto given = std::make_shared<ElementOptions>();
    CLI::App* command = DefineKind(set, program, row, SetElement, given);
    command->add_option("assignments", given->assignments, "Field=value ...")->required();
    command->add_flag("--all", given->all, "All that fit");
    std::string known;
    for (const Property& property : row.properties)
      known += (known.empty() ? "Fields: " : ", ") + std::string(property.name);
    command->footer(known);
  }
}

void AddListCommands(CLI::App& app, Program& program) {
  CLI::App* list = app.add_subcommand("list", "List elements with their properties and places");
  list->require_subcommand(1);
  list->fallthrough();
  CLI::App* remove = app.add_subcommand("delete", "Delete elements, as the window does");
  remove->require_subcommand(1);
  remove->fallthrough();
  for (const KindRow& row : KindRows()) {
    if (row.element == Element::kUniformFlow) continue;
    const auto listed = std::make_shared<ElementOptions>();
    CLI::App* command = DefineKind(*list, program, row, List, listed);
    CLI::Option* csv = command->add_flag("--csv", listed->csv, "Comma-separated values");
    command->add_flag("--json", listed->json, "A JSON array of objects")->excludes(csv);
    const auto deleted = std::make_shared<ElementOptions>();
    DefineKind(*remove, program, row, Delete, deleted)->add_flag("--all", deleted->all, "All that fit");
  }
}

}  // namespace ormel

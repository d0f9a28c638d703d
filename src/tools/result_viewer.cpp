#include "tools/result_viewer.h"

#include <array>

#include "core/ormel.h"
#include "core/status.h"
#include "core/table.h"
#include "core/table_file.h"
#include "core/user_interface.h"
#include "store/database.h"
#include "text/masks.h"
#include "tools/results_tables.h"

namespace ormel {
namespace {

constexpr std::array kControls{
    ControlSpec{.name = "cboTable", .kind = ControlKind::kCombo, .caption = "&Results of"},
    ControlSpec{.name = "grid", .kind = ControlKind::kTable}, kCopyButton, kExportButton,
    ControlSpec{
        .name = "Close", .kind = ControlKind::kButton, .caption = "Close", .role = ButtonRole::kReject}};

}  // namespace

ResultViewer::ResultViewer(Ormel& ormel) : Form(ormel) {
  InitControls();
  static const NumberMask count("#,###,##0");
  ControlState& choice = Mutable("cboTable");
  std::size_t first = ResultsTables().size();
  for (const ResultsTable& results : ResultsTables()) {
    const std::int64_t rows = ormel.db().RowCount(results.name);
    const std::size_t index = choice.items.size();
    choice.items.push_back(std::string(results.caption) + " (" + count.Format(static_cast<double>(rows)) +
                           ")");
    if (rows > 0 && first > index) first = index;
  }
  tables_.resize(ResultsTables().size());
  Show(first < tables_.size() ? first : 0);
}

std::string ResultViewer::Title() const {
  const std::string notice = OlderModelNotice(ormel());
  return notice.empty() ? "Results Table" : "Results Table - " + notice;
}

std::span<const ControlSpec> ResultViewer::Controls() const {
  return kControls;
}

void ResultViewer::Show(std::size_t index) {
  shown_ = index;
  if (!tables_[index]) tables_[index] = ReadResults(ormel(), ResultsTables()[index]);
  ControlState& choice = Mutable("cboTable");
  choice.selected = {static_cast<int>(index)};
  choice.text = choice.items[index];
  ControlState& grid = Mutable("grid");
  grid.table = tables_[index];
  grid.selected.clear();
  const bool any = tables_[index]->Rows() > 0;
  Offer("Copy", any);
  Offer("Export", any);
}

void ResultViewer::Changed(std::string_view name) {
  if (name == "cboTable" && !State(name).selected.empty())
    Show(static_cast<std::size_t>(State(name).selected.front()));
}

void ResultViewer::Pressed(std::string_view name) {
  if (name == "Copy") return CopyTable("grid");
  if (name == "Export") return SaveTable(ormel(), *tables_[shown_], ResultsTables()[shown_].name);
  if (name == "Close") Hide();
}

void ViewResultsTable(Ormel& ormel) {
  ResultViewer form(ormel);
  ormel.ui().ShowForm(form);
}

}  // namespace ormel

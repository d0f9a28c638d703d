// The database viewer: the raw tables of the project, for those who know them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/form.h"

namespace ormel {

class DBViewer final : public Form {
 public:
  explicit DBViewer(Ormel& ormel);
  std::string Title() const override { return "Ormel Database Viewer "; }
  std::string_view Name() const override { return "DBViewer"; }
  std::span<const ControlSpec> Controls() const override;

  /// A row of the project was changed.
  bool modified() const { return modified_; }

 protected:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;
  void CellEdited(std::string_view name, std::size_t row, std::size_t column, std::string_view text) override;

 private:
  void ShowBaseTable(const std::string& name);
  void AskSql();
  void Fill(const std::string& sql, const std::string& caption, bool with_numbers);
  void OfferEdits();

  std::string base_table_;                 ///< empty while the grid shows a query
  std::vector<std::int64_t> row_numbers_;  ///< of the base table's rows in the store
  bool modified_ = false;
};

/// Asks first: the viewer is for advanced users.  After a modification the solution is no longer that of the
/// model, and the map is drawn anew.
void DBViewDatabase(Ormel& ormel);

}  // namespace ormel

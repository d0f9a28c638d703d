// The information panels of line-sink strings and inhomogeneities: what was entered, and what the solution
// says about it.
#pragma once

#include "core/form.h"

namespace ormel {

/// What the two panels have in common.
class InfoPanel : public Form {
 public:
  using Form::Form;
  /// The element could not be read; the panel is not to be shown.
  bool Crash = false;

 protected:
  void Pressed(std::string_view name) override;
  /// "12.5 m/day"
  void PutValue(std::string_view name, const std::string& text, const std::string& unit = {});
  /// All controls of the page of results.
  void ShowResults(bool on);
};

/// Discharges are positive when water leaves the aquifer.
class LSInfo final : public InfoPanel {
 public:
  explicit LSInfo(Ormel& ormel);
  /// The name, and while the results are those of an older model that they are.
  std::string Title() const override;
  std::string_view Name() const override { return "LSInfo"; }
  std::span<const ControlSpec> Controls() const override;

  /// Fills the panel with the string and its results.
  void init(Pid pid);
  /// The same without results: there is no valid solution.
  void NoSolutionInit(Pid pid);

 private:
  struct Data;
  bool Read(Pid pid, Data& data);
  void PutProperties(const Data& data);
  void PutResults(const Data& data);
};

class INInfo final : public InfoPanel {
 public:
  explicit INInfo(Ormel& ormel);
  std::string Title() const override;
  std::string_view Name() const override { return "INInfo"; }
  std::span<const ControlSpec> Controls() const override;

  void init(Pid pid);
  void NoSolutionInit(Pid pid);

 private:
  bool PutProperties(Pid pid);
  void PutResults(Pid pid);
};

/// Opens the panel of a string or domain, with its results if the solution is valid.
void ShowInfoPanel(Ormel& ormel, Element element, Pid pid);

}  // namespace ormel

// The dialog of the aquifer, contour, tracing and iteration values, and the question before a new solve.
#pragma once

#include <span>
#include <string>

#include "model/dialog.h"
#include "model/model_values.h"

namespace ormel {

class ModelSettings final : public OkCancelForm {
 public:
  explicit ModelSettings(Ormel& ormel);

  std::string Title() const override { return "Model Settings"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "ModelSettings"; }

  /// Reads `Model` into the fields and clears the change flags.
  void Load();

  /// Shown beside `chkDefaultStep`; copied to the step while that is on.
  void SetDefaultStepSize(double step);
  /// Below 1 counts as 1.
  void SetIterations(int iterations);
  /// The number of grid lines in `tbContourLevel`.
  int DetailedContours() const;

  bool solution_changed() const { return solution_changed_; }
  bool contours_changed() const { return contours_changed_; }
  bool paths_changed() const { return paths_changed_; }
  /// The aquifer's values have been changed behind the dialog.
  void MarkSolutionChanged() { solution_changed_ = true; }
  bool contours_switched_on() const { return contours_switched_on_; }

  /// What follows an OK, once the dialog is gone: the solution is made invalid, or grid and paths are made
  /// anew if the user wants, or the map is redrawn.
  void FollowUp();

 protected:
  bool Ok() override;
  void Cancelled() override;
  void Changed(std::string_view name) override;

 private:
  bool Check();
  bool CheckContours();
  void WithdrawOutdatedResults();
  ModelValues Values() const;
  void OfferContourFields();
  void ClearFlags();

  ModelValues stored_;
  bool solution_changed_ = false, contours_changed_ = false, paths_changed_ = false;
  bool contours_switched_on_ = false;
};

/// The command: shows the dialog, stores and follows up.
void ModelEditSettings(Ormel& ormel);

enum class SolveChoice : int { kNew = 0, kReload = 1, kCancel = 2 };

/// "Valid Solution Present... Resolve?"; `Result` is the index of the button, 2 until one is pressed.
class SolvePrompt final : public Form {
 public:
  explicit SolvePrompt(Ormel& ormel);
  std::string Title() const override { return "Valid Solution Present... Resolve?"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "SolvePrompt"; }
  SolveChoice Choice() const { return static_cast<SolveChoice>(Result); }

 protected:
  void Pressed(std::string_view name) override;
};

}  // namespace ormel

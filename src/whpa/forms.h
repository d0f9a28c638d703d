// The dialogs that begin a protection area: arbitrary radius, calculated, multiple wells.
#pragma once

#include <string>
#include <vector>

#include "core/form.h"
#include "whpa/delineation.h"
#include "whpa/rows.h"

namespace ormel {

/// What the dialogs behind the first one were left with.
struct WhpaAnswers {
  bool draw_centric = false;
  bool draw_eccentric = false;
  bool draw_stream = false;  ///< the stream dialog ended in Draw: pathlines are wanted
  bool stream_boundary = false;
  double direction = 0.0;     ///< of the ambient flow [degrees]
  double first_head = 0.0;    ///< at the first boundary point
  double conductivity = 0.0;  ///< of the stream boundary case
  bool Any() const { return draw_centric || draw_eccentric || draw_stream; }
};

/// A dialog with a list of wells and numbers.
class WhpaForm : public Form {
 public:
  WhpaForm(Ormel& ormel, std::vector<WhpaWell> wells) : Form(ormel), wells_(std::move(wells)) {}
  const std::vector<WhpaWell>& wells() const { return wells_; }

 protected:
  void FillWells(std::string_view list);
  void SelectWells(std::string_view list, const std::vector<WhpaRow>& rows);
  std::vector<WhpaWell> SelectedWells(std::string_view list) const;
  /// A box; the dialog stays.
  void Stay(std::string_view name, std::string_view title, std::string_view text) {
    Refuse(name, title, text);
  }

 private:
  std::vector<WhpaWell> wells_;
};

/// "Arbitrary Radius WHPA".  Two boxes show one radius in metres and feet.
class WHPAArbitrary : public WhpaForm {
 public:
  WHPAArbitrary(Ormel& ormel, std::vector<WhpaWell> wells);
  std::string Title() const override { return "Arbitrary Radius WHPA"; }
  std::string_view Name() const override { return "WHPAArbitrary"; }
  std::span<const ControlSpec> Controls() const override;
  std::vector<WhpaWell> Selected() const { return SelectedWells("listWell"); }
  double Radius() const;  ///< [map units]
  bool DrawOrCancel = false;

 protected:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;
};

/// "Calculated WHPA": the four steps of reasoning.
class WHPACalculated : public WhpaForm {
 public:
  WHPACalculated(Ormel& ormel, std::vector<WhpaWell> wells);
  std::string Title() const override { return "Calculated WHPA"; }
  std::string_view Name() const override { return "WHPACalculated"; }
  std::span<const ControlSpec> Controls() const override;
  WhpaInput Input() const;
  const WhpaWell* Selected() const;
  double TWavey = 0.0;  ///< the dimensionless travel time of the last Continue
  WhpaAnswers answers;

 protected:
  void Pressed(std::string_view name) override;

 private:
  bool Check();
  void Continue();
  void AskCircle(WhpaShape shape);
  void AskPathlines();
};

/// "Multiple Wells WHPA".
class WHPAMultiple : public WhpaForm {
 public:
  WHPAMultiple(Ormel& ormel, std::vector<WhpaWell> wells);
  std::string Title() const override { return "Multiple Wells WHPA"; }
  std::string_view Name() const override { return "WHPAMultiple"; }
  std::span<const ControlSpec> Controls() const override;
  std::vector<WhpaWell> Selected() const { return SelectedWells("listWell"); }
  WhpaAnswers answers;

 protected:
  void Pressed(std::string_view name) override;
};

/// Asks whether pathline areas of the other kind may go: a calculated one with T > 1 and multiple ones
/// exclude one another.  False when the user keeps them.
bool MayReplaceMultiple(Ormel& ormel);
bool MayReplaceCalculated(Ormel& ormel);

}  // namespace ormel

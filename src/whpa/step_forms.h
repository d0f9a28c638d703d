// The dialogs behind the calculated and the multiple-well dialog: what came out, and what is still asked.
#pragma once

#include <string>

#include "core/form.h"

namespace ormel {

/// "Centric Circle" (T < 0.1): shows radius and T.
class WHPACentric : public Form {
 public:
  /// `radius` in map units.
  WHPACentric(Ormel& ormel, double radius, double T);
  std::string Title() const override { return "Centric Circle"; }
  std::string_view Name() const override { return "WHPACentric"; }
  std::span<const ControlSpec> Controls() const override;
  bool DrawOrCancel = false;

 protected:
  void Pressed(std::string_view name) override;
};

/// "Eccentric Circle" (0.1 < T < 1): shows radius, shift and T, asks for the direction of flow.
class WHPAEccentric : public Form {
 public:
  /// `radius` and `shift` in map units.
  WHPAEccentric(Ormel& ormel, double radius, double shift, double T, double direction);
  std::string Title() const override { return "Eccentric Circle"; }
  std::string_view Name() const override { return "WHPAEccentric"; }
  std::span<const ControlSpec> Controls() const override;
  double Direction() const { return Number("DataDirectionFlow"); }
  bool DrawOrCancel = false;

 protected:
  void Pressed(std::string_view name) override;
};

/// "Stream Boundary": whether there is one, its head and conductivity.
class WHPAStream : public Form {
 public:
  explicit WHPAStream(Ormel& ormel);
  std::string Title() const override { return "Stream Boundary"; }
  std::string_view Name() const override { return "WHPAStream"; }
  std::span<const ControlSpec> Controls() const override;
  double Head() const { return Number("DataHead"); }
  double Conductivity() const { return Number("DataConductivity"); }
  bool StreamBoundary() const { return Draw && DrawOrCancel; }
  bool DrawOrCancel = false;
  bool Draw = false;  ///< the option "Yes" was on

 protected:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;

 private:
  void ShowBoundaryControls(bool on);
};

/// "Well in Uniform Flow" (T > 1): asks for the direction; its Continue opens the stream boundary dialog.
class WHPAUniform : public Form {
 public:
  WHPAUniform(Ormel& ormel, double T, double direction);
  std::string Title() const override { return "Well in Uniform Flow"; }
  std::string_view Name() const override { return "WHPAUniform"; }
  std::span<const ControlSpec> Controls() const override;
  double Direction() const { return Number("DataDirectionFlow"); }
  bool GoBack = false;
  WHPAStream stream;

 protected:
  void Pressed(std::string_view name) override;
};

}  // namespace ormel

// The dialogs of the observation objects.
#pragma once

#include <span>
#include <string>

#include "model/dialog.h"
#include "model/observations.h"

namespace ormel {

class TestPointProperties final : public OkCancelForm {
 public:
  explicit TestPointProperties(Ormel& ormel);
  std::string Title() const override { return "Test Point Properties        (F1 for Help)"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "TestPointProperties"; }
  void Fill(const TestPointRow& row, MapPoint at);
  TestPointRow Row() const { return {Text("tbLabel"), Number("tbObsHead")}; }
  MapPoint At() const { return {Number("tbX"), Number("tbY")}; }

 protected:
  bool Ok() override;
};

class ParticleProperties final : public OkCancelForm {
 public:
  explicit ParticleProperties(Ormel& ormel);
  std::string Title() const override { return "Particle Properties                     (F1 for Help)"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "ParticleProperties"; }
  void Fill(const ParticleRow& row);
  ParticleRow Row() const;

 protected:
  bool Ok() override;
  void Changed(std::string_view name) override;
};

class TextLabelDialog final : public OkCancelForm {
 public:
  explicit TextLabelDialog(Ormel& ormel);
  std::string Title() const override { return "Text Label Properties"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "TextLabelDialog"; }
  void Fill(const TextLabelRow& row);
  /// Without `ScalerX`.
  TextLabelRow Row() const;

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;

 private:
  void ShowFont();
  FontChoice font_;
};

class FluxInspectDialog final : public OkCancelForm {
 public:
  /// `prompt` is the caption: "Flux Inspection Line Properties" or "Capzone Properties".
  FluxInspectDialog(Ormel& ormel, std::string prompt, const std::string& label);
  std::string Title() const override { return prompt_; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "FluxInspectDialog"; }
  const std::string& Label() const { return Text("tbLabel"); }

 protected:
  bool Ok() override;

 private:
  std::string prompt_;
};

}  // namespace ormel

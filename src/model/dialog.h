// What the dialogs of the elements have in common: an OK button that runs checks, and a Cancel button.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "core/form.h"

namespace ormel {

inline constexpr ControlSpec kOkButton{
    .name = "OK", .kind = ControlKind::kButton, .caption = "OK", .role = ButtonRole::kAccept};
inline constexpr ControlSpec kCancelButton{
    .name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject};

class OkCancelForm : public Form {
 public:
  using Form::Form;

  static constexpr int kOk = 1, kCancel = 2;

 protected:
  /// The checks in their order; true accepts.  A failure inside shows its own box and leaves the form open.
  virtual bool Ok() = 0;
  virtual void Cancelled() {}
  /// A button other than OK and Cancel.
  virtual void OtherPressed(std::string_view /*name*/) {}
  /// Second line of the failure box of this form.
  virtual std::string_view Advice() const { return "Please restart Ormel"; }

  void Pressed(std::string_view name) final;

  /// A box of title "Bad Entry" with two lines.
  bool BadEntry(std::string_view name, std::string_view first, std::string_view second);
  void EmptyToZero(std::initializer_list<std::string_view> names);
  void OfferAll(std::initializer_list<std::string_view> names, bool on);
};

/// "Unhandled error in `procedure`", `advice` and the words of the exception in flight.
void ShowDialogFailure(Ormel& ormel, std::string_view procedure, std::string_view advice);

/// Refusal of a label that another row of `table` carries: true when a row has `label` and `label` is not the
/// one that the dialog opened with.  Labels compare without regard to case in the store.
bool IsDuplicateLabel(Ormel& ormel, std::string_view table, const std::string& label,
                      const std::string& opened_with);
/// `label`, or with a number behind it where a row of the table has it: "Town (2)", cut to what the field
/// takes.
std::string FreeLabel(Ormel& ormel, std::string_view table, const std::string& label);
/// "<noun> Label ('<label>') already exists!" and "Please enter a new label."
std::string DuplicateLabelText(std::string_view noun, std::string_view label);

/// A number for a 16- or 32-bit field: rounded half to even and kept within the field.
int ToLong(double value);

}  // namespace ormel

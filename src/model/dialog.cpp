#include "model/dialog.h"

#include <cmath>
#include <exception>
#include <limits>

#include "core/ormel.h"
#include "core/status.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/strings.h"

namespace ormel {

void OkCancelForm::Pressed(std::string_view name) {
  if (name == "OK") {
    try {
      if (!Ok()) return;
    } catch (...) {
      ShowDialogFailure(ormel(), std::string(Name()) + ".OK_Click", Advice());
      return;
    }
    Result = kOk;
    Hide();
  } else if (name == "Cancel") {
    Cancelled();
    Result = kCancel;
    Hide();
  } else {
    OtherPressed(name);
  }
}

bool OkCancelForm::BadEntry(std::string_view name, std::string_view first, std::string_view second) {
  return Refuse(name, "Bad Entry", Lines({first, second}));
}

void OkCancelForm::EmptyToZero(std::initializer_list<std::string_view> names) {
  for (const std::string_view name : names)
    if (Text(name).empty()) Put(name, "0");
}

void OkCancelForm::OfferAll(std::initializer_list<std::string_view> names, bool on) {
  for (const std::string_view name : names) Offer(name, on);
}

void ShowDialogFailure(Ormel& ormel, std::string_view procedure, std::string_view advice) {
  std::string description = "unknown failure";
  try {
    throw;
  } catch (const std::exception& e) {
    description = e.what();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the description says so already
  }
  Inform(ormel, "Unhandled Error -- Contact the ZRB",
         Lines({"Unhandled error in " + std::string(procedure), advice, description}));
}

bool IsDuplicateLabel(Ormel& ormel, std::string_view table, const std::string& label,
                      const std::string& opened_with) {
  if (label == opened_with) return false;
  const std::string sql = "select count(*) from " + std::string(table) + " where Label=?";
  return ormel.db().Scalar(sql, {label}).AsLong() > 0;
}

std::string FreeLabel(Ormel& ormel, std::string_view table, const std::string& label) {
  if (!IsDuplicateLabel(ormel, table, label, {})) return label;
  const schema::Field* field = schema::FindField(*schema::FindTable(table), "Label");
  const auto size = static_cast<std::size_t>(field->size > 0 ? field->size : schema::kDefaultTextSize);
  for (int number = 2;; ++number) {
    const std::string behind = " (" + std::to_string(number) + ")";
    std::string next = std::string(TextLeft(label, size - behind.size())) + behind;
    if (!IsDuplicateLabel(ormel, table, next, {})) return next;
  }
}

std::string DuplicateLabelText(std::string_view noun, std::string_view label) {
  return Lines({std::string(noun) + " Label ('" + std::string(label) + "') already exists!",
                "Please enter a new label."});
}

int ToLong(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kLow = std::numeric_limits<int>::min(), kHigh = std::numeric_limits<int>::max();
  return static_cast<int>(std::nearbyint(std::fmin(std::fmax(value, kLow), kHigh)));
}

}  // namespace ormel

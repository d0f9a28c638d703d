// Rows of data over the checks of a form: what is typed, and the box that must answer.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "one_commit.h"
#include "support/test_project.h"

namespace ormel::test {

struct Entry {
  std::string control, text;
};

struct FormRow {
  std::string what;
  std::vector<Entry> entries;  ///< set before OK; check boxes and options by "on" and "off"
  std::string title;           ///< of the refusal; empty: the form accepts
  std::string text;            ///< the whole text of the refusal
  std::string focus;           ///< control that gets the focus
};

inline void PrintTo(const FormRow& row, std::ostream* out) {
  *out << row.what;
}

inline void Type(Form& form, const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    if (entry.text == "on" || entry.text == "off")
      form.SetChecked(entry.control, entry.text == "on");
    else
      form.SetText(entry.control, entry.text);
  }
}

/// Types the row into a form that is open and presses OK.
inline void CheckRow(TestController& test, Form& form, const FormRow& row) {
  form.MarkShown();
  form.ClearFocusRequest();
  test.ui.boxes.clear();
  Type(form, row.entries);
  form.Click("OK");
  EXPECT_EQ(test.ui.LastTitle(), row.title) << row.what;
  EXPECT_EQ(test.ui.LastText(), row.text) << row.what;
  EXPECT_EQ(form.Hidden(), row.title.empty()) << row.what;
  EXPECT_EQ(form.Result, row.title.empty() ? 1 : 0) << row.what;
  EXPECT_EQ(form.FocusedControl(), row.focus) << row.what;
}

/// What a user does with a form: types and presses a button.
inline std::function<void(Form&)> Fill(std::vector<Entry> entries, std::string button = "OK") {
  return [entries = std::move(entries), button = std::move(button)](Form& form) {
    Type(form, entries);
    form.Click(button);
  };
}

}  // namespace ormel::test

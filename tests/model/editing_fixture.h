// A project in which the nearest element to a point is selected.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "form_rows.h"
#include "model/selection.h"
#include "store/database.h"

namespace ormel::test {

class EditingProject : public ::testing::Test {
 protected:
  EditingProject() { ormel.selection.radius_squared = 1.0; }
  void SelectAt(double x, double y) {
    together.Settle();
    ormel.mouse.LastX = x;
    ormel.mouse.LastY = y;
    ElemSelectElement(ormel);
  }
  Selection Selected() const { return ormel.selection; }
  double Count(const char* table) { return static_cast<double>(ormel.db().RowCount(table)); }
  double XOf(Vid vid) { return test.Number("select X from Vertices where VID=" + std::to_string(vid)); }

  TestProject test;
  Ormel& ormel = test.ormel;
  OneCommit together{ormel};
};

}  // namespace ormel::test

// When the errors of a solution are told, and when it has failed.
#include <gtest/gtest.h>

#include "vadox1/listing.h"

namespace vadox1 {
namespace {

aem::Checks Good() {
  aem::Checks checks;
  checks.head_range = 10.0;
  checks.undisturbed_flow = 2.0;
  return checks;
}

TEST(ChecksFindings, TellOfLocalErrorsAndFailOnMeanOnes) {
  struct Row {
    aem::WorstError aem::Checks::*local;
    double told;
    aem::WorstError aem::Checks::*mean;
    double failed;
  };
  const Row rows[] = {{&aem::Checks::line_sink_head, 0.2, &aem::Checks::line_sink_mean, 0.6},
                      {&aem::Checks::domain_head_jump, 0.2, &aem::Checks::domain_mean, 0.6},
                      {&aem::Checks::wall_leakage, 0.04, &aem::Checks::wall_mean, 0.6}};
  EXPECT_TRUE(ChecksFindings(Good()).empty());
  for (const Row& row : rows) {
    aem::Checks checks = Good();
    checks.*row.local = {row.told, "LS_000004_0001", {123.5, -7.25}};
    const auto told = ChecksFindings(checks);
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].severity, aem::Severity::kWarning);
    EXPECT_NE(told[0].text.find("123.5, -7.25"), std::string::npos) << told[0].text;
    checks.*row.mean = {row.failed, "HB_000011_0000", {40.0, 50.0}};
    const auto failed = ChecksFindings(checks);
    ASSERT_EQ(failed.size(), 2u);
    EXPECT_EQ(failed[1].severity, aem::Severity::kFatal);
    EXPECT_EQ(failed[1].label, "HB_000011_0000");
    EXPECT_NE(failed[1].text.find("40, 50"), std::string::npos) << failed[1].text;
  }
}

}  // namespace
}  // namespace vadox1

// Saved solutions: what goes in comes out; what was changed on the way is refused.
#include "vadox1/solution_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "vadox1/sample_deck.h"

namespace vadox1 {
namespace {

SavedSolution Sample() {
  const Deck deck = ParseDeck(std::string(test::kEveryElement) + " stop\n");
  SavedSolution saved;
  saved.origin = deck.origin;
  saved.time = 365.25;
  saved.model = deck.model;
  for (int i = 0; i < 1000; ++i) saved.state.push_back(static_cast<std::byte>(i * 7));
  return saved;
}

TEST(SolutionFile, keeps_model_time_and_state) {
  const SavedSolution saved = Sample();
  const std::string bytes = PackSolution(saved);
  const SavedSolution read = UnpackSolution(bytes);
  EXPECT_EQ(read.time, 365.25);
  EXPECT_EQ(read.origin.x, saved.origin.x);
  EXPECT_EQ(read.state, saved.state);
  EXPECT_EQ(read.model.title, "my town");
  EXPECT_EQ(read.model.line_sinks.size(), saved.model.line_sinks.size());
  EXPECT_EQ(read.model.line_sinks[4].segments[1].origin.label, "LS_000024_0003");
  EXPECT_EQ(read.model.walls[1].points[2].at, saved.model.walls[1].points[2].at);
  // Whatever a field is: writing again what was read gives the same bytes.
  EXPECT_EQ(PackSolution(read), bytes);
}

void ExpectRefused(const std::string& bytes, const char* words) {
  try {
    UnpackSolution(bytes);
    ADD_FAILURE() << "accepted";
  } catch (const SolutionFileError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr(words));
  }
}

TEST(SolutionFile, refuses_cut_changed_and_foreign_files) {
  const std::string good = PackSolution(Sample());
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_THROW(UnpackSolution(std::string_view(good).substr(0, size)), SolutionFileError) << size;
  }
  for (std::size_t at = 0; at < good.size(); ++at) {
    std::string bad = good;
    bad[at] = static_cast<char>(bad[at] ^ 0x10);
    EXPECT_THROW(UnpackSolution(bad), SolutionFileError) << at;
  }
  ExpectRefused(good + "x", "damaged");
  ExpectRefused("SQLite format 3", "not a solution");
  std::string other = good;
  std::reverse(other.begin() + 8, other.begin() + 12);
  ExpectRefused(other, "byte order");
  std::string newer = good;
  newer[12] = 9;
  ExpectRefused(newer, "another version");
}

/// With a right checksum the reader still believes no count and no enumeration.
TEST(SolutionFile, survives_a_payload_that_was_made_up) {
  const std::string good = PackSolution(Sample());
  unsigned state = 99;
  int accepted = 0;
  for (int round = 0; round < 4000; ++round) {
    std::string bad = good;
    for (int k = 0; k < 2; ++k) {
      state = state * 1664525u + 1013904223u;
      const std::size_t at = 32 + (state >> 4) % (bad.size() - 32);
      bad[at] = static_cast<char>(state >> 24);
    }
    std::uint64_t sum = 14695981039346656037ull;
    for (std::size_t i = 32; i < bad.size(); ++i) {
      sum = (sum ^ static_cast<unsigned char>(bad[i])) * 1099511628211ull;
    }
    std::memcpy(bad.data() + 24, &sum, sizeof sum);
    try {
      const SavedSolution read = UnpackSolution(bad);
      for (const aem::LineSinkString& string : read.model.line_sinks) {
        EXPECT_LE(static_cast<int>(string.kind), 3);
        EXPECT_GE(static_cast<int>(string.kind), 0);
      }
      ++accepted;
    } catch (const SolutionFileError&) {
    }
  }
  EXPECT_GT(accepted, 100) << "the checksum of this test is wrong";
}

}  // namespace
}  // namespace vadox1

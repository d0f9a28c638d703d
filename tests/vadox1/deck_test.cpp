// Decks: every line that can be written is understood; a line that cannot be used is named.
#include "vadox1/deck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>

#include "vadox1/sample_deck.h"

namespace vadox1 {
namespace {

using aem::Complex;
using testing::HasSubstr;

const std::string kDeck = std::string(test::kEveryElement) + std::string(test::kCommands);

template <class T>
const T& Only(const Deck& deck) {
  const T* found = nullptr;
  for (const Command& command : deck.commands) {
    if (const T* action = std::get_if<T>(&command.action)) {
      EXPECT_EQ(found, nullptr) << "more than one";
      found = action;
    }
  }
  if (found == nullptr) throw std::runtime_error("the command is missing");
  return *found;
}

TEST(Deck, reads_aquifer_wells_and_disks) {
  const Deck deck = ParseDeck(kDeck);
  ASSERT_FALSE(deck.fault) << deck.fault->line << " " << deck.fault->what;
  const aem::Model& model = deck.model;
  EXPECT_EQ(model.title, "my town");
  EXPECT_EQ(deck.origin.x, 123456.5);
  EXPECT_EQ(model.aquifer.base, -10.0);
  EXPECT_EQ(model.aquifer.conductivity, 25.0);
  EXPECT_EQ(model.aquifer.thickness, 30.0);
  EXPECT_EQ(model.aquifer.uniform_flow, Complex(-0.5, 0.0));
  EXPECT_EQ(model.aquifer.reference_point, Complex(1e4, -2e4));
  EXPECT_EQ(model.aquifer.reference_head, 15.0);
  EXPECT_EQ(model.layout.bottom, -100.0) << "the corners come in either order";
  EXPECT_EQ(model.layout.top, 4000.0);

  ASSERT_EQ(model.wells.size(), 2u);
  EXPECT_EQ(model.wells[0].at, Complex(1000.0, 2000.0));
  EXPECT_EQ(model.wells[0].value, 1200.0);
  EXPECT_EQ(model.wells[0].radius, 0.1);
  EXPECT_EQ(model.wells[0].origin.label, "WL_000001");
  EXPECT_FALSE(model.wells[0].by_head);
  EXPECT_TRUE(model.wells[1].by_head);
  ASSERT_EQ(model.partial_wells.size(), 2u);
  EXPECT_EQ(model.partial_wells[0].top, 5.0);
  EXPECT_EQ(model.partial_wells[0].bottom, -5.0);
  EXPECT_EQ(model.partial_wells[0].value, 300.0);
  EXPECT_TRUE(model.partial_wells[1].by_head);
  ASSERT_EQ(model.theis.size(), 2u);
  EXPECT_EQ(model.theis[1].rate, -400.0);
  EXPECT_EQ(model.theis[1].time, 20.0);
  EXPECT_EQ(model.theis[1].start_head, 12.0);
  EXPECT_EQ(model.theis[1].storage, 1e-4);
  ASSERT_EQ(model.disks.size(), 2u);
  EXPECT_NEAR(model.disks[0].radius, 100.0, 1e-9);
  EXPECT_EQ(model.disks[0].value, 1e-3);
  EXPECT_EQ(model.disks[0].origin.label, "WL_000006") << "a spare zero stands before the label";
  EXPECT_TRUE(model.disks[1].by_head);
  EXPECT_EQ(model.disks[1].value, 13.0);
}

TEST(Deck, reads_domains_and_walls_and_leaves_out_vertices_without_a_head_line) {
  const Deck deck = ParseDeck(kDeck);
  const aem::Model& model = deck.model;
  ASSERT_EQ(model.domains.size(), 1u);
  EXPECT_EQ(model.domains[0].conductivity, 5.0);
  EXPECT_EQ(model.domains[0].base, aem::kNotSet);
  EXPECT_EQ(model.domains[0].average_head, 12.0);
  EXPECT_EQ(model.domains[0].recharge_sink, -1e-3);
  EXPECT_EQ(model.domains[0].porosity, aem::kNotSet);
  ASSERT_EQ(model.domains[0].ring.size(), 3u);
  EXPECT_EQ(model.domains[0].ring[2].origin.label, "IN_000007_0003");
  ASSERT_EQ(model.walls.size(), 2u);
  EXPECT_EQ(model.walls[0].kind, aem::WallKind::kOpen);
  EXPECT_EQ(model.walls[0].points.size(), 2u) << "two more belong to a barrier of unknown kind";
  EXPECT_EQ(model.walls[1].kind, aem::WallKind::kClosed);
  EXPECT_EQ(model.walls[1].conductivity, 1e-3);
  EXPECT_EQ(model.walls[1].points.size(), 3u);
  ASSERT_EQ(deck.findings.size(), 1u);
  EXPECT_EQ(deck.findings[0].label, "HB_000012");
  EXPECT_EQ(deck.findings[0].line, 33);
}

TEST(Deck, reads_line_sinks_of_all_kinds) {
  const Deck deck = ParseDeck(kDeck);
  const auto& strings = deck.model.line_sinks;
  ASSERT_EQ(strings.size(), 5u);
  EXPECT_EQ(strings[0].kind, aem::LineSinkKind::kDischarge);
  EXPECT_EQ(strings[0].origin.label, "LS_000020");
  EXPECT_EQ(strings[0].segments.size(), 2u);
  EXPECT_EQ(strings[1].origin.label, "LS_000021");
  EXPECT_EQ(strings[1].segments[0].value, 0.3);
  EXPECT_EQ(strings[2].kind, aem::LineSinkKind::kDrain);
  EXPECT_EQ(strings[2].resistance, 1.0);
  EXPECT_EQ(strings[2].width, 2.0);
  EXPECT_EQ(strings[3].kind, aem::LineSinkKind::kHead);
  EXPECT_EQ(strings[3].resistance, 0.0);
  EXPECT_EQ(strings[3].location, aem::BedLocation::kWaterEdge);
  const aem::LineSinkString& stream = strings[4];
  EXPECT_EQ(stream.kind, aem::LineSinkKind::kStream);
  EXPECT_EQ(stream.inflow, 500.0);
  EXPECT_EQ(stream.overland_flow, 10.0);
  EXPECT_TRUE(stream.ends);
  ASSERT_EQ(stream.segments.size(), 2u);
  EXPECT_EQ(stream.segments[0].to, stream.segments[1].from);
  EXPECT_EQ(stream.segments[1].to, Complex(300.0, 3800.0));
  EXPECT_EQ(stream.segments[1].value, 0.4);
  EXPECT_EQ(stream.segments[1].origin.label, "LS_000024_0003");
}

TEST(Deck, reads_commands_in_their_order) {
  const Deck deck = ParseDeck(kDeck);
  EXPECT_EQ(Only<SolveCommand>(deck).iterations, 2);
  EXPECT_EQ(Only<SaveCommand>(deck).file, "my town.SOL");
  const ExtractCommand& extract = Only<ExtractCommand>(deck);
  EXPECT_EQ(extract.file, "my town.XTR");
  ASSERT_EQ(extract.points.size(), 3u);
  EXPECT_EQ(extract.points[0].label, "TP_000031");
  EXPECT_FALSE(extract.points[0].elevation);
  EXPECT_EQ(extract.points[1].elevation, 12.5);
  EXPECT_EQ(extract.points[1].label, "");
  EXPECT_EQ(extract.points[2].at, Complex(100.0, 300.0)) << "tabs divide items too";
  EXPECT_EQ(extract.sections.size(), 5u);
  ASSERT_EQ(extract.flux_lines.size(), 2u);
  EXPECT_EQ(extract.flux_lines[0].vertices.size(), 2u);
  EXPECT_TRUE(extract.flux_lines[1].vertices.empty()) << "its quit is that of the block";
  const GridCommand& grid = Only<GridCommand>(deck);
  EXPECT_EQ(grid.columns, 40);
  EXPECT_EQ(grid.file, "my town.GRD");
  const TraceCommand& trace = Only<TraceCommand>(deck);
  EXPECT_EQ(trace.file, "my town.PTH");
  EXPECT_EQ(trace.time, 3650.0);
  EXPECT_EQ(trace.step, 25.0);
  ASSERT_EQ(trace.points.size(), 2u);
  EXPECT_TRUE(trace.points[0].forward);
  EXPECT_FALSE(trace.points[1].forward);
  ASSERT_EQ(trace.wells.size(), 1u);
  EXPECT_EQ(trace.wells[0].particles, 20);
  EXPECT_EQ(trace.boundaries.size(), 1u);
  int logs = 0, layouts = 0, times = 0;
  for (const Command& command : deck.commands) {
    logs += std::holds_alternative<LogCommand>(command.action) ? 1 : 0;
    layouts += std::holds_alternative<LayoutCommand>(command.action) ? 1 : 0;
    times += std::holds_alternative<TimeCommand>(command.action) ? 1 : 0;
  }
  EXPECT_EQ(logs, 3);
  EXPECT_EQ(layouts, 1);
  EXPECT_EQ(times, 2);
}

TEST(Deck, reads_a_query_and_a_trace_of_a_saved_solution) {
  const Deck query = ParseDeck(
      " error temperror.log\r\n yes\r\n quit\r\n \r\n load my town\r\n time 0\r\n extract \r\n file "
      "_INSPECT.XTR\r\n y\r\n"
      "  1.0000000E+02 2.0000000E+02       10.00\r\n quit \r\n stop\r\n");
  ASSERT_FALSE(query.fault);
  EXPECT_EQ(Only<ExtractCommand>(query).file, "_INSPECT.XTR");
  EXPECT_EQ(Only<LoadCommand>(query).file, "my town.SOL");
  // A point without its own block, one quit, no go.
  for (const char* middle : {" 1.0E+02 2.0E+02 1.0E+01 -1.0\r\n quit \r\n",
                             " points\r\n 1.0E+02 2.0E+02 1.0E+01 -1.0\r\n quit \r\n",
                             " points\r\n 1.0E+02 2.0E+02 1.0E+01 -1.0\r\n quit\r\n go\r\n quit\r\n"}) {
    const Deck trace = ParseDeck(std::string(" quit\r\n load x\r\n layout\r\n window 0 0 10 10 \r\n quit\r\n "
                                             "trace \r\n picture off\r\n time 100\r\n"
                                             " step 5\r\n file _TRACE.PTH\r\n y\r\n") +
                                 middle + " stop\r\n");
    ASSERT_FALSE(trace.fault) << trace.fault->what;
    const TraceCommand& command = Only<TraceCommand>(trace);
    EXPECT_EQ(command.file, "_TRACE.PTH");
    ASSERT_EQ(command.points.size(), 1u);
    EXPECT_FALSE(command.points[0].forward);
  }
}

TEST(Deck, an_exported_deck_ends_on_the_log_level_without_stop) {
  const Deck deck = ParseDeck(std::string(test::kEveryElement) +
                              " switch\r\n error con\r\n message con\r\n echo off\r\n input con\r\n");
  ASSERT_FALSE(deck.fault);
  EXPECT_EQ(deck.findings.size(), 1u) << "only the stray vertices";
}

struct Unusable {
  const char* name;
  const char* deck;
  int line;
  const char* words;
};

class UnusableDeck : public testing::TestWithParam<Unusable> {};

TEST_P(UnusableDeck, names_the_line) {
  const Deck deck = ParseDeck(GetParam().deck);
  ASSERT_TRUE(deck.fault);
  EXPECT_EQ(deck.fault->line, GetParam().line);
  EXPECT_THAT(deck.fault->what, HasSubstr(GetParam().words));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, UnusableDeck,
    testing::Values(
        Unusable{"empty", "", 0, "cut short"}, Unusable{"word", " quit\n frobnicate 3\n", 2, "frobnicate"},
        Unusable{"number", " quit\n aquifer\n base 1.2.3\n", 3, "1.2.3"},
        Unusable{"infinite", " quit\n aquifer\n base 1E+999\n", 3, "not a number"},
        Unusable{"nan", " quit\n aquifer\n base nan\n", 3, "not a number"},
        Unusable{"missing", " quit\n well\n discharge\n 1 2 3\n", 4, "item 4"},
        Unusable{"extra", " quit\n well\n discharge\n 1 2 3 4 5 WL_1\n", 4, "more items"},
        Unusable{"comma", " quit\n well\n discharge\n 1 2 3 4 a,b\n", 4, "comma"},
        Unusable{"no kind", " quit\n well\n 1 2 3 4 WL_1\n", 3, "must stand before"},
        Unusable{"no block", " quit\n 1 2 3 4\n", 2, "Numbers"},
        Unusable{"theis head", " quit\n twell\n head\n", 3, "head"},
        Unusable{"slurry", " quit\n inhomogeneity\n slurry round 0 1 1 1\n", 3, "slurry"},
        Unusable{"location", " quit\n linesink\n head\n width 1 7\n", 4, "location"},
        Unusable{"early depth", " quit\n linesink\n depth 1\n", 3, "must stand before"},
        Unusable{"depth of discharge", " quit\n linesink\n head\n discharge\n depth 1\n", 5,
                 "must stand before"},
        Unusable{"open stream", " quit\n linesink\n stream 0\n 0 0 5 A_1_1\n quit\n", 5, "last vertex"},
        Unusable{"stream goes on", " quit\n linesink\n stream 0\n 0 0 5 A_1_1\n 1 1\n 2 2 5 A_1_2\n", 6,
                 "stream"},
        Unusable{"window", " quit\n layout\n window 0 0 0 10\n", 3, "width"},
        Unusable{"solve", " quit\n solve many\n", 2, "many"}, Unusable{"file", " quit\n save\n", 2, "name"},
        Unusable{"elements and load", " quit\n well\n quit\n load x\n", 4, "elements"},
        Unusable{"elements late", " quit\n solve 1 0 0 1\n well\n", 3, "before"},
        Unusable{"grid", " quit\n grid\n horizontalpoints -1\n", 3, "horizontal"},
        Unusable{"surfer", " quit\n grid\n surfer x\n", 3, "go"},
        Unusable{"time", " quit\n trace\n time \n", 3, "number"},
        Unusable{"step", " quit\n trace\n step -1\n", 3, "step"},
        Unusable{"direction", " quit\n trace\n points\n 1 1 1 0\n", 4, "direction"},
        Unusable{"no time", " quit\n trace\n file x\n go\n", 4, "time"},
        Unusable{"boundary", " quit\n trace\n boundary 1 1 1 1\n", 3, "boundary"},
        Unusable{"quit", " quit\n quit\n", 2, "closes nothing"},
        Unusable{"stop inside", " quit\n well\n stop\n", 3, "stop"},
        Unusable{"cut inside", " quit\n aquifer\n base 1\n", 3, "cut short"}),
    [](const auto& test) {
      std::string name = test.param.name;
      for (char& c : name) c = c == ' ' ? '_' : c;
      return name;
    });

TEST(Deck, keywords_in_any_case_comments_answers_and_line_ends_make_no_difference) {
  const Deck deck = ParseDeck(
      "\xEF\xBB\xBF* c\n Quit\r aquifer\r\n* base 7\n  * base 8\nBASE\t+5.\nyes\n QUIT\n\n\nSOLVE 1 0 0 "
      "1\nStop\nrubbish");
  ASSERT_FALSE(deck.fault) << deck.fault->what;
  EXPECT_EQ(deck.model.aquifer.base, 5.0);
}

TEST(Deck, cut_at_every_byte_it_is_a_deck_or_a_fault) {
  for (std::size_t size = 0; size < kDeck.size(); ++size) {
    const Deck deck = ParseDeck(std::string_view(kDeck).substr(0, size));
    // A deck that ends early says so, one way or the other.
    EXPECT_TRUE(deck.fault || !deck.findings.empty()) << size;
    EXPECT_TRUE(!deck.fault || deck.fault->text.size() <= 200u);
  }
}

TEST(Deck, is_read_in_linear_time) {
  const auto seconds = [](int wells) {
    std::string text = " quit\n well\n discharge\n";
    for (int i = 0; i < wells; ++i) text += "  1.0E+02 2.0E+02 3.0E+00 1.0E-01 WL_000001\n";
    text += " quit\n stop\n";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ParseDeck(text).model.wells.size(), static_cast<std::size_t>(wells));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  seconds(1000);
  EXPECT_LT(seconds(80000), 8.0 * 5.0 * seconds(10000) + 0.05);
}

}  // namespace
}  // namespace vadox1

// Adding, finding, walking and loading n vertices.  Every cost must grow with n, none with its square: the
// reported complexity of each family is N or NlgN, and the time a row stays about the same from 10,000 to
// 100,000 rows.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

struct Project {
  explicit Project(std::int64_t vertices = 0) {
    const std::string path = folder / "bench.orm";
    DBNewDatabase(path, {});
    db = Database::Open(path);
    Transaction command(db);
    BulkInsert rows(db, "Vertices", {"PID", "Seq", "X", "Y"});
    BulkInsert results(db, "WLResults",
                       {"VadoxLabel", "X", "Y", "Radius", "SpecifiedHead", "Discharge", "Head"});
    for (std::int64_t i = 1; i <= vertices; ++i) {
      rows.Row(1 + i / 20, i % 20, 0.5 * static_cast<double>(i), -0.25 * static_cast<double>(i));
      results.Row(Label(i), 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
    }
  }
  static std::string Label(std::int64_t i) { return "WL_" + std::to_string(1000000 + i); }

  test::TempDir folder;
  Database db;
};

/// The same project for all runs of one size.
Project& Shared(std::int64_t vertices) {
  static std::unique_ptr<Project> project;
  static std::int64_t size = -1;
  if (size != vertices) project = std::make_unique<Project>(vertices);
  size = vertices;
  return *project;
}

void Report(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// As a user or an import draws: one vertex after the other through the bound recordset, refreshed each time.
void AddThroughBoundRecordset(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto project = std::make_unique<Project>();
    state.ResumeTiming();
    Transaction command(project->db);
    Recordset bound = project->db.OpenRecordset("select * from Vertices;");
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      if (bound.RecordCount() > 0) bound.MoveLast();
      bound.AddNew();
      const std::int64_t vid = bound["VID"].AsLong();
      bound["VID"] = vid;
      bound["PID"] = -1;
      bound["Seq"] = 0;
      bound["X"] = static_cast<double>(i);
      bound["Y"] = static_cast<double>(-i);
      bound.Update();
      bound.Requery();
    }
    command.Commit();
    state.PauseTiming();
    project.reset();
    state.ResumeTiming();
  }
  Report(state);
}

void AddInBulk(benchmark::State& state) {
  for (auto _ : state) {
    const Project project(state.range(0));
    benchmark::DoNotOptimize(&project);
  }
  Report(state);
}

void FindByCriteria(benchmark::State& state) {
  Recordset rows = Shared(state.range(0)).db.OpenRecordset("select * from Vertices;");
  for (auto _ : state) {
    for (std::int64_t i = 1; i <= state.range(0); ++i) {
      rows.FindFirst("VID=" + std::to_string(1 + (i * 7919) % state.range(0)));
      benchmark::DoNotOptimize(rows["X"].AsDouble());
    }
  }
  Report(state);
}

void FindByLabel(benchmark::State& state) {
  Recordset rows = Shared(state.range(0)).db.OpenRecordset("select * from wlresults");
  for (auto _ : state) {
    for (std::int64_t i = 1; i <= state.range(0); ++i) {
      rows.FindFirst("VadoxLabel='" + Project::Label(1 + (i * 7919) % state.range(0)) + "'");
      benchmark::DoNotOptimize(rows["X"].AsDouble());
    }
  }
  Report(state);
}

void UpdateInBulk(benchmark::State& state) {
  Database& db = Shared(state.range(0)).db;
  for (auto _ : state) {
    Transaction command(db);
    BulkUpdate rows(db, "WLResults", "VadoxLabel", {"X", "Y", "Head"});
    for (std::int64_t i = 1; i <= state.range(0); ++i) rows.Row(Project::Label(i), 1.0, 2.0, 3.0);
  }
  Report(state);
}

void WalkRecordset(benchmark::State& state, const char* sql) {
  Database& db = Shared(state.range(0)).db;
  for (auto _ : state) {
    double sum = 0;
    for (Recordset rows = db.OpenRecordset(sql); rows.HasRow(); rows.MoveNext()) {
      sum += rows["X"].AsDouble() + rows["Y"].AsDouble();
    }
    benchmark::DoNotOptimize(sum);
  }
  Report(state);
}

void ReadRows(benchmark::State& state) {
  Database& db = Shared(state.range(0)).db;
  for (auto _ : state) {
    double sum = 0;
    for (RowReader rows(db, "select X,Y from Vertices"); rows.Next();) sum += rows.Double(0) + rows.Double(1);
    benchmark::DoNotOptimize(sum);
  }
  Report(state);
}

// A deck's walk: each string's vertices by a statement of their own.
void ReadStrings(benchmark::State& state) {
  Database& db = Shared(state.range(0)).db;
  for (auto _ : state) {
    double sum = 0;
    for (std::int64_t pid = 1; pid <= state.range(0) / 20; ++pid) {
      Recordset rows = db.OpenRecordset("select X,Y,Seq from Vertices where PID=" + std::to_string(pid) +
                                        " order by Seq;");
      for (; rows.HasRow(); rows.MoveNext()) sum += rows.Get<double>(0);
    }
    benchmark::DoNotOptimize(sum);
  }
  Report(state);
}

constexpr int kSmall = 10000;
constexpr int kLarge = 100000;
BENCHMARK(AddThroughBoundRecordset)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(AddInBulk)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(FindByCriteria)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(FindByLabel)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(UpdateInBulk)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WalkRecordset, table, "select * from Vertices")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WalkRecordset, keyset, "select * from Vertices order by Seq")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WalkRecordset, list, "select X+0 as X,Y+0 as Y from Vertices")
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ReadRows)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadStrings)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ormel

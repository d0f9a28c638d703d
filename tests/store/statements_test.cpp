// Every statement that the procedures run, on a new project: each must run as it is written there.
#include <gtest/gtest.h>

#include "new_project.h"

namespace ormel {
namespace {

using test::ProjectFixture;

constexpr const char* kSelects[] = {
    "select * from Vertices;",
    "select * from Polygons;",
    "select * from Wells;",
    "select * from LinesinkStrings;",
    "select * from NoFlowStrings;",
    "select * from Inhomogeneities;",
    "select * from TestPoints;",
    "select * from Particles;",
    "select * from TextLabels;",
    "select * from FluxInspect;",
    "select * from Capzones;",
    "select ProjectVersion from Project;",
    "select * from Project",
    "select * from WHPAs where T > 1 or Type=3",
    "select * from WHPAs where T>1 or Type=3",
    "select * from WHPAs where T>1 or Type =3",
    "select * from WHPAs where Type=2 and T>1",
    "Select * from WHPAs where Type=1",
    "select * from WHPAs where type=2",
    "select * from WHPAs where Well='O''Neill' and Type=2",
    "select * from WHPAs where VID1=7 or VID2=7",
    "Select * from WHPAs where Point1X<>0 and Point1Y<>0 and Point2X<>0 and Point2Y<>0",
    "select * from vertices order by vid;",
    "select * from Vertices where PID=-1",
    "Select * from Vertices where PID=-10",
    "select * from TestPoints where VID=3",
    "select * from Wells where VID=3",
    "select * from Particles where VID=3",
    "select UNIFLOWCompute from Model",
    "select UNIFLOWRefX, UNIFLOWRefY from Model",
    "select SOLVERX0,SOLVERY0 from Model;",
    "select * from model;",
    "select * from vertices where PID=5 order by seq",
    "select * from Vertices where Vertices.PID=5 order by Seq;",
    "select vid,(1.5-x) as dx,(2-y) as dy,dx*dx+dy*dy as r2 from vertices order by 4;",
    "select vid,(-1.5-x) as dx,(-2E+05-y) as dy,dx*dx+dy*dy as r2 from vertices order by 4;",
    "SELECT * from Vertices",
    "select x,y from vertices where X < 1.5 and X > 0.5 and Y < -0.5 and Y > -1.5",
    "select * from vertices where x >=  1 and x<= 2 and y >= -2 and y<= -1 and VID <> 1",
    "select * from Vertices where PID in (select PID from LineSinkStrings) order by Seq;",
    "select * from Vertices where PID in (select PID from Inhomogeneities) order by Seq;",
    "select * from Vertices where PID in (select PID from NoFlowStrings) order by Seq;",
    "select * from Vertices where PID in (select PID from FluxInspect) order by Seq;",
    "select * from Vertices where PID in (select PID from Capzones) order by Seq;",
    "SELECT * FROM Wells WHERE Label='North'",
    "Select * from Wells where Label='Mirror_North'",
    "select * from Wells where Label like 'Mirror_*'",
    "SELECT * FROM LinesinkStrings WHERE Label='Mill brook'",
    "SELECT * FROM Inhomogeneities WHERE Label='Clay'",
    "SELECT * FROM NoFlowStrings WHERE Label='Dyke'",
    "select * from Inhomogeneities where ChangeB=True",
    "select BottomElevation from Inhomogeneities where PID=4",
    "select testpoints.*, vertices.x,vertices.y from TestPoints inner join Vertices on "
    "vertices.vid=testpoints.vid "
    "where TestPoints.VID=3",
    "select * from WLResults where VadoxLabel like 'WL_000001*'",
    "select * from LSResults where VadoxLabel like 'LS_000345_0012'",
    "select * from TPResults where VID=3;",
    "select * from FIResults where PID=3",
    "select 0.5*avg(startinghead+endinghead) as AvgHead from LinesinkStrings where HeadSpecified=1;",
    "select 0.5*avg(head) as AvgHead from wells where HeadSpecified=1;",
    "select max(X) as MaxX,min(X) as MinX,Max(Y) as MaxY,min(Y) as MinY from Vertices;",
    "select PID from LinesinkStrings",
    "select * from noflowStrings",
    "select Vertices.X,Vertices.Y,Vertices.Seq from Vertices where Vertices.PID=5 order by Seq;",
    "select Vertices.X,Vertices.Y,Wells.* from Vertices inner join Wells on Vertices.VID = Wells.VID "
    "where Wells.HeadSpecified=0 and Wells.PPWell=0 and       Wells.Pond=0 and Wells.Transient=0;",
    "select * from LinesinkStrings where HeadSpecified=0;",
    "select * from LinesinkStrings where HeadSpecified=1 and Routing=0;",
    "select * from LinesinkStrings where HeadSpecified=1 and Routing=1;",
    "select X,Y,Seq from Vertices where PID=5 order by Seq;",
    "select Vertices.VID,Vertices.X,Vertices.Y,TestPoints.ObsHead,TestPoints.label from Vertices inner join "
    "TestPoints "
    "on Vertices.VID = TestPoints.VID",
    "select Vertices.X,Vertices.Y,Particles.Forward,Particles.SatdThick,Particles.Elevation from Vertices "
    "inner join "
    "Particles on Vertices.VID = Particles.VID;",
    "select Vertices.VID,Vertices.X,Vertices.Y,Wells.NParticles,Wells.StartElev from Vertices inner join "
    "Wells on "
    "Vertices.VID = Wells.VID",
    "select * from wlresults",
    "select * from lsresults",
    "select * from INResults",
    "select * from NFResults",
    "select * from wells where PathlineColor<>-99",
    "Select * from Wells where HeadSpecified=0 and PPWell=0 and Pond=0 and Transient=0 order by Label",
    "select wells.vid,vertices.x,vertices.y,wells.head,wells.radius,wells.nparticles,wells.setback from "
    "vertices,wells "
    "where vertices.vid=wells.vid",
    "select vertices.x,vertices.y,wells.head,wells.radius,wells.nparticles,wells.setback from wells,vertices "
    "where "
    "vertices.vid=wells.vid",
    "select vertices.x,vertices.y,testpoints.label,testpoints.obshead from vertices,testpoints where "
    "vertices.vid=testpoints.vid",
    "select * from LSResults where SpecifiedHead>0;",
    "select min([Error]) from LSResults;",
    "select max([Error]) from LSResults;",
    "select min([Discharge]) from LSResults;",
    "select max([Discharge]) from LSResults;",
    "select min([BaseFlow]) from LSResults;",
    "select max([BaseFlow]) from LSResults;",
    "select min([BaseFlow]-[OverlandFlow]) from LSResults;",
    "select max([BaseFlow]-[OverlandFlow]) from LSResults;",
    "select * from MapLabels where MapName = 'c:\\maps\\town.shp'",
    "select * from Basemaps where MapName='c:\\maps\\O''Neill.bbm'",
    "select Vertices.VID,Vertices.X,Vertices.Y,Wells.Label,Wells.Head,Wells.Radius,Wells.HeadSpecified from "
    "Vertices "
    "inner join Wells on Vertices.VID = Wells.VID;",
    "select Vertices.VID,Vertices.X,Vertices.Y,TestPoints.Label,TestPoints.ObsHead from Vertices inner join "
    "TestPoints "
    "on Vertices.VID = TestPoints.VID;",
    "select * from TPResults order by Difference;",
};

constexpr const char* kCommands[] = {
    "DELETE * FROM WLResults;",
    "DELETE * FROM LSResults;",
    "DELETE * FROM INResults;",
    "DELETE * FROM NFResults;",
    "DELETE * FROM TPResults;",
    "DELETE * FROM FIResults;",
    "delete * from basemaps;",
    "INSERT INTO TPResults SELECT   TestPoints.Label,   TestPoints.VID,   TestPoints.ObsHead,   0.0 as "
    "ModelHead,   "
    "0.0 as Difference,   Vertices.X,   Vertices.Y FROM TestPoints INNER JOIN Vertices ON "
    "TestPoints.VID=Vertices.VID;",
};

struct Search {
  const char* recordset;
  const char* criteria;
};
constexpr Search kSearches[] = {
    {"select * from Vertices;", "VID=5"},
    {"select * from Vertices;", "VID = 5"},
    {"select * from Vertices;", "PID=-10"},
    {"select * from Vertices;", "X=1.5 and Y=-2E-05"},
    {"select * from Wells;", "vid=5"},
    {"select * from Wells;", "Label='Mirror_O''Neill'"},
    {"select * from LinesinkStrings;", "pid = 7"},
    {"select * from wlresults", "VadoxLabel='WL_000001'"},
    {"select * from INResults", "VadoxLabel = 'IN_000001_0001'"},
    {"select * from basemaps", "MapName = 'a'"},
    {"select * from TextLabels;", "X=1 and Y=2 and Labeltype=0 and Text='a''b'"},
};

TEST(Statements, EverySelectOpens) {
  ProjectFixture project;
  project.AddVertices(3);
  for (const char* sql : kSelects) {
    SCOPED_TRACE(sql);
    try {
      Recordset rows = project.db.OpenRecordset(sql);
      EXPECT_GT(rows.FieldCount(), 0U);
      for (; rows.HasRow(); rows.MoveNext()) rows.Get(0);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

TEST(Statements, EveryCommandRuns) {
  ProjectFixture project;
  for (const char* sql : kCommands) EXPECT_NO_THROW(project.db.Execute(sql)) << sql;
}

TEST(Statements, EverySearchRuns) {
  ProjectFixture project;
  for (const Search& search : kSearches) {
    Recordset rows = project.db.OpenRecordset(search.recordset);
    EXPECT_NO_THROW(rows.FindFirst(search.criteria)) << search.criteria;
    EXPECT_TRUE(rows.NoMatch());
  }
}

TEST(Statements, TestPointsSeedTheirResults) {
  ProjectFixture project;
  project.AddVertices(2);
  project.db.Execute("insert into TestPoints (VID,ObsHead,Label) values (2,10.5,'P')");
  EXPECT_EQ(project.db.Execute(kCommands[7]), 1);
  Recordset rows = project.db.OpenRecordset("select * from TPResults where VID=2;");
  EXPECT_EQ(rows.Get<std::string>("label"), "P");
  EXPECT_EQ(rows.Get<double>("ObsHead"), 10.5);
  EXPECT_EQ(rows.Get<double>("y"), -2.0);
}

TEST(Statements, ComputedColumnsAreUsedAgain) {
  ProjectFixture project;
  project.AddVertices(4);
  Recordset rows = project.db.OpenRecordset(
      "select vid,(2.25-x) as dx,(-2.5-y) as dy,dx*dx+dy*dy as r2 from vertices order by 4;");
  EXPECT_EQ(rows.Get<int>("vid"), 2);
  EXPECT_EQ(rows.Get<double>("r2"), 0.25 * 0.25 + 0.5 * 0.5);
}

}  // namespace
}  // namespace ormel

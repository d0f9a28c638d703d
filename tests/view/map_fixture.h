// A project with a map on a recording surface, the window -100 to 100 in both directions.
#pragma once

#include <string>
#include <vector>

#include "core/layers.h"
#include "core/user_interface.h"
#include "support/recording_device.h"
#include "support/test_project.h"

namespace ormel::test {

struct MapProject : TestProject {
  RecordingSurface surface;
  MapViewImpl map{ormel, &surface};

  explicit MapProject(bool basemap_meters = true, bool compute_meters = true)
      : TestProject(basemap_meters, compute_meters) {
    ormel.ports.view = &map;
    ormel.window.SolveWindow = {-100.0, 100.0, 100.0, -100.0};
    map.SetUpLayers();
    ormel.layers.Switch(Layer::kElements, true);
    ormel.layers.Switch(Layer::kEditorGrid, false);
    map.ZoomActions(Zoom::kRedraw);
  }

  Vid AddVertex(double x, double y, Pid pid = kSinglePoint, Seq seq = 0) {
    ormel.db().Execute("insert into Vertices (PID,Seq,X,Y) values (?,?,?,?)", {pid, seq, x, y});
    return ormel.db().Scalar("select max(VID) from Vertices").AsLong();
  }
  /// A polygon with the points of a text like "0,0 10,0 10,10".
  Pid AddPolygon(const std::string& points) {
    ormel.db().Execute("insert into Polygons (Closed) values (0)");
    const Pid pid = ormel.db().Scalar("select max(PID) from Polygons").AsLong();
    std::istringstream in(points);
    Seq seq = 1;
    for (double x, y; in >> x && in.ignore() && in >> y; seq += 100) AddVertex(x, y, pid, seq);
    return pid;
  }
  Vid AddWell(double x, double y, const std::string& label, double radius = 10.0, double setback = 0.0) {
    const Vid vid = AddVertex(x, y);
    ormel.db().Execute("insert into Wells (VID,Label,Radius,Setback) values (?,?,?,?)",
                       {vid, label, radius, setback});
    return vid;
  }
  void Redraw() { map.ZoomActions(Zoom::kRedraw); }
  std::vector<std::string> Drawn(const std::string& layer) {
    Redraw();
    return surface.picture.Layer(layer);
  }
};

}  // namespace ormel::test

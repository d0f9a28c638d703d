#!/usr/bin/env python3
"""Exports every kind from both solved examples and reads each file with GDAL and ezdxf.

usage: check_exports.py <folder of ormelcmd> <folder of the examples>
"""
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import ezdxf
from osgeo import gdal, ogr

gdal.UseExceptions()
BIN, EXAMPLES = Path(sys.argv[1]), Path(sys.argv[2])
faults = []


def expect(good, text):
    if not good:
        faults.append(text)
        print("FAULT:", text)


def run(*arguments):
    result = subprocess.run([str(BIN / "ormelcmd"), *map(str, arguments)], capture_output=True, text=True)
    expect(result.returncode == 0, f"{' '.join(map(str, arguments))}: {result.stderr}")
    return result.stdout


def rows(project, query):
    lines = run("sql", project, query, "--csv").splitlines()[1:]
    return [line.split(",") for line in lines]


def strings(project, table):
    """Vertices of each string: [count, ...] in the order of the export."""
    return [int(row[1]) for row in rows(
        project, f"select t.PID, count(*) from {table} as t inner join Vertices as v on v.PID=t.PID "
                 "group by t.PID order by t.PID")]


def contours(stem):
    """Points of each polyline of the file."""
    counts = []
    for line in stem.with_suffix(".CTR").read_text().splitlines():
        if line.startswith("LEVEL"):
            counts.append(0)
        elif line.strip():
            counts[-1] += 1
    return counts


def paths(stem):
    """Points, times and elevations of each path; the START line is no point of its own."""
    found = []
    for line in stem.with_suffix(".PTH").read_text().splitlines():
        if line.startswith("START"):
            found.append([])
        elif not line.startswith(("END", "*")):
            found[-1].append([float(line[c:c + 13]) for c in (6, 20, 34, 48)])
    return found


def tic_counts(found, days, length):
    times = sum(-(-p[-1][3] // days) - 1 for p in found if p[-1][3] > 0)
    up = down = 0
    for path in found:
        for a, b in zip(path, path[1:]):
            step = int(b[2] // length - a[2] // length)
            up, down = up + max(step, 0), down + max(-step, 0)
    return int(times), up, down


GEOMETRY = {"pathlines": ogr.wkbLineString, "contours": ogr.wkbLineString, "linesinks": ogr.wkbLineString,
            "barriers": ogr.wkbLineString, "zones": ogr.wkbPolygon, "inhomogeneities": ogr.wkbPolygon,
            "wells": ogr.wkbPoint, "testpoints": ogr.wkbPoint, "particles": ogr.wkbPoint,
            "time-tics": ogr.wkbPoint, "elevation-tics": ogr.wkbPoint}


def check_shapefile(file, what, count):
    info = subprocess.run(["ogrinfo", "-al", "-so", str(file)], capture_output=True, text=True)
    expect(info.returncode == 0 and "warning" not in (info.stdout + info.stderr).lower() and not info.stderr,
           f"{file.name}: {info.stderr}")
    expect(file.with_suffix(".cpg").read_text() == "UTF-8", f"{file.name}: code page")
    source = ogr.Open(str(file))
    layer = source.GetLayer()
    expect(layer.GetGeomType() == GEOMETRY[what], f"{file.name}: type {layer.GetGeomType()}")
    expect(layer.GetFeatureCount() == count, f"{file.name}: {layer.GetFeatureCount()} features, not {count}")
    for feature in layer:
        shape = feature.GetGeometryRef()
        expect(shape is not None and shape.IsValid(), f"{file.name}: feature {feature.GetFID()} is not valid")
        if shape is not None and GEOMETRY[what] == ogr.wkbPolygon:
            ring = shape.GetGeometryRef(0)
            expect(ring.GetPoint(0) == ring.GetPoint(ring.GetPointCount() - 1), f"{file.name}: ring is open")
            points = ring.GetPoints()
            area = sum((a[0] - points[0][0]) * (b[1] - points[0][1]) - (b[0] - points[0][0]) * (a[1] - points[0][1])
                       for a, b in zip(points, points[1:]))
            expect(area < 0, f"{file.name}: ring runs the wrong way")
        text = feature.GetField(0)
        expect(isinstance(text, str) and text, f"{file.name}: feature {feature.GetFID()} has no text")


def check_dxf(file, lines, circles):
    """`lines`: vertices of each polyline by layer; `circles`: number by layer."""
    drawing = ezdxf.readfile(file)
    audit = drawing.audit()
    expect(not audit.errors, f"{file.name}: {[e.message for e in audit.errors]}")
    found_lines, found_circles = {}, {}
    for entity in drawing.modelspace():
        layer = entity.dxf.layer
        expect(layer in drawing.layers, f"{file.name}: layer {layer} is not declared")
        if entity.dxftype() == "LWPOLYLINE":
            found_lines.setdefault(layer, []).append(len(entity))
        elif entity.dxftype() == "CIRCLE":
            found_circles[layer] = found_circles.get(layer, 0) + 1
            expect(entity.dxf.radius > 0, f"{file.name}: a circle without radius")
        else:
            expect(False, f"{file.name}: a {entity.dxftype()}")
    expect(found_lines == {k: v for k, v in lines.items() if v}, f"{file.name}: lines")
    expect(found_circles == {k: v for k, v in circles.items() if v}, f"{file.name}: {found_circles}, {circles}")
    handles = [int(h, 16) for h in drawing.entitydb.keys()]
    text = file.read_text().split("\n")
    seed = int(text[[t.strip() for t in text].index("$HANDSEED") + 2], 16)
    own = [int(e.dxf.handle, 16) for e in drawing.modelspace()]
    expect(all(seed > h for h in own) and seed > 0x34653cd3, f"{file.name}: seed {seed:x}")
    expect(len(handles) == len(set(handles)), f"{file.name}: handles")
    told = []
    gdal.PushErrorHandler(lambda kind, number, message: told.append(message))
    source = ogr.Open(str(file))  # the layer does not keep it
    read = sum(1 for _ in source.GetLayer())
    gdal.PopErrorHandler()
    expect(not told, f"{file.name}: {told}")
    expect(read == len(own), f"{file.name}: GDAL reads {read} of {len(own)}")


def check_bln(file, curves):
    counts, left = [], 0
    for line in file.read_text().splitlines():
        fields = line.split()
        expect(len(fields) == 2, f"{file.name}: {line}")
        if left == 0:
            left = int(fields[0])
            counts.append(left)
            expect(fields[1] == "1", f"{file.name}: {line}")
        else:
            left -= 1
    expect(left == 0 and counts == curves, f"{file.name}: curves")


def check_grid(project, stem, file):
    grid = gdal.Open(str(file))
    written = grid.ReadAsArray()
    own = gdal.Open(str(stem.with_suffix(".GRD")))  # the same driver on the solver's own
    expect((written == own.ReadAsArray()).all(), "the heads of the grid have changed")
    left, step_x, _, top, _, step_y = grid.GetGeoTransform()
    for x, y, head in [map(float, row) for row in rows(
            project, "select X,Y,ModelHead from TPResults where ModelHead>0")][:20]:
        column, row = (x - left) / step_x - 0.5, (y - top) / step_y - 0.5
        i, j = int(column), int(row)
        if not (0 <= i < written.shape[1] - 1 and 0 <= j < written.shape[0] - 1):
            continue
        cell = written[j:j + 2, i:i + 2]
        if cell.max() > 1e30:
            continue
        a, b = column - i, row - j
        at = ((1 - b) * ((1 - a) * cell[0, 0] + a * cell[0, 1]) + b * ((1 - a) * cell[1, 0] + a * cell[1, 1]))
        spread = cell.max() - cell.min()
        expect(abs(at - head) <= 0.5 * spread + 1e-3, f"head at {x},{y}: grid {at}, solver {head}")


def check(example, folder):
    project = folder / example
    shutil.copy(EXAMPLES / example, project)
    run("solve", "--yes", "-q", project)
    stem = project.with_suffix("")
    if not rows(project, "select PID from Capzones"):
        run("add", "capturezone", project, "--label", "Zone \u00e4", "--points", "0,0 900,0 900,900 0,900")
        run("solve", "--yes", "-q", project)
    days, length = 365.0, 0.5
    ctr, pth = contours(stem), paths(stem)
    times, up, down = tic_counts(pth, days, length)
    number = {table: int(rows(project, f"select count(*) from {table}")[0][0])
              for table in ("Wells", "TestPoints", "Particles")}
    inside = strings(project, "Inhomogeneities")
    sinks, walls, zones = (strings(project, t) for t in ("LinesinkStrings", "NoFlowStrings", "Capzones"))
    tics = ["--time-tics", days, "--elevation-tics", length]
    for what, count in {"contours": sum(c > 1 for c in ctr), "pathlines": sum(len(p) > 1 for p in pth),
                        "time-tics": times, "elevation-tics": up + down, "zones": len(zones),
                        "wells": number["Wells"], "testpoints": number["TestPoints"],
                        "particles": number["Particles"], "inhomogeneities": len(inside),
                        "linesinks": len(sinks), "barriers": len(walls)}.items():
        file = folder / f"{what}.shp"
        run("export", "shapefile", project, file, "--what", what, *tics)
        check_shapefile(file, what, count)
    file = folder / "points.shp"
    run("export", "shapefile", project, file, "--what", "wells", "--with-testpoints", "--with-particles")
    check_shapefile(file, "wells", sum(number.values()))

    closed = [n + (c not in ("0", "")) for (c, n) in zip([r[1] for r in rows(
        project, "select PID,Closed from NoFlowStrings order by PID")], walls)]
    kinds = rows(project, "select PID,Drain,HeadSpecified from LinesinkStrings order by PID")
    by_layer = {}
    for (_, drain, head), count in zip(kinds, sinks):
        layer = "drains" if drain != "0" else "near field" if head != "0" else "discharge"
        by_layer.setdefault(f"Line-sinks ({layer})", []).append(count)
    drawings = {
        "contours": ({"Contours": [c for c in ctr if c > 1]}, {}),
        "pathlines": ({"Pathlines": [len(p) for p in pth if len(p) > 1]},
                      {"Time Ticmarks": times, "Vertical Ticmarks Up": up, "Vertical Ticmarks Down": down}),
        "zones": ({"Capture Zones": [n + 1 for n in zones]}, {}),
        "elements": ({"Inhomogeneities": [n + 1 for n in inside], "Horizontal Barriers": closed, **by_layer},
                     {"Wells": number["Wells"]})}
    for what, (lines, circles) in drawings.items():
        run("export", "dxf", project, folder / f"{what}.dxf", "--what", what,
            *(tics if what == "pathlines" else []))
        check_dxf(folder / f"{what}.dxf", lines, circles)
    curves = {"contours": [c for c in ctr if c > 1], "pathlines": [len(p) for p in pth if len(p) > 1],
              "zones": [n + 1 for n in zones],
              "elements": [5] * number["Wells"] + [n + 1 for n in inside] + sinks + closed}
    for what, counts in curves.items():
        run("export", "bln", project, folder / f"{what}.bln", "--what", what)
        check_bln(folder / f"{what}.bln", counts)
    run("export", "grid", project, folder / "heads.grd")
    check_grid(project, stem, folder / "heads.grd")
    print(f"{example}: {len(ctr)} contours, {len(pth)} paths, {times}+{up}+{down} marks, "
          f"{len(zones)} zones, {number}")


def main():
    with tempfile.TemporaryDirectory() as base:
        os.environ["XDG_CONFIG_HOME"] = base
        for i, example in enumerate(("example.orm", "basin and range.orm")):
            folder = Path(base) / f"gepr\u00fcft {i}"
            folder.mkdir()
            check(example, folder)
    print("all files are as they should be" if not faults else f"{len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

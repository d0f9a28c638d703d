#!/usr/bin/env python3
"""Reads the reports of the example projects and compares every number in them with the store.

Nothing of the program's own reading is used: the HTML goes through Python's parser, the store through sqlite3, and
what the report computes is computed here anew.

usage: report_test.py <folder of the examples> <folder of ormelcmd>
"""
import math
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
from html.parser import HTMLParser
from pathlib import Path


class Report(HTMLParser):
    """Tables by caption: headings, rows of (text, number or None); values in the text; the text beside them."""

    def __init__(self, html: str):
        super().__init__()
        self.tables, self.values, self.images, self.ids = {}, [], [], []
        self.loose = ""
        self.row = self.cell = self.number = self.into = None
        self.in_data = self.in_heading = False
        self.feed(html)

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "p":
            self.into = None if attributes.get("class") in ("caption", "contents") else "p"
        elif tag == "table" and attributes.get("class") == "data":
            self.in_data, self.name = True, None
        elif tag == "tr" and self.in_data:
            self.row = []
        elif tag in ("td", "th") and self.in_data:
            self.cell, self.number = "", attributes.get("data-value")
        elif tag == "br" and self.cell is not None:
            self.cell += " "
        elif tag == "span" and attributes.get("class") == "value":
            self.values.append([float(attributes["data-value"]), ""])
            self.into = "value"
        elif tag == "img":
            assert attributes["src"].startswith("data:image/png;base64,iVBOR"), attributes["src"][:60]
            self.images.append(attributes["alt"])
        elif tag == "div":
            self.ids.append(attributes["id"])
        elif tag in ("h1", "h2", "h3", "title", "style", "a"):
            self.in_heading = True

    def handle_endtag(self, tag):
        if tag in ("h1", "h2", "h3", "title", "style", "a"):
            self.in_heading = False
        elif tag == "span":
            self.into = "p"
        elif tag == "p":
            self.into = None
        elif tag == "table":
            self.in_data = False
        elif tag in ("td", "th") and self.cell is not None:
            if tag == "th" and self.name is None:
                self.name = re.fullmatch(r"Table \d+\. (.*)", self.cell).group(1)
                assert self.name not in self.tables, f"two tables \"{self.name}\""
                self.tables[self.name] = {"heads": [], "rows": []}
            elif tag == "th":
                self.tables[self.name]["heads"].append(self.cell)
            else:
                self.row.append((self.cell, None if self.number is None else float(self.number)))
            self.cell = None
        elif tag == "tr" and self.in_data and self.row:
            self.tables[self.name]["rows"].append(self.row)

    def handle_data(self, data):
        if self.cell is not None:
            self.cell += data
        elif self.into == "value":
            self.values[-1][1] += data
        elif self.into == "p" and not self.in_heading:
            self.loose += data


def shows(text: str, number: float) -> bool:
    """The text is the number rounded to the digits that it has."""
    mantissa, _, exponent = text.upper().partition("E")
    decimals = len(mantissa.partition(".")[2])
    unit = 10.0 ** (int(exponent or 0) - decimals)
    return abs(float(text) - number) <= 0.5000001 * unit + 1e-14 * abs(number)


def ring_measures(points):
    x0, y0 = points[0]
    twice = length = 0.0
    for (ax, ay), (bx, by) in zip(points, points[1:] + points[:1]):
        twice += (ax - x0) * (by - y0) - (bx - x0) * (ay - y0)
        length += math.hypot(bx - ax, by - ay)
    return abs(twice) / 2, length


class Expected:
    """The rows that the store gives for each table of the standard report, by caption."""

    def __init__(self, path: Path):
        self.db = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
        self.path = path

    def rows(self, sql, *parameters):
        return [list(row) for row in self.db.execute(sql, parameters)]

    def zones(self):
        found = []
        wells = {row[0] for row in self.rows("select Label from Wells")}
        for label, pid in self.rows("select Label,PID from Capzones order by Label"):
            points = self.rows("select X,Y from Vertices where PID=? order by Seq", pid)
            area, length = ring_measures(points)
            xs, ys = [p[0] for p in points], [p[1] for p in points]
            match = re.fullmatch(r"(.*) ([\d.]+) years?", label)
            well = match.group(1) if match and match.group(1) in wells else None
            found.append((label, well, float(match.group(2)) if well else None, area, length, xs, ys))
        return found

    def zone_rows(self):
        return [
            [label, well, years, area, length, max(xs) - min(xs), max(ys) - min(ys), len(xs)]
            for label, well, years, area, length, xs, ys in self.zones()
        ]

    def zone_checks(self):
        if not self.rows("select 1 from sqlite_master where name='Zones'"):
            return [], []
        rows = self.rows(
            "select c.Label,Tolerance,Balance,Shared,Ends,Made,Pores,Recharge,Surface,Edge,LeftOut,Pumped"
            " from Zones z join Capzones c using(PID) order by c.Label")
        return ([[r[0], 100 * r[1], 100 * r[2], *r[3:6]] for r in rows],
                [[r[0], *(100 * share / r[11] for share in r[6:11])] for r in rows])

    def zone_places(self):
        return [[z[0], min(z[5]), max(z[5]), min(z[6]), max(z[6])] for z in self.zones()]

    def zone_wells(self):
        labels = [z[0] for z in self.zones()]
        rows = self.rows(
            "select w.Label,v.X,v.Y,w.Radius,r.Discharge from Wells w join Vertices v using(VID) join WLResults r"
            " on r.VadoxLabel=printf('WL_%06d',w.VID) order by w.Label"
        )
        return [row for row in rows if any(label.startswith(row[0] + " ") for label in labels)]

    def areas(self):
        found = []
        for row in self.rows(
            "select Well,Type,Radius,TimeOfTravel,Porosity,Thickness,AmbientFlow,Direction,T from WHPAs"
        ):
            well, kind, radius, days, porosity, thickness, ambient, direction, t = row
            rate = self.rows("select Head from Wells where Label=?", well)[0][0]
            area = math.pi * radius**2
            if kind == 1:
                found.append([well, "arbitrary radius", radius, area] + [None] * 8)
                continue
            assert kind == 2 and 0.1 < t < 1, "the test makes an eccentric circle"
            shift = (0.652 * t + 0.00278) * rate / (2 * math.pi * ambient)
            found.append([well, "eccentric circle", radius, area, shift, t, days, rate, porosity, thickness, ambient,
                          direction])
        return found

    def strings(self):
        found = {}
        for label, name, x1, y1, x2, y2, discharge, head, error in self.rows(
            "select VadoxLabel,Label,X1,Y1,X2,Y2,Discharge,CalculatedHead,Error from LSResults order by VadoxLabel"
        ):
            row = found.setdefault(label[:9], [name, 0, 0.0, 0.0, head, head, 0.0])
            row[1] += 1
            row[2] += math.hypot(x2 - x1, y2 - y1)
            row[3] += discharge
            row[4:] = [min(row[4], head), max(row[5], head), max(row[6], abs(error))]
        return list(found.values())

    def domains(self):
        found = {}
        for label, name, area, k, base, extraction, porosity, a, b in self.rows(
            "select VadoxLabel,Label,DomainArea,Conductivity,BottomElev,ExtractRate,Porosity,DeltaPNode,DeltaPCntr"
            " from INResults order by VadoxLabel"
        ):
            row = found.setdefault(label[:9], [name, 0, area, k, base, -extraction, porosity, 0.0])
            row[1] += 1
            row[7] = max(row[7], abs(a), abs(b))
        return list(found.values())

    def conditions(self):
        unit = "m" if self.rows("select ComputeMeters from Model")[0][0] else "ft"
        found = []
        for name, of, table, field, where in (
            ("head or bed of line-sinks, along each segment", unit, "LSResults", "Error", "SpecifiedHead<>-999"),
            ("head on both sides of domains, at vertices", unit, "INResults", "DeltaPNode", "1"),
            ("head on both sides of domains, between vertices", unit, "INResults", "DeltaPCntr", "1"),
            ("flow through barriers, at vertices", "", "NFResults", "DeltaFlowNode", "1"),
            ("flow through barriers, between vertices", "", "NFResults", "DeltaFlowCntr", "1"),
        ):
            errors = self.rows(f"select abs({field}),Label from {table} where {where}")
            if errors:
                largest = max(e[0] for e in errors)
                found.append([name, len(errors), largest, of, next(e[1] for e in errors if e[0] == largest)])
        return found

    def listing(self, heading):
        text = (self.path.with_suffix(".OUT")).read_text(encoding="utf-8")
        section = text.split(heading, 1)[1].splitlines()[1:]
        for line in section:
            if not line.startswith("  "):
                break
            yield line.strip()

    def balance(self):
        rows = [re.fullmatch(r"(.*?)\s+(\S+)", line).groups() for line in self.listing("Water balance")]
        return [[name, float(value)] for name, value in rows if name != "error over throughflow"]

    def errors(self):
        found = []
        for line in self.listing("Largest errors"):
            match = re.fullmatch(r"(.*?)\s+([\d.E+-]+)(?: at (\S+))?", line)
            if not match or line.startswith("for comparison"):
                continue
            where = match.group(3)
            if where:
                table = {"LS": "LinesinkStrings", "IN": "Inhomogeneities", "HB": "NoFlowStrings"}[where[:2]]
                where = self.rows(f"select Label from {table} where PID=?", int(where[3:9]))[0][0]
            found.append([match.group(1), float(match.group(2)), where])
        return found

    def statistics(self):
        unit = "m" if self.rows("select ComputeMeters from Model")[0][0] else "ft"
        rows = self.rows("select ObsHead,ModelHead from TPResults")
        d = sorted(o - m for o, m in rows)
        n = len(d)
        rms = math.sqrt(sum(x * x for x in d) / n)
        observed = [o for o, _ in rows]
        spread = max(observed) - min(observed)
        mean = sum(observed) / n
        middle = d[n // 2] if n % 2 else (d[n // 2] + d[n // 2 - 1]) / 2
        fit = 1 - sum(x * x for x in d) / sum((o - mean) ** 2 for o in observed)
        return [
            ["Observations", n, ""],
            ["Maximum difference", d[-1], unit],
            ["Minimum difference", d[0], unit],
            ["Average difference", sum(d) / n, unit],
            ["Median difference", middle, unit],
            ["Mean absolute difference", sum(map(abs, d)) / n, unit],
            ["Root-mean-square difference", rms, unit],
            ["Range of the observed heads", spread, unit],
            ["Root-mean-square difference over that range", 100 * rms / spread, "%"],
            ["Coefficient of determination", fit, ""],
        ]

    def flows(self):
        found = []
        for kind, table in (("linesink string", "LinesinkStrings"), ("flux inspection line", "FluxInspect")):
            for label, pid, observed in self.rows(
                f"select Label,PID,ObsDischarge from {table} join Polygons using(PID) where ObsDischarge is not null"
            ):
                if table == "FluxInspect":
                    modelled = self.rows("select TotalFlux from FIResults where PID=?", pid)[0][0]
                else:
                    modelled = self.rows(
                        "select sum(Discharge) from LSResults where VadoxLabel like ?", f"LS_{pid:06d}_%"
                    )[0][0]
                found.append([label, kind, observed, modelled, observed - modelled])
        return sorted(found, key=lambda row: row[0].lower())

    def coordinates(self, kinds):
        """Rows of element, label, count of vertices and coordinates."""
        found = []
        for name, table in kinds:
            rings = {}
            for pid, label, x, y in self.rows(
                    f"select e.PID,e.Label,v.X,v.Y from {table} e join Vertices v using(PID) order by e.Label,e.PID,v.Seq"):
                rings.setdefault((label, pid), []).extend((x, y))
            found += [[name, label, len(ring) // 2, tuple(ring)] for (label, _), ring in rings.items()]
        return found

    def element_places(self):
        return self.coordinates((
            ("linesink string", "LinesinkStrings"),
            ("barrier", "NoFlowStrings"),
            ("inhomogeneity", "Inhomogeneities"),
            ("flux inspection line", "FluxInspect"),
        ))

    def outlines(self):
        return [row[1:] for row in self.coordinates((("capture zone", "Capzones"),))]

    def warnings(self):
        log = self.path.parent / "ERROR.LOG"
        lines = log.read_text(encoding="utf-8").splitlines() if log.exists() else []
        return [[line.strip()] for line in lines if line.strip() not in ("", "*")]

    def elements(self):
        r = self.rows
        place = "{0} w join Vertices v using(VID)"
        return {
            "Uniform flow": r("select UNIFLOWRefX,UNIFLOWRefY,UNIFLOWRefHead,UNIFLOWGradient,UNIFLOWOrientation"
                              " from Model where UNIFLOWCompute<>0"),
            "Solution, contours and tracing": r(
                "select SOLVERIterations,CONTOURMinimum,CONTOURMaximum,CONTOURInterval,CONTOURLevel,TRACEStep,"
                "TRACEMaxTime from Model"),
            "Wells of given discharge, positive out of the aquifer": r(
                "select w.Label,v.X,v.Y,Head,Radius,Setback,NParticles,StartElev from " + place.format("Wells") +
                " where HeadSpecified=0 and Pond=0 order by w.Label"),
            "Linesink strings of given head": r(
                "select Label,iif(Drain,'drain',iif(Farfield,'far field',iif(Routing,'routed','stream or lake'))),"
                "StartingHead,EndingHead,Resistance,Width,Depth,case AutoSWIZC when 1 then 'centreline' when 2 then"
                " 'water''s edge' else 'unknown' end from LinesinkStrings where HeadSpecified<>0"
                " order by Label collate nocase"),
            "Inhomogeneities; what is empty is as around them": r(
                "select Label,iif(ChangeK,HydCond,null),iif(ChangeB,BottomElevation,null),iif(ChangeP,Porosity,null),"
                "iif(ChangeR,Recharge,null),iif(ChangeA,AverageHead,null) from Inhomogeneities order by Label"),
            "Barriers": r(
                "select Label,case Closed when 0 then 'open' when 3 then 'closed, ignores outside' end,HydCond,"
                "Thickness,Porosity,'full depth' from NoFlowStrings order by Label"),
            "Test points": r("select w.Label,v.X,v.Y,ObsHead from " + place.format("TestPoints") + " order by w.Label"),
            "Flux inspection lines": r(
                "select Label,(select count(*) from Vertices v where v.PID=f.PID) from FluxInspect f order by Label"),
            "Wells": r("select Label,Discharge,Head from WLResults order by Label"),
            "Flux inspection lines, positive from left to right": r(
                "select f.Label,TotalFlux from FIResults join FluxInspect f using(PID) order by f.Label"),
            "Test points by difference": r(
                "select Label,X,Y,ObsHead,ModelHead,Difference from TPResults order by Difference"),
        }

    def all(self):
        return {
            **self.elements(),
            "Capture zones": self.zone_rows(),
            "How the zones were outlined: errors, and where the paths ended": self.zone_checks()[0],
            "Where the water of these zones came from, in shares of the pumped volume": self.zone_checks()[1],
            "Where the capture zones lie": self.zone_places(),
            "Wells whose water the zones lead to": self.zone_wells(),
            "Areas around their wells": [row[:6] for row in self.areas()],
            "Inputs of their formulas": [row[:2] + row[6:7] + [None] + row[7:] for row in self.areas()],
            "Linesink strings, discharge positive out of the aquifer": self.strings(),
            "Inhomogeneities": self.domains(),
            "At the places of the results": self.conditions(),
            "The whole model, positive where water leaves the aquifer": self.balance(),
            "Between the control points, as the solver found them": self.errors(),
            "Differences of heads, observed less modeled": self.statistics(),
            "Observed discharges": self.flows(),
            "Vertices of strings, domains and lines in their order, as x y in the map's unit": self.element_places(),
            "Vertices of the zones, counter-clockwise, as x y in the map's unit": self.outlines(),
            "Messages": self.warnings(),
        }


def compare_table(name, table, expected):
    rows = table["rows"]
    assert len(rows) == len(expected), f"{name}: {len(rows)} rows, {len(expected)} expected"
    numbers = 0
    for row, wanted in zip(rows, expected):
        assert len(row) == len(wanted), f"{name}: {row} against {wanted}"
        for (text, number), value in zip(row, wanted):
            if value is None:
                assert text == "" and number is None, f"{name}: {text} where nothing is expected"
            elif isinstance(value, str):
                assert text == value, f"{name}: {text!r} against {value!r}"
            elif isinstance(value, tuple):  # coordinates to two decimals
                shown = tuple(float(part) for part in text.replace(";", "").split())
                assert len(shown) == len(value), f"{name}: {len(shown)} coordinates, not {len(value)}"
                assert all(abs(a - b) < 0.00501 for a, b in zip(shown, value)), f"{name}: {text} against {value}"
                numbers += len(value)
            else:
                numbers += 1
                assert number is not None, f"{name}: no number {value} but {text!r}"
                assert math.isclose(number, value, rel_tol=1e-9, abs_tol=1e-9), f"{name}: {number} against {value}"
                assert shows(text, number), f"{name}: {text} does not show {number}"
    return numbers


def check_html(html: str, expected: Expected) -> int:
    report = Report(html)
    wanted = expected.all()
    numbers = 0
    for name, table in report.tables.items():
        assert name in wanted, f"nobody checks the table \"{name}\""
        numbers += compare_table(name, table, wanted[name])
    missing = [name for name, rows in wanted.items() if rows and name not in report.tables]
    assert not missing, missing
    model = expected.rows("select AQBase,AQThickness,AQHydCond,AQPorosity,AQRecharge from Model")[0]
    values = [float(v) for v in model]
    shown = [number for number, _ in report.values]
    assert shown[:5] == values, f"{shown} against {values}"
    for number, text in report.values:
        assert shows(text, number), f"{text} does not show {number}"
    # What is left in the running text holds no number but those of the title page.
    loose = re.sub(r"\d{4}-\d\d-\d\d \d\d:\d\d|Ormel \d+\.\d+\.\d+", "", report.loose)
    assert not re.search(r"\d", loose), re.search(r".{30}\d.{30}", loose, re.S)
    unit = "m" if expected.rows("select ComputeMeters from Model")[0][0] else "ft"
    assert report.tables["Wells"]["heads"] == ["Well", f"Discharge [{unit}3/day]", f"Head at the radius [{unit}]"]
    assert len(report.images) >= 4, report.images
    return numbers + len(report.values)


def check_pdf(path: Path, vertices: int):
    text = subprocess.run(["pdftotext", "-layout", str(path), "-"], capture_output=True, text=True, check=True).stdout
    pages = text.split("\f")[:-1]
    # Nothing is lost between the pages: each heading of the contents, and each table and figure in its turn.
    contents = [(n, h.strip()) for n, h in re.findall(r"^\s*(\d+)\s+(\S.*)$", pages[0].split("Contents")[1], re.M)]
    assert len(contents) >= 12, contents
    for number, heading in contents:
        found = sum(len(re.findall(rf"^\s*{number}\s+{re.escape(heading)}\s*$", page, re.M)) for page in pages)
        assert found >= 2, f"the heading {number} {heading} is in the contents only"
    for kind, least in (("Table", 20), ("Figure", 5)):
        numbers = {int(n) for n in re.findall(rf"{kind} (\d+)\.", text)}
        assert numbers == set(range(1, len(numbers) + 1)) and len(numbers) >= least, (kind, numbers)
    for number, page in enumerate(pages, 1):
        assert re.search(rf"\b{number} / {len(pages)}\b", page), f"page {number} has no number"
    # The outlines are longer than a page: each page of them has the heads of its columns, and no vertex is lost.
    pair = re.compile(r"-?\d+(?:\.\d+)? -?\d+(?:\.\d+)?;")
    long_pages = [page for page in pages if len(pair.findall(page)) > 100]
    assert len(long_pages) > 1, "the table of outlines does not break"
    for page in long_pages:
        assert re.search(r"Vertices\s+Coordinates", page), page[:300]
    assert sum(len(pair.findall(" ".join(page.split()))) for page in pages) >= vertices


def main() -> int:
    examples, programs = Path(sys.argv[1]), Path(sys.argv[2])
    cases = {
        "example": ["Meadow", "River, town reach=-350", "Bank, town reach=120.5"],
        "basin and range": ["Ranch", "Playa=250000"],
    }
    with tempfile.TemporaryDirectory(prefix="ormel report ") as folder:
        for name, (well, *observed) in cases.items():
            home = Path(folder) / name
            home.mkdir()
            project = home / f"{name}.orm"
            shutil.copy(examples / f"{name}.orm", project)

            def do(*arguments):
                done = subprocess.run([str(programs / "ormelcmd"), *map(str, arguments)], cwd=home,
                                      capture_output=True, text=True, timeout=240)
                assert done.returncode == 0, f"{arguments}\n{done.stdout}\n{done.stderr}"

            do("whpa", "arbitrary", project, "--well", well, "--radius", "250")
            do("whpa", "calculated", project, "--well", well, "--time", "730", "--porosity", "0.2", "--thickness",
               "20", "--ambient", "0.4" if name == "example" else "6", "--direction", "15")
            do("solve", "--yes", project)
            do("whpa", "outline", project, "--well", well, "--years", "2", "5")
            do("observe", project, *observed)
            do("report", "--with", "outlines", project, "report.html")
            do("report", "--with", "outlines", project, "report.pdf")
            expected = Expected(project)
            numbers = check_html((home / "report.html").read_text(encoding="utf-8"), expected)
            assert numbers > 400, f"only {numbers} numbers were compared"
            check_pdf(home / "report.pdf", sum(row[-2] - 1 for row in expected.element_places() + expected.outlines()))
            expected.db.close()
            print(f"{name}: {numbers} numbers equal the store's")
    return 0


if __name__ == "__main__":
    sys.exit(main())

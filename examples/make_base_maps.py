#!/usr/bin/env python3
"""Makes the base maps of the two examples, which are drawn from nothing but the numbers below and free for any use.

    examples/make_base_maps.py [folder]        default: the folder of this script

town_water.bbm, town_streets.bbm, town_fields.bbm: river, streets with a railway, and field boundaries [m, tenths].
basin.tif, basin.tfw: shaded relief of the basin and its ranges [ft], grey, 8 bits, lit from the north-west.
"""
import math
import random
import struct
import sys
from pathlib import Path

LINE, AREA = 0x7F01, 0x7F02
MULTIPLIER = 10

RIVER = [(-1500, 1620), (-800, 1430), (-200, 1260), (250, 1180), (700, 1020), (1150, 960), (1600, 1010), (2050, 940),
         (2450, 760), (2900, 700), (3350, 790), (3800, 730), (4200, 590), (4650, 560), (5100, 660), (5550, 600),
         (6050, 420), (6700, 330), (7500, 240)]


def offset(line, distance):
    """The line moved to its left."""
    out = []
    for i, (x, y) in enumerate(line):
        (x1, y1), (x2, y2) = line[max(i - 1, 0)], line[min(i + 1, len(line) - 1)]
        length = math.hypot(x2 - x1, y2 - y1)
        out.append((x - (y2 - y1) / length * distance, y + (x2 - x1) / length * distance))
    return out


class Map:
    def __init__(self, title, description):
        self.title, self.description, self.lines, self.areas = title, description, [], []

    def line(self, points, *attributes):
        self.lines.append(([(round(x * MULTIPLIER), round(y * MULTIPLIER)) for x, y in points], attributes))
        return len(self.lines)

    def area(self, references, *attributes):
        self.areas.append((references, attributes))

    def write(self, path):
        body = b""
        for number, (points, attributes) in enumerate(self.lines, 1):
            xs, ys = [p[0] for p in points], [p[1] for p in points]
            body += struct.pack("<9i", LINE, number, 0, len(attributes), len(points), min(xs), min(ys), max(xs), max(ys))
            body += b"".join(struct.pack("<2i", *a) for a in attributes)
            body += b"".join(struct.pack("<2i", *p) for p in points)
        for number, (references, attributes) in enumerate(self.areas, 1):
            body += struct.pack("<5i", AREA, number, 0, len(attributes), len(references))
            body += b"".join(struct.pack("<2i", *a) for a in attributes)
            body += struct.pack(f"<{len(references)}i", *references)
        xs = [p[0] for points, _ in self.lines for p in points]
        ys = [p[1] for points, _ in self.lines for p in points]
        header = b"*BBM" + struct.pack("<3i", 1, 0, 2)
        for text in (self.title, "made by examples/make_base_maps.py", self.description):
            header += text.encode().ljust(80)
        header += struct.pack("<10i", -100000, 0, MULTIPLIER, 0, len(self.lines), len(self.areas),
                              min(xs), min(ys), max(xs), max(ys))
        path.write_bytes(header + body)


def river(path):
    water = Map("River of a small town", "HYDROGRAPHY")
    north, south = water.line(offset(RIVER, 14), (50, 412)), water.line(offset(RIVER, -14), (50, 412))
    ends = [(offset(RIVER, side)[at]) for at in (-1, 0) for side in (14, -14)]
    east, west = water.line(ends[:2], (50, 605)), water.line(ends[2:], (50, 605))
    water.area([north, east, -south, -west], (50, 101))
    water.write(path)


def town(path):
    streets = Map("Streets of a small town", "ROADS AND RAILWAY")
    main = [(-900, 1900), (300, 1650), (1200, 1480), (2300, 1380), (3300, 1330), (4300, 1250), (5200, 1180), (6900, 1000)]
    streets.line(main, (170, 203), (173, 6))
    streets.line([(2300, 4700), (2350, 3200), (2280, 2300), (2300, 1380), (2380, 790), (2500, -100), (2450, -900)],
                 (170, 205), (174, 31))
    streets.line([(4300, 1250), (4420, 2100), (5000, 2700), (6900, 3300)], (170, 206), (176, 12))
    streets.line([(-900, 2600), (800, 2420), (2300, 2320), (3600, 2500), (4420, 2100)], (170, 208))
    streets.line([(-900, 330), (1500, 420), (3600, 250), (6900, -250)], (180, 201))
    for k in range(9):  # the town's blocks
        x = 2420 + 190 * k
        streets.line([(x, 1375 - 14 * k), (x + 40, 1880), (x + 20, 2280)], (170, 210))
    for y in (1560, 1740, 1920, 2100):
        streets.line([(2300, y), (3100, y - 25), (4020, y - 60)], (170, 211))
    streets.write(path)


def fields(path):
    boundaries = Map("Fields around a small town", "MISC")
    draw = random.Random(4)
    for row in range(6):  # fields north of the town
        y = 2750 + 310 * row
        boundaries.line([(x, y + 40 * math.sin(x / 900.0)) for x in range(-900, 6901, 300)], (190, 201))
        for x in range(-900, 6901, 520):
            shift = draw.uniform(-120, 120)
            boundaries.line([(x + shift, y + 40 * math.sin(x / 900.0)), (x + shift + 60, y + 310)], (190, 201))
    boundaries.write(path)


def height(x, y):
    """Feet above the basin's floor at a place in feet: ranges around an oval, with ridges and fans."""
    across, along = (x - 29500) / 27500, (y - 20000) / 15500
    out = math.hypot(across, along)
    rise = 2600 * max(0.0, out - 0.78) ** 1.3
    ridges = 1 + 0.35 * math.sin(x / 1900 + 1.3 * math.sin(y / 2300)) + 0.25 * math.sin((x + 2 * y) / 1100)
    floor = 45 * math.sin(x / 5200) * math.sin(y / 4100) - 60 * math.exp(-((x - 44500) / 6000) ** 2 - ((y - 23500) / 5000) ** 2)
    return rise * ridges + floor


def basin(path, cell=150.0):
    left, top, width, rows = 0.0, 40500.0, 407, 267
    pixels = bytearray()
    for row in range(rows):
        for column in range(width):
            x, y = left + (column + 0.5) * cell, top - (row + 0.5) * cell
            dx = 2.5 * (height(x + cell, y) - height(x - cell, y)) / (2 * cell)
            dy = 2.5 * (height(x, y + cell) - height(x, y - cell)) / (2 * cell)
            light = (0.5 * (dx - dy) + math.sqrt(0.5)) / math.sqrt(1 + dx * dx + dy * dy)
            pixels.append(max(0, min(255, round(60 + 190 * max(0.0, light)))))
    tags = [(256, 3, width), (257, 3, rows), (258, 3, 8), (259, 3, 1), (262, 3, 1), (273, 4, 8), (277, 3, 1),
            (278, 3, rows), (279, 4, len(pixels))]
    directory = struct.pack("<H", len(tags))
    for tag, kind, value in tags:
        directory += struct.pack("<HHI", tag, kind, 1)
        directory += struct.pack("<I", value) if kind == 4 else struct.pack("<HH", value, 0)
    padding = b"\0" * (len(pixels) % 2)
    path.write_bytes(b"II*\0" + struct.pack("<I", 8 + len(pixels) + len(padding)) + bytes(pixels) + padding + directory +
                     struct.pack("<I", 0))
    world = [cell, 0, 0, -cell, left + cell / 2, top - cell / 2]
    path.with_suffix(".tfw").write_text("".join(f"{value:<24g}\r\n" for value in world), newline="")


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).parent
    river(folder / "town_water.bbm")
    town(folder / "town_streets.bbm")
    fields(folder / "town_fields.bbm")
    basin(folder / "basin.tif")


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Writes what a run of the bench has measured into the documents.

usage: ./dev bench --json RUN && ./dev bench --docs RUN

Makes docs/speed.md and docs/images/growth.svg anew, and the table in README.md between its marks.
"""

import json
import math
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BEGIN, END = "<!-- speed -->\n", "<!-- end of speed -->\n"

SUBJECTS = {
    "obj": "OBJ file to arrays",
    "import": "OBJ file to finished mesh",
    "lwo": "LightWave file to finished mesh",
    "normals": "Vertex normals, with sums by group",
    "triangulation": "Polygons to triangles",
    "neighbours": "Neighbours",
    "smoothing": "Smooth normals, up to 30 degrees",
    "memory": "Memory of a finished mesh, in bytes per vertex and polygon",
    "rays": "Rays, through Embree's tree over primitives",
    "sampling": "One fragment each, at random places",
    "hash": "Content key",
    "set": "Filling a mesh from arrays, as a whole",
    "threads": "Render queries on two threads",
    "growth": "Growth: the exponent of time over size",
}

HEAD = """# Speed

{run}.

`./dev bench` measures this anew anywhere: it installs the libraries to compare with, makes the
inputs, and checks that the results agree. Both sides take turns in one process, on the same input in
memory or in the file cache, with the same compiler flags (libraries that are not headers alone are
as Debian builds them). Times are of the processor, on one thread, unless said otherwise. Measured is
the other's time over ours, or ours over the other's where the bar is an upper one: the median, and
the quartiles of either side against each other. Where results disagree, no bar is held.

This run is kept in `bench/baseline/`; `./dev bench --against` its file tells what has changed since.

"""

COLORS = ["#c0392b", "#2471a3", "#1e8449", "#b7950b", "#7d3c98"]


def show(number):
    return f"{number:.3g}" if number < 100 else f"{number:.0f}"


def show_time(seconds):
    for unit, size in (("s", 1), ("ms", 1e-3)):
        if seconds >= size:
            return f"{show(seconds / size)} {unit}"
    return f"{show(seconds / 1e-6)} us"


def describe(run):
    kind = ", a short run of smaller inputs" if run.get("short") else ""
    return f"{run['machine']}, {run['date']}{kind}"


def get_rows(run):
    """Subject, name, against, result, what became of its bar, and our time and theirs if any."""
    for row in run["rows"]:
        subject, name = row["name"].split("/")
        times = {side["name"]: side["seconds"][1] for side in row.get("sides") or []}
        for result in row.get("results") or []:
            other = times.get(result["against"])
            both = f"{show_time(times['ours'])} / {show_time(other)}" if other else ""
            verdict = {True: "held", False: "missed", None: ""}[result.get("held")]
            if verdict and row.get("disagreements"):
                verdict = "disagrees"
            yield subject, name, result["against"], result, verdict, both


def make_table(run):
    lines = []
    last = None
    for subject, name, against, result, verdict, times in get_rows(run):
        if subject != last:
            lines += ["", f"## {SUBJECTS[subject]}", "",
                      "| input | against | measured | quartiles | bar | | ours / theirs |",
                      "|---|---|---|---|---|---|---|"]
            last = subject
        low, median, high = result["value"]
        spread = f"{show(low)} - {show(high)}" if low < high else ""
        lines.append(f"| {name} | {against} | {show(median)} | {spread} | "
                     f"{result.get('bar', '')} | {verdict} | {times} |")
    return "\n".join(lines[1:]) + "\n"


class Plot:
    """Time over size, both in powers of ten."""

    WIDTH, HEIGHT, LEFT, BOTTOM, TOP, RIGHT = 760, 460, 70, 50, 20, 130

    def __init__(self, curves):
        points = [p for curve in curves.values() for p in curve]
        self.x = [f(math.log10(p[0])) for f, p in ((math.floor, min(points)), (math.ceil, max(points)))]
        times = [math.log10(p[1]) for p in points]
        self.y = [math.floor(min(times)), math.ceil(max(times))]
        self.parts = []
        self.draw_grid()
        self.labels = []
        for color, (name, curve) in zip(COLORS, curves.items()):
            self.draw_curve(color, name, curve)
        self.draw_labels()

    def place(self, x, y):
        width = self.WIDTH - self.LEFT - self.RIGHT
        height = self.HEIGHT - self.TOP - self.BOTTOM
        return (self.LEFT + width * (x - self.x[0]) / (self.x[1] - self.x[0]),
                self.HEIGHT - self.BOTTOM - height * (y - self.y[0]) / (self.y[1] - self.y[0]))

    def line(self, a, b, style):
        self.parts.append(f'<line x1="{a[0]:.1f}" y1="{a[1]:.1f}" x2="{b[0]:.1f}" y2="{b[1]:.1f}" '
                          f'{style}/>')

    def text(self, x, y, text, anchor="middle", fill="#333"):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{fill}">'
                          f"{text}</text>")

    def draw_grid(self):
        grid, slope = 'stroke="#ddd"', 'stroke="#bbb" stroke-dasharray="4 4"'
        for x in range(self.x[0], self.x[1] + 1):
            self.line(self.place(x, self.y[0]), self.place(x, self.y[1]), grid)
            self.text(self.place(x, 0)[0], self.HEIGHT - self.BOTTOM + 20, f"{10 ** x:,}")
        for y in range(self.y[0], self.y[1] + 1):
            self.line(self.place(self.x[0], y), self.place(self.x[1], y), grid)
            self.text(self.LEFT - 8, self.place(0, y)[1] + 5, show_time(10.0 ** y * 1.0001), "end")
        for start in range(self.y[0] - self.x[1] + self.x[0] + 1, self.y[1]):
            low = max(0, self.y[0] - start)
            high = min(self.x[1] - self.x[0], self.y[1] - start)
            self.line(self.place(self.x[0] + low, start + low),
                      self.place(self.x[0] + high, start + high), slope)
        self.text((self.LEFT + self.WIDTH - self.RIGHT) / 2, self.HEIGHT - 8,
                  "corners; dashed: linear growth")

    def draw_curve(self, color, name, curve):
        places = [self.place(math.log10(size), math.log10(time)) for size, time in curve]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
        self.parts.append(f'<polyline points="{path}" fill="none" stroke="{color}" '
                          'stroke-width="2"/>')
        for x, y in places:
            self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.5" fill="{color}"/>')
        self.labels.append((places[-1][1] + 5, places[-1][0] + 10, name, color))

    def draw_labels(self):
        """From the top down, none over another."""
        lowest = 0
        for y, x, name, color in sorted(self.labels):
            lowest = max(y, lowest + 15)
            self.text(x, lowest, name, "start", color)

    def get_svg(self):
        return "\n".join(
            [f'<svg xmlns="http://www.w3.org/2000/svg" width="{self.WIDTH}" '
             f'height="{self.HEIGHT}" font-family="sans-serif" font-size="13">',
             '<rect width="100%" height="100%" fill="white"/>', *self.parts, "</svg>", ""])


def get_curves(run):
    return {row["name"].split("/")[1]: [(s["size"], s["seconds"][1]) for s in row["sides"]]
            for row in run["rows"] if row["name"].startswith("growth/")}


# Of all rows, those that the README shows: input, peer, and what it tells.
SHORT_ROWS = [
    ("obj", "sphere", "tinyobjloader"), ("obj", "bunny", "tinyobjloader"),
    ("import", "terrain", "assimp"), ("import", "bunny", "assimp"),
    ("lwo", "terrain", "assimp"),
    ("normals", "sphere", "OpenMesh"), ("normals", "bunny", "OpenMesh"),
    ("triangulation", "128-star", "CGAL"), ("triangulation", "10000-comb", "CGAL"),
    ("neighbours", "sphere", "OpenMesh"), ("neighbours", "bunny", "meshoptimizer"),
    ("smoothing", "bunny", "assimp"),
    ("rays", "bunny", "plain callback"),
    ("hash", "sphere", "plain"),
    ("memory", "bunny", "of the best peer"),
]


def make_short_table(run):
    results = {row[:3]: row[3] for row in get_rows(run)}
    lines = ["| work | input | beside | ratio |", "|---|---|---|---|"]
    for key in SHORT_ROWS:
        if key in results:
            subject, name, against = key
            lines.append(f"| {SUBJECTS[subject]} | {name} | {against} | "
                         f"{show(results[key]['value'][1])} |")
    head = f"{describe(run)};\ntimes of the others over ours, and our share of memory.\n\n"
    return head + "\n".join(lines) + "\n"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    run = json.loads(pathlib.Path(sys.argv[1]).read_text())
    head = HEAD.format(run=describe(run))
    curves = get_curves(run)
    picture = "\n![Time over size](images/growth.svg)\n" if curves else ""
    (ROOT / "docs/speed.md").write_text(head + make_table(run) + picture)
    if curves:
        (ROOT / "docs/images/growth.svg").write_text(Plot(curves).get_svg())
    readme = ROOT / "README.md"
    before, rest = readme.read_text().split(BEGIN)
    readme.write_text(before + BEGIN + make_short_table(run) + END + rest.split(END)[1])


main()

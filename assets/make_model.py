#!/usr/bin/env python3
"""Writes rocket.obj, the model that is rendered when no file is named.

It is small and has a bit of everything that a polygon mesh can have: quads, triangles, polygons of
many corners, holes that are bridged into the polygon around them, uv seams, vertex colors and two
groups. Parts that meet at a sharp edge have vertices of their own there.

usage: make_model.py > rocket.obj
"""

import math

SEGMENTS = 28

CREAM = (0.95, 0.91, 0.82)
SAND = (0.80, 0.70, 0.56)
RED = (0.84, 0.24, 0.17)
WINE = (0.58, 0.12, 0.13)
STEEL = (0.42, 0.45, 0.50)
NIGHT = (0.13, 0.15, 0.20)
SKY = (0.47, 0.78, 0.92)
SEA = (0.10, 0.38, 0.62)


def mix(a, b, f):
    return tuple(x + (y - x) * f for x, y in zip(a, b))


class Model:
    def __init__(self):
        self.points = []
        self.uvs = []
        self.groups = {}

    def point(self, position, color):
        self.points.append((*position, *color))
        return len(self.points)

    def uv(self, u, v):
        self.uvs.append((u, v))
        return len(self.uvs)

    def face(self, group, corners):
        """`corners`: numbers of a point and a uv each, counter-clockwise from outside."""
        self.groups.setdefault(group, []).append(corners)

    def text(self):
        lines = ["# A toy rocket, 1 unit = 1 m, +y up. Written by make_model.py."]
        lines += ["v %.3f %.3f %.3f %.2f %.2f %.2f" % point for point in self.points]
        lines += ["vt %.3f %.3f" % uv for uv in self.uvs]
        for group, faces in self.groups.items():
            lines.append("usemtl " + group)
            lines += ["f " + " ".join("%d/%d" % corner for corner in face) for face in faces]
        return "\n".join(lines) + "\n"


def lathe(model, group, rows, frame, v_range, close_first=False, close_last=False):
    """Turns `rows`, each (radius, height, color), about the height axis of `frame`.

    Rows go up as seen with their outside to the right. A radius of 0 makes a tip. A closed end gets
    one polygon of all its corners.
    """
    rings = []
    for i, (radius, height, color) in enumerate(rows):
        v = v_range[0] + (v_range[1] - v_range[0]) * i / (len(rows) - 1)
        if radius == 0:
            tip = model.point(frame(0, height, 0), color)
            points = [tip] * (SEGMENTS + 1)
            uvs = [model.uv((j + 0.5) / SEGMENTS, v) for j in range(SEGMENTS)]
        else:
            angles = [2 * math.pi * j / SEGMENTS for j in range(SEGMENTS)]
            points = [
                model.point(frame(radius * math.sin(a), height, radius * math.cos(a)), color)
                for a in angles
            ]
            points.append(points[0])
            uvs = [model.uv(j / SEGMENTS, v) for j in range(SEGMENTS + 1)]
        rings.append((points, uvs, radius))
    for low, high in zip(rings, rings[1:]):
        for j in range(SEGMENTS):
            corners = [(low[0][j], low[1][j])]
            if low[2] > 0:
                corners.append((low[0][j + 1], low[1][j + 1]))
            if high[2] > 0:
                corners.append((high[0][j + 1], high[1][j + 1]))
            corners.append((high[0][j], high[1][j]))
            model.face(group, corners)
    if close_first:
        disc(model, group, rows[0], frame, -1)
    if close_last:
        disc(model, group, rows[-1], frame, 1)


def disc(model, group, row, frame, order):
    """One polygon that faces up, or down when `order` is -1."""
    radius, height, color = row
    corners = []
    for j in range(SEGMENTS):
        a = 2 * math.pi * j / SEGMENTS
        x, z = math.sin(a), math.cos(a)
        corners.append(
            (model.point(frame(radius * x, height, radius * z), color),
             model.uv(0.5 + 0.5 * x, 0.5 - 0.5 * z)))
    model.face(group, corners[::order])


def upright(x, y, z):
    return (x, y, z)


def hull_radius(f):
    """At the share `f` of the hull's height."""
    return 1.62 * (1 - f ** 1.9) * (0.60 + 0.40 * math.sin(min(f / 0.36, 1) * math.pi / 2))


HULL_LOW, HULL_HIGH = 1.25, 9.6


def hull_height(f):
    return HULL_LOW + (HULL_HIGH - HULL_LOW) * f


def add_hull(model):
    def row(f, color, more=0.0):
        radius = hull_radius(f)
        return (radius + more if radius > 1e-9 else 0, hull_height(f), color)

    def part(group, first, last, count, low, high, v_range, more=0.0):
        rows = []
        for i in range(count + 1):
            g = i / count
            rows.append(row(first + (last - first) * g, mix(low, high, g), more))
        lathe(model, group, rows, upright, v_range)

    part("body", 0.055, 0.665, 12, SAND, CREAM, (0.08, 0.66))
    part("trim", 0.70, 1.0, 7, RED, mix(RED, CREAM, 0.18), (0.72, 1.0))
    for low, high in ((0.0, 0.055), (0.665, 0.70)):
        rows = [row(low, NIGHT, -0.06), row(low, STEEL, 0.05), row(high, STEEL, 0.05),
                row(high, NIGHT, -0.06)]
        for a, b in zip(rows, rows[1:]):
            lathe(model, "trim", [a, b], upright, (low, high), close_first=a == rows[0] and low == 0)


def add_nozzle(model):
    outside = [(0.86, 0.62, STEEL), (0.72, 0.80, STEEL), (0.62, 1.02, STEEL), (0.58, 1.26, NIGHT)]
    inside = [(0.50, 1.10, NIGHT), (0.62, 0.85, NIGHT), (0.80, 0.62, STEEL)]
    lathe(model, "trim", outside, upright, (0.0, 0.05))
    lathe(model, "trim", inside, upright, (0.0, 0.05))
    lathe(model, "trim", [inside[-1], outside[0]], upright, (0.0, 0.01))
    disc(model, "trim", inside[0], upright, -1)


def curve(a, b, c, d, count):
    """`count` points of a cubic Bezier curve, without its last."""
    points = []
    for i in range(count):
        t = i / count
        w = ((1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3)
        points.append(tuple(sum(k * p[axis] for k, p in zip(w, (a, b, c, d))) for axis in (0, 1)))
    return points


def fin_outline():
    """Distance from the axis and height, counter-clockwise with distance to the right."""
    return (curve((0.70, 1.55), (1.55, 1.45), (2.30, 1.15), (2.62, 0.0), 10) + [(2.62, 0.0)] +
            curve((3.02, 0.0), (3.15, 2.10), (2.35, 3.10), (0.90, 4.55), 14) + [(0.90, 4.55)])


def fin_hole():
    """Clockwise, so that it can be bridged into the outline."""
    count, radius = 16, 0.36
    return [(2.02 - radius * math.cos(2 * math.pi * i / count),
             2.02 + radius * math.sin(2 * math.pi * i / count)) for i in range(count)]


def bridge(outline, hole):
    """One list of corners around both, by the shortest way from one to the other."""
    i, j = min(((i, j) for i in range(len(outline)) for j in range(len(hole))),
               key=lambda pair: math.dist(outline[pair[0]], hole[pair[1]]))
    return outline[:i + 1] + hole[j:] + hole[:j + 1] + outline[i:]


def add_fin(model, azimuth):
    side, ahead = math.sin(azimuth), math.cos(azimuth)
    outline, hole = fin_outline(), fin_hole()

    def place(d, y, thickness):
        return (side * d + ahead * thickness, y, ahead * d - side * thickness)

    def color(y):
        return mix(WINE, RED, min(y / 3.0, 1))

    for thickness, order in ((-0.09, 1), (0.09, -1)):
        numbers = {}
        corners = []
        for d, y in bridge(outline, hole):
            if (d, y) not in numbers:
                numbers[d, y] = (model.point(place(d, y, thickness), color(y)),
                                 model.uv(d / 5, y / 5))
            corners.append(numbers[d, y])
        model.face("trim", corners[::order])
    for loop in (outline, hole):
        add_rim(model, loop, place, color)


def add_rim(model, loop, place, color):
    rows = []
    for i, (d, y) in enumerate(loop + loop[:1]):
        points = rows[0][0] if i == len(loop) else [
            model.point(place(d, y, thickness), color(y)) for thickness in (-0.09, 0.09)]
        rows.append((points, [model.uv(i / len(loop), v) for v in (0, 0.04)]))
    for a, b in zip(rows, rows[1:]):
        model.face("trim", [(a[0][0], a[1][0]), (a[0][1], a[1][1]), (b[0][1], b[1][1]),
                            (b[0][0], b[1][0])])


def add_porthole(model, azimuth, f, size):
    radius = hull_radius(f)
    slope = (hull_radius(f + 0.01) - radius) / (hull_height(f + 0.01) - hull_height(f))
    side, ahead = math.sin(azimuth), math.cos(azimuth)
    length = math.hypot(1, slope)
    out = (side / length, -slope / length, ahead / length)
    across = (ahead, 0, -side)
    up = (out[1] * across[2] - out[2] * across[1], out[2] * across[0] - out[0] * across[2],
          out[0] * across[1] - out[1] * across[0])
    center = (side * radius, hull_height(f), ahead * radius)

    def frame(x, y, z):
        return tuple(c + size * (x * a + y * o - z * u)
                     for c, a, o, u in zip(center, across, out, up))

    ring = [(1.00, -0.45, STEEL), (1.00, 0.10, STEEL), (0.94, 0.19, STEEL), (0.82, 0.19, STEEL),
            (0.76, 0.12, STEEL), (0.76, 0.02, NIGHT)]
    lathe(model, "trim", ring, frame, (0.0, 0.1))
    glass = [(0.76, 0.04, SEA), (0.62, 0.09, mix(SEA, SKY, 0.35)), (0.42, 0.135, mix(SEA, SKY, 0.7)),
             (0.20, 0.155, SKY)]
    lathe(model, "body", glass, frame, (0.1, 0.2), close_last=True)


def main():
    model = Model()
    add_hull(model)
    add_nozzle(model)
    for third in range(3):
        add_fin(model, math.radians(-28 + 120 * third))
    add_porthole(model, math.radians(32), 0.50, 0.62)
    add_porthole(model, math.radians(32), 0.315, 0.34)
    print(model.text(), end="")


if __name__ == "__main__":
    main()

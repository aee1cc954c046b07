#!/usr/bin/env python3
"""Draws the picture of docs/data-model.md from the dump of a flat mesh.

usage: qzpoly dump assets/five_polygons.obj | draw_data_model.py > data-model.svg
"""

import json
import math
import sys

SCALE = 84
MARGIN = 40
TEXT_HEIGHT = 24
FILLS = ["#f3d9c6", "#cfe3f1", "#d8ecd0", "#f4ecc2", "#e3d8f0"]


class Picture:
    def __init__(self):
        self.parts = []

    def polygon(self, points, fill):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(
            f'<polygon points="{path}" fill="{fill}" stroke="#333" stroke-width="2"/>')

    def line(self, a, b):
        self.parts.append(
            f'<line x1="{a[0]:.1f}" y1="{a[1]:.1f}" x2="{b[0]:.1f}" y2="{b[1]:.1f}" '
            'stroke="#333" stroke-width="1.5" stroke-dasharray="5 4"/>')

    def text(self, x, y, text, color="#333", anchor="middle", weight="normal"):
        self.parts.append(
            f'<text x="{x:.1f}" y="{y:.1f}" fill="{color}" text-anchor="{anchor}" '
            f'font-weight="{weight}">{text}</text>')

    def write(self, width, height):
        print(f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height:.0f}" '
              'font-family="monospace" font-size="14">')
        print('<rect width="100%" height="100%" fill="white"/>')
        print("\n".join(self.parts))
        print("</svg>")


def toward(point, middle, distance):
    part = distance / math.dist(point, middle)
    return tuple(p + (m - p) * part for p, m in zip(point, middle))


def get_middle(points):
    return tuple(sum(values) / len(points) for values in zip(*points))


def get_primitive_corners(dump, primitive):
    """The corner ids of a primitive: the way that every query of the library goes."""
    info = dump["primitive_infos"][primitive]
    count = 4 if info & 1 else 3
    offset = dump["primitive_index_offsets"][primitive]
    places = range(offset, offset + count)
    return list(places) if info & 2 else [dump["triangle_indices"][i] for i in places]


def draw_mesh(picture, dump, places):
    corner_places = [places[vertex] for vertex in dump["polygon_vertex_indices"]]
    corner = 0
    for polygon, count in enumerate(dump["polygon_vertex_count"]):
        picture.polygon(corner_places[corner:corner + count], FILLS[polygon % len(FILLS)])
        corner += count
    middles = {}
    for primitive, info in enumerate(dump["primitive_infos"]):
        corners = get_primitive_corners(dump, primitive)
        points = [corner_places[c] for c in corners]
        middle = get_middle(points)
        for edge, corner in enumerate(corners):
            middles.setdefault(corner, []).append(middle)
            if not info >> 2 + edge & 1:
                picture.line(*sorted([points[edge], points[(edge + 1) % len(points)]]))
        picture.text(middle[0], middle[1] + 5, f"p{primitive}", "#c30", weight="bold")
    for corner, place in enumerate(corner_places):
        x, y = toward(place, get_middle(middles[corner]), 30)
        picture.text(x, y + 5, corner, "#07c")
    for vertex, (x, y) in enumerate(places):
        picture.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="10" fill="#333"/>')
        picture.text(x, y + 5, vertex, "white")


def draw_arrays(picture, dump, y):
    rows = [
        ("polygons", None, "#333"),
        ("polygon_vertex_count", "corners of each polygon", "#333"),
        ("polygon_shading_groups", "0 wall, 1 roof", "#333"),
        ("polygon_vertex_indices", "corner id (its place here) to vertex", "#07c"),
        ("primitives", None, "#333"),
        ("primitive_infos", "1 quad + 2 direct + 4 × visible edges", "#c30"),
        ("primitive_index_offsets", "direct: into polygon_vertex_indices; cut: into triangle_indices",
         "#c30"),
        ("triangle_indices", "corner ids of cut primitives", "#c30"),
        ("primitive_polygon_indices", "primitive to polygon", "#c30"),
    ]
    for name, note, color in rows:
        if note is None:
            y += TEXT_HEIGHT / 2
            picture.text(MARGIN, y, name, weight="bold", anchor="start")
        else:
            values = " ".join(str(value) for value in dump[name])
            picture.text(MARGIN, y, name, anchor="start")
            picture.text(MARGIN + 230, y, values, color, "start")
            picture.text(MARGIN + 230, y + 16, note, "#888", "start")
            y += 16
        y += TEXT_HEIGHT
    return y


def main():
    dump = json.load(sys.stdin)
    points = list(zip(dump["positions"][0::3], dump["positions"][1::3]))
    width = max(x for x, _ in points) * SCALE + 2 * MARGIN
    top = max(y for _, y in points)
    places = [(MARGIN + x * SCALE, MARGIN + (top - y) * SCALE) for x, y in points]
    picture = Picture()
    draw_mesh(picture, dump, places)
    height = draw_arrays(picture, dump, 2 * MARGIN + top * SCALE + TEXT_HEIGHT)
    picture.write(width, height)


main()

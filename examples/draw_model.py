#!/usr/bin/python3
"""Draws a model: soft daylight, colors by group, and a ground that it stands on.

usage: draw_model.py MODEL PICTURE.png [--size PIXELS] [--samples COUNT]
"""

import argparse
import struct
import zlib

import numpy

from qz_poly import NONE, Mesh

SKY = numpy.array([0.80, 0.88, 1.0])
GROUND = numpy.array([0.36, 0.34, 0.31])
COLORS = numpy.array([[0.86, 0.36, 0.27], [0.93, 0.90, 0.85], [0.27, 0.45, 0.67],
                      [0.88, 0.68, 0.26], [0.42, 0.62, 0.42]])


def add_ground(mesh):
    """The same mesh on a square, which is its last group."""
    (x, y, z), (x2, _, z2) = mesh.bounds
    reach = 20 * numpy.linalg.norm(mesh.bounds[1] - mesh.bounds[0])
    square = [[x - reach, y, z - reach], [x - reach, y, z2 + reach],
              [x2 + reach, y, z2 + reach], [x2 + reach, y, z - reach]]
    corners = numpy.arange(4) + mesh.vertex_count
    return Mesh(numpy.concatenate([mesh.positions, square]),
                numpy.concatenate([mesh.polygon_corners, corners]),
                numpy.append(mesh.polygon_corner_counts, 4),
                groups=numpy.append(mesh.polygon_groups, len(mesh.group_names)),
                group_names=mesh.group_names + ("ground",))


def make_rays(bounds, size, random):
    """Through a place in each pixel: origin and directions."""
    center = bounds.mean(axis=0)
    extent = numpy.linalg.norm(bounds[1] - bounds[0])
    forward = numpy.array([-0.5, -0.25, -1.0])
    forward /= numpy.linalg.norm(forward)
    right = numpy.cross(forward, [0, 1, 0])
    right /= numpy.linalg.norm(right)
    up = numpy.cross(right, forward)
    rows, columns = numpy.mgrid[0:size, 0:size] + random.random((2, size, size))
    x = (columns.ravel() / size - 0.5)[:, None]
    y = (0.5 - rows.ravel() / size)[:, None]
    return center - forward * extent * 2.1, forward * 2 + x * right + y * up


def turn_to_sky(normals, random):
    """A direction about each normal, more often near it: how a matt surface sees the sky."""
    directions = random.normal(size=normals.shape)
    directions /= numpy.linalg.norm(directions, axis=1)[:, None]
    return normals + directions * 0.999


def shade(mesh, origin, directions, random):
    colors = numpy.tile(SKY, (len(directions), 1))
    hits = mesh.intersect(origin, directions)
    met = hits.primitives != NONE
    sample = mesh.sample(hits.primitives[met], hits.s[met], hits.t[met])
    facing = numpy.sign(-(sample.normals * directions[met]).sum(axis=1))[:, None]
    normals = sample.shading_normals * facing
    groups = mesh.primitive_groups[hits.primitives[met]]
    surface = COLORS[groups % len(COLORS)]
    surface[groups == len(mesh.group_names) - 1] = GROUND
    reach = numpy.linalg.norm(mesh.bounds[1] - mesh.bounds[0])
    away = sample.positions + sample.normals * facing * reach * 1e-5
    to_sky = turn_to_sky(normals, random)
    sees_sky = mesh.intersect(away, to_sky).primitives == NONE
    colors[met] = surface * numpy.where(sees_sky[:, None], SKY, 0.25 * GROUND)
    return colors


def write_png(path, pixels):
    height, width, _ = pixels.shape
    rows = b"".join(b"\0" + row.tobytes() for row in pixels)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        for kind, data in [(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)),
                           (b"IDAT", zlib.compress(rows, 9)), (b"IEND", b"")]:
            file.write(struct.pack(">I", len(data)) + kind + data)
            file.write(struct.pack(">I", zlib.crc32(kind + data)))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("model")
    parser.add_argument("picture")
    parser.add_argument("--size", type=int, default=512)
    parser.add_argument("--samples", type=int, default=16)
    arguments = parser.parse_args()
    model = Mesh.from_file(arguments.model)
    print(model)
    scene = add_ground(model)
    random = numpy.random.default_rng(1)
    light = sum(shade(scene, *make_rays(model.bounds, arguments.size, random), random)
                for _ in range(arguments.samples)) / arguments.samples
    pixels = (numpy.clip(light, 0, 1) ** (1 / 2.2) * 255).astype(numpy.uint8)
    write_png(arguments.picture, pixels.reshape(arguments.size, arguments.size, 3))


if __name__ == "__main__":
    main()

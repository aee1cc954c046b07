#!/usr/bin/env python3
"""Writes the inputs that the fuzzers start from: one folder for each target.

Most are made here, a few bytes each; the rest are pieces of the project's own model and, where they
are named, the small files of a folder of models with obj/ and lwo/.

usage: make_seeds.py FOLDER [MODELS]
"""

import json
import pathlib
import struct
import sys

LARGEST_MODEL = 64 * 1024
ROCKET = pathlib.Path(__file__).parent.parent / "assets" / "rocket.obj"


def make_obj():
    square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
    yield square + "f 1 2 3 4\n"
    yield square + "vt 0 0\nvt 1 0.5\nvn 0 0 1\nusemtl a b\nf 1/1/1 2/2/1 3/1/1 -1//-1\nf 1//1 2 3/2\n"
    yield square + "t crease 2/1/0 0 1 2.5\nec 1 1 2\ncurv \\\n1 2\ns 1\ng x\no y\nf 4 3 \\\n 2 1\n"
    yield "v -0.03 .5 1e-5 1 0.5 0\r\nv 1 nan 3\r\nv 4 5 6 0 0 0 1\r\nf 1 2 3 3 2 1 1\r\n"
    yield "\ufeff# c\rv 3.1+e2 1 1.#IND\rv 1e400 -inf 4\rv 1 1 1 1\rp 1\rl 1 2\rf 1 2 3\rf 1 2\r"
    lines = ROCKET.read_text().splitlines(keepends=True)
    points = [line for line in lines if line.startswith("v")]
    faces = [line for line in lines if not line.startswith("v")]
    yield "".join(points[:40]) + "f " + " ".join(str(i) for i in range(1, 41)) + "\n"
    yield "".join(lines[:30] + faces[:8])


def chunk(name, data):
    return name + struct.pack(">I", len(data)) + data + bytes(len(data) % 2)


def form(kind, chunks):
    return b"FORM" + struct.pack(">I", len(chunks) + 4) + kind + chunks


def floats(*values):
    return struct.pack(f">{len(values)}f", *values)


def shorts(*values):
    return struct.pack(f">{len(values)}H", *values)


def make_lwo():
    points = chunk(b"PNTS", floats(0, 0, 0, 0, 1, 0, 1, 1, 0, 1, 0, 0, 0.5, 0.25, 0))
    faces = chunk(b"POLS", b"FACE" + shorts(4, 0, 1, 2, 3, 3, 0, 4, 2, 2, 0, 1))
    tags = chunk(b"TAGS", b"Sky\0Ink\0")
    surfaces = chunk(b"PTAG", b"SURF" + shorts(0, 0, 1, 1))
    layer = chunk(b"LAYR", bytes(16) + b"L1\0\0")
    uvs = chunk(b"VMAP", b"TXUV" + shorts(2) + b"U\0" + shorts(0) + floats(0, 1) + shorts(2) + floats(1, 1))
    corner_uv = chunk(b"VMAD", b"TXUV" + shorts(2) + b"U\0" + shorts(0, 1) + floats(0.5, 0))
    normals = chunk(b"VMAP", b"NORM" + shorts(3) + b"N\0" + shorts(0) + floats(0, 0, 1))
    wide = chunk(b"POLS", b"PTCH" + shorts(3 | 0x400, 0xFF00, 0, 1, 2))
    yield form(b"LWO2", points + faces)
    yield form(b"LWO2", tags + layer + points + uvs + normals + faces + surfaces + corner_uv)
    yield form(b"LWO3", layer + points + faces + layer + points + wide + uvs)
    surface_names = chunk(b"SRFS", b"Sky\0Ink\0")
    details = chunk(b"POLS", shorts(4, 0, 1, 2, 3, 0xFFFF, 1, 3, 0, 4, 2, 2))
    yield form(b"LWOB", surface_names + points + details)
    yield form(b"LWLO", surface_names + chunk(b"LAYR", bytes(4) + b"L1\0\0") + points + details)


def make_deserialize():
    """Blocks without their size, which the target puts before them."""
    def block(positions, velocities, indices, counts):
        words = b""
        for size, array, kind in ((3, positions, "f"), (3, velocities, "f"), (1, indices, "I"), (1, counts, "I")):
            words += struct.pack(f"<I{len(array)}{kind}", len(array) // size, *array)
        return words

    square = [0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0]
    yield block(square, [], [0, 1, 2, 3], [4])
    yield block(square, square, [0, 1, 2, 3, 3, 2, 1, 0, 2, 1], [5, 0, 2, 3])
    yield block([], [], [], [])


def make_property_file():
    square = {"name": "p", "kind": "vertex", "value_type": "float", "values": [1, 2.5, -3, 1e9]}
    yield square
    yield square | {"value_type": "half", "values": [[1, 2, 3, 4], [5, 6, 7, 8]], "times": [0, 0.5]}
    yield square | {"extent": 2, "value_type": "uint64", "values": [1, 2, 3, 4, 5, 6, 7, 8]}
    yield square | {"value_type": "int16", "indices": [0, 1, 1, 0], "values": [7, -7]}
    yield square | {"kind": "polygon", "value_type": "double", "values": [4], "times": [1]}
    yield square | {"kind": "constant", "value_type": "choice", "extent": 3, "values": [1, 2, 3]}


def make_triangulate():
    """The form of the points, their scale, whether they are shared, then a byte for each corner."""
    for shape in range(8):
        yield bytes([shape, 20, shape % 4]) + bytes(range(0, 250, 250 // (5 + 6 * shape)))
    yield bytes([0, 20, 3]) + bytes.fromhex("00f0ff0f 2252 5525 00".replace(" ", ""))
    for count in (17, 33, 65, 129, 257):
        yield bytes([7, 20, 0]) + bytes(i * 251 // count for i in range(count))


def make_maps():
    for start in range(6):
        yield bytes((start * 37 + i * 11) % 251 for i in range(60 + 60 * start))


def to_bytes(seed):
    if isinstance(seed, dict):
        seed = json.dumps(seed)
    return seed.encode() if isinstance(seed, str) else seed


def main():
    folder = pathlib.Path(sys.argv[1])
    makers = {name[5:]: make for name, make in globals().items() if name.startswith("make_")}
    for target, make in makers.items():
        (folder / target).mkdir(parents=True, exist_ok=True)
        for number, seed in enumerate(make()):
            (folder / target / f"made-{number}").write_bytes(to_bytes(seed))
    for kind in ("obj", "lwo") if len(sys.argv) > 2 else ():
        for model in sorted((pathlib.Path(sys.argv[2]) / kind).iterdir()):
            if model.is_file() and model.stat().st_size < LARGEST_MODEL:
                (folder / kind / model.name).write_bytes(model.read_bytes())


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Measures what hostile files cost: memory and time by byte of the file, whatever they claim.

Each file is the densest of its kind: all of it is the one thing that grows most. The program loads
it and builds the mesh; the figures are its peak memory above that of loading next to nothing, over
the size of the file, and its processor time. It fails when memory is above the bound that stands for
its kind, or when a file is refused.

With --grid it measures what a whole import costs: an OBJ file of a grid of quads, against the arrays
that reading and building it must end with.

usage: limits.py PROGRAM [MEGABYTES]
       limits.py PROGRAM --grid [MEGABYTES]
"""

import itertools
import os
import struct
import subprocess
import sys
import tempfile

LETTERS = b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-"
POINTS = b"v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
# From the first corner without a uv or a normal on, all corners are listed in maps.
MAPS = b"vt 0 0\nvn 0 0 1\nf 1/1 2 3\nf 1//1 2 3\n"


def get_name(number):
    return bytes(LETTERS[number >> shift & 63] for shift in (18, 12, 6, 0))


def repeat(head, unit, size):
    return head + unit * ((size - len(head)) // len(unit))


def repeat_numbered(head, make_unit, size):
    parts = [head]
    left = size - len(head)
    for number in itertools.count():
        parts.append(make_unit(number))
        left -= len(parts[-1])
        if left <= 0:
            return b"".join(parts)


def make_chunk(name, data):
    return name + struct.pack(">I", len(data)) + data + bytes(len(data) % 2)


def make_text(text):
    return text + bytes(2 - len(text) % 2)


def make_object(*chunks):
    body = b"LWO2" + b"".join(chunks)
    return make_chunk(b"FORM", body)


LWO_POINTS = make_chunk(b"PNTS", struct.pack(">12f", 0, 0, 0, 0, 1, 0, 1, 1, 0, 1, 0, 0))
LWO_FACE = make_chunk(b"POLS", b"FACE" + struct.pack(">4H", 3, 0, 1, 2))
LWO_LAYER = make_chunk(b"LAYR", bytes(16) + make_text(b""))


def make_map_chunk(number):
    entry = struct.pack(">HHff", 0, 0, 1, 1)
    return make_chunk(b"VMAD", b"TXUV\0\2" + make_text(get_name(number)) + entry)


def make_points(size):
    return make_object(make_chunk(b"PNTS", bytes(size // 12 * 12)))


def make_faces(size):
    faces = struct.pack(">4H", 3, 0, 1, 2) * (size // 8)
    return make_object(LWO_POINTS, make_chunk(b"POLS", b"FACE" + faces))


def make_entries(size):
    entries = struct.pack(">HHff", 0, 0, 1, 1) * (size // 12)
    return make_object(LWO_POINTS, LWO_FACE,
                       make_chunk(b"VMAD", b"TXUV\0\2" + make_text(b"a") + entries))


def make_maps_over_corners(size):
    """Maps of one entry each, over as many corners as so many maps may still have."""
    maps = repeat_numbered(b"", make_map_chunk, size * 9 // 10)
    map_count = len(maps) // len(make_map_chunk(0))
    corner_count = ((64 << 20) + 6 * size) // (4 * map_count)
    faces = struct.pack(">4H", 3, 0, 1, 2) * (corner_count // 3 - 1)
    return make_object(LWO_POINTS, make_chunk(b"POLS", b"FACE" + faces), maps)


def make_block(points, corners, polygons):
    """Each a number of entries and their bytes, but the four of the size of the whole."""
    parts = [points, (0, b""), corners, polygons]
    body = b"".join(struct.pack("<I", count) + data for count, data in parts)
    return struct.pack("<I", len(body) + 4) + body


BLOCK_POINTS = (3, struct.pack("<9f", 0, 0, 0, 1, 0, 0, 0, 1, 0))


def make_block_points(size):
    return make_block((size // 12, bytes(size // 12 * 12)), (0, b""), (0, b""))


def make_block_triangles(size):
    count = size // 16
    return make_block(BLOCK_POINTS, (3 * count, struct.pack("<3I", 0, 1, 2) * count),
                      (count, struct.pack("<I", 3) * count))


def make_block_polygon(size):
    count = size // 4
    return make_block(BLOCK_POINTS, (count, bytes(4 * count)), (1, struct.pack("<I", count)))


def make_block_empty_polygons(size):
    return make_block(BLOCK_POINTS, (0, b""), (size // 4, bytes(size // 4 * 4)))


# Bytes a byte, and besides: room for lists of corners, and what large pages and the heap round up.
BOUNDS = {"obj": (40, 4 << 20), "lwo": (26, 68 << 20), "block": (20, 4 << 20)}
GRID_BOUND = 1.1  # over the arrays

FILES = [
    ("obj", "points", lambda size: repeat(b"", b"v 0 0 0\n", size)),
    ("obj", "triangles", lambda size: repeat(POINTS, b"f 1 2 3\n", size)),
    ("obj", "triangles in maps", lambda size: repeat(POINTS + MAPS, b"f 1 2 3\n", size)),
    ("obj", "quads in maps", lambda size: repeat(POINTS + MAPS, b"f 1 2 3 4\n", size)),
    ("obj", "a polygon", lambda size: repeat(POINTS + b"f", b" 1", size - 1) + b"\n"),
    ("obj", "a polygon in maps",
     lambda size: repeat(POINTS + MAPS + b"f", b" 1", size - 1) + b"\n"),
    ("obj", "uvs", lambda size: repeat(POINTS + b"f 1/1 1/1 1/1\n", b"vt 0\n", size)),
    ("obj", "groups", lambda size: repeat_numbered(
        POINTS, lambda number: b"usemtl " + get_name(number) + b"\nf 1 2 3\n", size)),
    ("obj", "a group's name",
     lambda size: repeat(POINTS + b"usemtl ", b"x", size - 9) + b"\nf 1 2 3\n"),
    ("obj", "creases", lambda size: repeat(POINTS, b"ec 1 1 2\n", size)),
    ("obj", "comments", lambda size: repeat(POINTS, b"#\n", size)),
    ("lwo", "points", make_points),
    ("lwo", "triangles", make_faces),
    ("lwo", "layers", lambda size: make_object(repeat(b"", LWO_LAYER + LWO_POINTS + LWO_FACE, size))),
    ("lwo", "names of surfaces",
     lambda size: make_object(LWO_POINTS, make_chunk(b"TAGS", bytes(size // 2 * 2)), LWO_FACE)),
    ("lwo", "unknown chunks",
     lambda size: make_object(LWO_POINTS, repeat(b"", make_chunk(b"ABCD", b""), size))),
    ("lwo", "maps", lambda size: make_object(
        LWO_POINTS, LWO_FACE, repeat_numbered(b"", make_map_chunk, size))),
    ("lwo", "entries of a map", make_entries),
    ("lwo", "maps over corners", make_maps_over_corners),
    ("block", "points", make_block_points),
    ("block", "triangles", make_block_triangles),
    ("block", "a polygon", make_block_polygon),
    ("block", "polygons of nothing", make_block_empty_polygons),
]


GRID_BYTES_A_QUAD = 68  # of the file, nearly
READ_BYTES_A_VERTEX = 12  # a position
READ_BYTES_A_QUAD = 4 * (4 + 1 + 1)  # corners, their number and the group


def write_grid(file, side):
    for y in range(side + 1):
        row = (f"v {x * 0.01:.6f} {x * y % 1000 * 1e-6:.6f} {y * 0.01:.6f}\n" for x in range(side + 1))
        file.write("".join(row).encode())
    for y in range(side):
        first = y * (side + 1) + 1
        row = (f"f {a} {a + 1} {a + side + 2} {a + side + 1}\n" for a in range(first, first + side))
        file.write("".join(row).encode())


def measure_grid(program, path, base, size):
    side = int((size / GRID_BYTES_A_QUAD) ** 0.5)
    with open(path, "wb") as file:
        write_grid(file, side)
    read = READ_BYTES_A_VERTEX * (side + 1) ** 2 + READ_BYTES_A_QUAD * side**2
    stats = subprocess.run([program, "stats", path], capture_output=True, check=True, text=True).stdout
    parts = dict(line.split(": ") for line in stats.splitlines() if not line.startswith(" "))
    built = sum(int(parts[name]) for name in ("POINT CLOUD", "TOPOLOGY", "GEOMETRY"))
    status, peak, seconds = measure(program, path)
    peak -= base
    print(f"file {os.path.getsize(path)} bytes, {seconds:.1f} s, status {status}")
    ratio = peak / (read + built)
    print(f"arrays of reading {read} and of the mesh {built}, peak {peak}: {ratio:.3f}")
    return 0 if status == 0 and ratio <= GRID_BOUND else "above the bound"


def write(path, make, size):
    """Writes a file from a process of its own: a child's peak memory counts that of its parent."""
    process = os.fork()
    if process == 0:
        with open(path, "wb") as file:
            file.write(make(size))
        os._exit(0)
    if os.waitpid(process, 0)[1] != 0:
        sys.exit("cannot make the file")
    return os.path.getsize(path)


def measure(program, path):
    """Returns exit status, peak memory in bytes and seconds of processor time of one run."""
    with open(os.devnull, "w", encoding="ascii") as nothing:
        process = subprocess.Popen([program, "info", path], stdout=nothing, stderr=nothing)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_maxrss * 1024, usage.ru_utime + usage.ru_stime


def main():
    program, *arguments = sys.argv[1:]
    is_grid = arguments[:1] == ["--grid"]
    size = int((arguments[is_grid:] or [4000 if is_grid else 50])[0]) * 1000000
    worst = {"obj": (0, 0), "lwo": (0, 0), "block": (0, 0)}
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "file")
        with open(path, "wb") as file:
            file.write(POINTS + b"f 1 2 3\n")
        base = measure(program, path)[1]
        if is_grid:
            return measure_grid(program, path, base, size)
        print(f"{'of':5} {'all':20} {'bytes a byte':>13} {'ns a byte':>10} {'status':>7}")
        for kind, name, make in FILES:
            length = write(path, make, size)
            status, peak, seconds = measure(program, path)
            figures = ((peak - base) / length, seconds / length * 1e9)
            print(f"{kind:5} {name:20} {figures[0]:13.1f} {figures[1]:10.0f} {status:7}", flush=True)
            worst[kind] = tuple(map(max, worst[kind], figures))
            if status != 0:
                return f"{kind}, {name}: ended with {status}"
            factor, fixed = BOUNDS[kind]
            if peak - base > factor * length + fixed:
                return f"{kind}, {name}: more than {factor} bytes a byte and {fixed >> 20} MB"
    for kind, (memory, nanoseconds) in worst.items():
        print(f"{kind}: at most {memory:.1f} bytes and {nanoseconds:.0f} ns for a byte")
    return 0


sys.exit(main())

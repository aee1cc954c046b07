#!/usr/bin/env python3
"""Writes the tables of docs/ray-misses.md. usage: tabulate_rays.py VERIFY_JSON...

Each file is what `qzpoly verify --json` printed; meshes that are not closed are left out.
"""

import json
import sys

COLUMNS = [
    (place, test, aim)
    for place in ("near", "far")
    for test in ("exact", "tolerant")
    for aim in ("faces", "edges", "vertices")
]


def per_ten_million(counts):
    if counts["rays"] == 0:
        return "-"
    misses = counts["misses"] * 10_000_000 / counts["rays"]
    return f"{misses:,.0f}" if misses == int(misses) or misses >= 10 else f"{misses:.1f}"


def print_table(meshes, is_moving):
    print("| model | triangles | " + " | ".join(" ".join(column) for column in COLUMNS) + " |")
    print("|---" * (len(COLUMNS) + 2) + "|")
    for mesh in meshes:
        places = {p["place"]: p for p in mesh["places"] if p["moving"] == is_moving}
        cells = [per_ten_million(places[place][test][aim]) for place, test, aim in COLUMNS]
        print(f"| {mesh['name']} | {mesh['triangles']:,} | " + " | ".join(cells) + " |")


def main(paths):
    meshes = []
    for path in paths:
        with open(path, encoding="utf-8") as file:
            meshes += [mesh for mesh in json.load(file) if not mesh["no_rays"]]
    meshes.sort(key=lambda mesh: (mesh["triangles"], mesh["name"]))
    for title, is_moving in (("At rest", False), ("In motion", True)):
        print(f"\n## {title}\n")
        print_table(meshes, is_moving)


if __name__ == "__main__":
    main(sys.argv[1:])

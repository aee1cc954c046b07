"""Polygon meshes for renderers: import, arrays, rays and samples."""

from qz_poly._native import Mesh
from qz_poly.records import Hits, Map, Sample

__all__ = ["Hits", "Map", "Mesh", "NONE", "Sample"]

NONE = 0xFFFFFFFF  # no vertex, primitive or value

"""What the operations of a mesh give: named tuples of NumPy arrays."""

from typing import NamedTuple, Optional

import numpy


class Hits(NamedTuple):
    """What n rays meet. A ray that meets nothing has the primitive NONE and the distance inf."""

    primitives: numpy.ndarray  # (n,) uint32
    s: numpy.ndarray  # (n,) float64, the place on the primitive
    t: numpy.ndarray  # (n,) float64
    distances: numpy.ndarray  # (n,) float64, in units of the direction's length


class Sample(NamedTuple):
    """The surface at n places, each (n, 3) float32; zeros where the primitive was NONE."""

    positions: numpy.ndarray
    normals: numpy.ndarray  # unit, of the primitive
    shading_normals: numpy.ndarray  # unit, smoothed or of a normal map
    ds: numpy.ndarray  # derivatives of the position by s and by t
    dt: numpy.ndarray


class Map(NamedTuple):
    """A uv, normal or color map."""

    name: str
    values: numpy.ndarray  # (v, 3) float32; of colors (v, 4) uint8
    indices: Optional[numpy.ndarray]  # (corners,) uint32; None: a value for each vertex

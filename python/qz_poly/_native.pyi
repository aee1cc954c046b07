from os import PathLike
from typing import Iterable, Optional, Sequence, Tuple, Union

import numpy
from numpy.typing import ArrayLike, NDArray

from qz_poly.records import Hits, Map, Sample

class Mesh:
    """A polygon mesh that never changes. Any number of threads may ask it at once.

    Wrong arguments raise TypeError (of another kind), ValueError (of another shape, or refused by
    the library, in its words) or IndexError (an index of something that is not there).

    Properties that say "view" look into the mesh: read-only, without a copy, and they keep the mesh
    alive. All others are made anew each time they are asked for.
    """

    def __init__(
        self,
        positions: ArrayLike,  # (vertices, 3)
        corners: ArrayLike,  # vertices of the polygons' corners, one polygon after another
        corner_counts: Optional[ArrayLike] = None,  # (polygons,); None: corners is (polygons, k)
        *,
        groups: Optional[ArrayLike] = None,  # (polygons,), each a number of group_names
        group_names: Optional[Iterable[str]] = None,  # None: one group "default"
        velocities: Optional[ArrayLike] = None,  # (vertices, 3), in units per time
        uv_maps: Iterable[Tuple[str, ArrayLike, Optional[ArrayLike]]] = (),
        normal_maps: Iterable[Tuple[str, ArrayLike, Optional[ArrayLike]]] = (),
        color_maps: Iterable[Tuple[str, ArrayLike, Optional[ArrayLike]]] = (),
        check_quads: bool = True,  # cut 4-gons that are not convex
    ) -> None:
        """Makes a mesh of arrays, which are copied.

        A map is (name, values, indices): values as Map has them, and indices one per corner, or
        None for a value per vertex.
        """
    @staticmethod
    def from_file(
        path: Union[str, bytes, "PathLike[str]"], *, item: str = "", check_quads: bool = True
    ) -> "Mesh":
        """Reads a Wavefront OBJ file or a LightWave object; of that, the layers named `item`.

        Raises FileNotFoundError, or ValueError that tells the line or byte and the reason.
        """
    @staticmethod
    def from_block(block: bytes) -> "Mesh":
        """Makes a mesh of what serialize() gave, here or by `qzpoly pack`."""
    @staticmethod
    def sphere(segments: int, rings: int, radius: float = 1.0) -> "Mesh":
        """A sphere about the origin, with a uv map and a normal map; up to 8192 of either."""
    @property
    def vertex_count(self) -> int: ...
    @property
    def polygon_count(self) -> int: ...
    @property
    def corner_count(self) -> int: ...
    @property
    def primitive_count(self) -> int: ...
    @property
    def positions(self) -> NDArray[numpy.float32]:
        """(vertices, 3), view."""
    @property
    def velocities(self) -> NDArray[numpy.float32]:
        """(vertices, 3), or (0, 3) without any; view."""
    @property
    def normals(self) -> NDArray[numpy.float32]:
        """(vertices, 3): unit vectors, or zeros where a vertex has none."""
    @property
    def packed_normals(self) -> NDArray[numpy.uint16]:
        """(vertices, 3): normals as they are kept, a sign bit and 15 bits of 1/32767; view."""
    @property
    def polygon_corner_counts(self) -> NDArray[numpy.uint32]:
        """(polygons,)."""
    @property
    def polygon_corners(self) -> NDArray[numpy.uint32]:
        """(corners,): vertices, one polygon after another."""
    @property
    def polygon_groups(self) -> NDArray[numpy.uint32]:
        """(polygons,): numbers of group_names."""
    @property
    def group_names(self) -> Tuple[str, ...]: ...
    @property
    def primitive_infos(self) -> NDArray[numpy.uint8]:
        """(primitives,): bit 0 a quad, 1 a whole polygon, 2 + e edge e is drawn; view."""
    @property
    def primitive_vertices(self) -> NDArray[numpy.uint32]:
        """(primitives, 4): the fourth of a triangle is NONE."""
    @property
    def primitive_polygons(self) -> NDArray[numpy.uint32]:
        """(primitives,)."""
    @property
    def primitive_groups(self) -> NDArray[numpy.uint32]:
        """(primitives,)."""
    @property
    def primitive_bounds(self) -> NDArray[numpy.float64]:
        """(primitives, 2, 3): minimum and maximum, at rest."""
    @property
    def bounds(self) -> NDArray[numpy.float64]:
        """(2, 3): minimum and maximum, at rest, of all points that are numbers."""
    @property
    def uv_maps(self) -> Tuple[Map, ...]: ...
    @property
    def normal_maps(self) -> Tuple[Map, ...]: ...
    @property
    def color_maps(self) -> Tuple[Map, ...]:
        """The values are views."""
    @property
    def creases(self) -> NDArray[numpy.int32]:
        """(creases, 2): vertices; view."""
    @property
    def crease_sharpnesses(self) -> NDArray[numpy.float32]:
        """(creases,); view."""
    @property
    def key(self) -> str:
        """32 hexadecimal digits that tell positions and polygons apart."""
    @property
    def memory_size(self) -> int:
        """In bytes."""
    @property
    def warnings(self) -> Tuple[str, ...]:
        """What was passed over or mended while the mesh was made."""
    def intersect(
        self,
        origins: ArrayLike,
        directions: ArrayLike,
        *,
        exact: bool = True,
        min_distance: float = 0.0,
        max_distance: float = ...,
        time: Optional[float] = None,
    ) -> Hits:
        """The nearest hit of each ray; origins and directions are (n, 3), or (3,) for all rays.

        `exact`: no ray slips through an edge that two triangles share. `time`: the mesh is met
        where its velocities have taken it by then. Other Python threads run meanwhile.
        """
    def sample(
        self,
        primitives: ArrayLike,
        s: ArrayLike,
        t: ArrayLike,
        *,
        time: Optional[float] = None,
    ) -> Sample:
        """The surface at places (n,), as hits tell them: mesh.sample(*hits[:3])."""
    def sample_uv(
        self, uv_map: int, primitives: ArrayLike, s: ArrayLike, t: ArrayLike
    ) -> NDArray[numpy.float64]:
        """u, v and w of a uv map at places, (n, 3)."""
    def sample_color(
        self, color_map: int, primitives: ArrayLike, s: ArrayLike, t: ArrayLike
    ) -> NDArray[numpy.float32]:
        """Red, green, blue and alpha of a color map from 0 to 1, (n, 4)."""
    def dump(self, *, digests: bool = False, smoothing_angles: Sequence[float] = ()) -> str:
        """Every array, stored and computed, as the JSON that `qzpoly dump` prints."""
    def serialize(self) -> bytes:
        """Positions, velocities and polygons as one block, for from_block()."""

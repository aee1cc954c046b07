"""Tests of the Python module. Arguments: the project's folder, the program qzpoly."""

import ast
import gc
import inspect
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

import numpy

import qz_poly
from qz_poly import NONE, Mesh

ROOT = pathlib.Path(sys.argv.pop(1))
PROGRAM = sys.argv.pop(1)
ROCKET = ROOT / "assets/rocket.obj"
SQUARE = [[0, 0, 0], [2, 0, 0], [2, 2, 0], [0, 2, 0]]


def make_square(**options):
    return Mesh(SQUARE, [[0, 1, 2, 3]], **options)


class MeshTest(unittest.TestCase):
    def test_dumps_what_the_program_dumps(self):
        model = ROOT / "assets/five_polygons.obj"
        for options, arguments in [
            ({}, []),
            ({"digests": True, "smoothing_angles": [30.0]}, ["--digest", "--smooth", "30"]),
        ]:
            printed = subprocess.check_output([PROGRAM, "dump", model, *arguments], text=True)
            self.assertEqual(Mesh.from_file(model).dump(**options), printed)

    def test_arrays_come_back(self):
        values = [[0, 0, 0], [1, 0, 0], [1, 1, 0]]
        mesh = Mesh(SQUARE + [[1, 3, 0]], [0, 1, 2, 3, 3, 2, 4], [4, 3], groups=[1, 0],
                    group_names=["roof", "w\udcff"], velocities=numpy.ones((5, 3)),
                    uv_maps=[("uv", values, [0, 1, 2, NONE, 0, 1, 2])],
                    color_maps=[("tint", numpy.full((5, 4), 51, numpy.uint8), None)])
        for name, expected in {
            "positions": SQUARE + [[1, 3, 0]],
            "velocities": [[1, 1, 1]] * 5,
            "normals": [[0, 0, 1]] * 5,
            "polygon_corner_counts": [4, 3],
            "polygon_corners": [0, 1, 2, 3, 3, 2, 4],
            "polygon_groups": [1, 0],
            "group_names": ["roof", "w\udcff"],
            "primitive_vertices": [[0, 1, 2, 3], [3, 2, 4, NONE]],
            "primitive_polygons": [0, 1],
            "primitive_groups": [1, 0],
            "primitive_infos": [0b111111, 0b111110],
            "primitive_bounds": [[[0, 0, 0], [2, 2, 0]], [[0, 2, 0], [2, 3, 0]]],
            "bounds": [[0, 0, 0], [2, 3, 0]],
        }.items():
            self.assertEqual(numpy.asarray(getattr(mesh, name)).tolist(), expected, name)
        self.assertEqual(mesh.uv_maps[0].indices.tolist(), [0, 1, 2, NONE, 0, 1, 2])
        self.assertEqual(mesh.color_maps[0].values.shape, (5, 4))
        numpy.testing.assert_allclose(mesh.sample_color(0, [0, NONE], [0, 0], [0, 0]),
                                      [[0.2] * 4, [0] * 4], atol=1e-6)
        again = Mesh.from_block(mesh.serialize())
        self.assertEqual(again.velocities.tolist(), mesh.velocities.tolist())

    def test_views_keep_the_mesh_alive_and_cannot_be_written(self):
        for name in ["positions", "velocities", "packed_normals", "primitive_infos", "creases",
                     "crease_sharpnesses"]:
            view = getattr(Mesh.sphere(400, 400), name)
            copy = view.copy()
            gc.collect()
            self.assertFalse(view.flags.owndata or view.flags.writeable, name)
            Mesh.sphere(400, 400, 2.0)  # would take the room
            self.assertTrue((view == copy).all(), name)

    def test_many_rays_find_what_the_formula_says(self):
        random = numpy.random.default_rng(1)
        mesh = Mesh.sphere(256, 128, 3.0)
        directions = random.normal(size=(20000, 3))
        directions /= numpy.linalg.norm(directions, axis=1)[:, None]
        hits = mesh.intersect([0, 0, 0], directions)
        self.assertTrue(((hits.distances > 2.99) & (hits.distances <= 3.001)).all())
        sample = mesh.sample(*hits[:3])
        numpy.testing.assert_allclose(sample.positions, directions * hits.distances[:, None],
                                      atol=1e-5)
        numpy.testing.assert_allclose(sample.shading_normals, directions, atol=0.02)
        outside = mesh.intersect(directions * 4, directions)
        self.assertTrue((outside.primitives == NONE).all() and numpy.isinf(outside.distances).all())
        self.assertEqual(len(mesh.intersect([0, 0, 0], [0, 1, 0], max_distance=2.0).s), 1)

    def test_rays_meet_what_moves_where_it_is(self):
        mesh = make_square(velocities=[[0, 0, 1]] * 4)
        for time, distance in [(None, 5), (0, 5), (2.0, 3), (-1.0, 6)]:
            hits = mesh.intersect([0.5, 0.25, 5], [0, 0, -1], time=time)
            self.assertEqual(hits.distances.tolist(), [distance])
            self.assertEqual(mesh.sample(*hits[:3], time=time).positions[0, 2], 5 - distance)

    def test_wrong_arguments_raise(self):
        square = make_square()
        for call, error, text in [
            (lambda: Mesh(SQUARE, [0, 1, 4], [3]), IndexError, "corners: entry 2 is 4"),
            (lambda: Mesh(SQUARE, [0, 1, -1], [3]), IndexError, "entry 2 is -1"),
            (lambda: Mesh(SQUARE, [0, 1, 2**32 + 2], [3]), IndexError, "4294967298"),
            (lambda: Mesh(SQUARE, numpy.array([0, 1, 2**64 - 1], numpy.uint64), [3]), IndexError,
             "entry 2"),
            (lambda: Mesh(SQUARE, [0, 1, 2.5], [3]), TypeError, "whole numbers"),
            (lambda: Mesh(SQUARE, [0, 1, 2], [4]), ValueError, "add up to 4"),
            (lambda: Mesh(SQUARE, [0, 1, 2]), ValueError, "corner_counts: needed"),
            (lambda: Mesh(SQUARE, [[0, 1], [1]], [2, 1]), TypeError, "corners"),
            (lambda: Mesh([[0, 0]], [], []), ValueError, "(n, 3), not (1, 2)"),
            (lambda: Mesh("abc", [], []), TypeError, "positions: numbers are needed"),
            (lambda: Mesh(None, [], []), TypeError, "positions"),
            (lambda: make_square(groups=[1]), IndexError, "groups: entry 0 is 1"),
            (lambda: make_square(groups=[0, 0]), ValueError, "groups"),
            (lambda: make_square(group_names=[7]), TypeError, "name must be a str"),
            (lambda: make_square(velocities=[[0, 0, 0]]), ValueError, "velocities"),
            (lambda: make_square(uv_maps=[("uv", [[0, 0, 0]], None)]), ValueError, "uv_maps"),
            (lambda: make_square(uv_maps=[("uv", [[0, 0, 0]], [0, 0, 0, 1])]), IndexError,
             "entry 3 is 1"),
            (lambda: make_square(uv_maps=[7]), TypeError, "(name, values, indices)"),
            (lambda: make_square(color_maps=[("c", [[0.5] * 4] * 4, None)]), TypeError, "c"),
            (lambda: Mesh.from_file(ROOT / "none.obj"), FileNotFoundError, "none.obj"),
            (lambda: Mesh.from_file(ROOT / "dev"), ValueError, "dev"),
            (lambda: Mesh.from_file(7), TypeError, ""),
            (lambda: Mesh.from_file(ROCKET, item="\0"), None, ""),
            (lambda: Mesh.from_block(b"nothing"), ValueError, ""),
            (lambda: Mesh.from_block(b""), ValueError, ""),
            (lambda: Mesh.sphere(9000, 3), ValueError, "8192"),
            (lambda: Mesh.sphere(-1, 3), TypeError, ""),
            (lambda: square.intersect([[0, 0, 0]] * 2, [[0, 0, 1]] * 3), ValueError, "2 and 3"),
            (lambda: square.intersect([0, 0], [0, 0, 1]), ValueError, "origins"),
            (lambda: square.sample([1], [0], [0]), IndexError, "primitives: entry 0 is 1"),
            (lambda: square.sample([0], [0, 0], [0]), ValueError, "not 1, 2 and 1"),
            (lambda: square.sample_uv(0, [0], [0], [0]), IndexError, "no uv map 0 of 0"),
            (lambda: square.sample_color(-1, [0], [0], [0]), IndexError, "no color map -1"),
            (lambda: square.dump(smoothing_angles=[numpy.nan]), ValueError, "smoothing_angles"),
            (lambda: setattr(square, "positions", SQUARE), AttributeError, ""),
            (lambda: Mesh.__new__(Mesh).positions, TypeError, ""),
            (lambda: Mesh(numpy.zeros((0, 3)), [], []).sample([0], [0], [0]), IndexError, ""),
        ]:
            with self.subTest(inspect.getsource(call) if error is None else text):
                if error is None:
                    call()
                    continue
                with self.assertRaises(error) as raised:
                    call()
                self.assertIn(text, str(raised.exception))

    def test_interrupts_end_an_import(self):
        class Interrupt(Exception):
            pass

        def interrupt(*_):
            raise Interrupt

        with tempfile.TemporaryDirectory() as folder:
            model = pathlib.Path(folder, "points.obj")
            model.write_text("v 0.125 1.5 2.25\n" * 400000)
            old = signal.signal(signal.SIGALRM, interrupt)
            with self.assertRaises(Interrupt):
                signal.setitimer(signal.ITIMER_REAL, 0.002)
                Mesh.from_file(model)
            signal.signal(signal.SIGALRM, old)
            self.assertEqual(Mesh.from_file(model).vertex_count, 400000)

    def test_odd_numbers_are_met_by_nothing(self):
        odd = [numpy.nan, numpy.inf, -numpy.inf, 3e38, 0.0]
        mesh = Mesh([[x, y, 1] for x in odd for y in odd], [list(range(5)), list(range(20, 25))])
        empty = Mesh(numpy.zeros((0, 3)), [], [])
        rays = numpy.array([[x, y, z] for x in odd for y in odd for z in odd])
        for each in (mesh, empty, make_square()):
            for time in (None, numpy.nan, numpy.inf):
                hits = each.intersect(rays[:, None, :].repeat(9, 1).reshape(-1, 3), [0, 0, 1],
                                      time=time, min_distance=numpy.nan)
                self.assertTrue((hits.primitives == NONE).all())
        self.assertEqual(mesh.sample([0], [numpy.nan], [numpy.inf]).positions.shape, (1, 3))
        self.assertTrue(any("nan" in line.lower() or "finite" in line for line in mesh.warnings),
                        mesh.warnings)

    def test_declarations_name_what_is_there(self):
        declarations = ast.parse((ROOT / "python/qz_poly/_native.pyi").read_text())
        mesh = next(node for node in declarations.body if isinstance(node, ast.ClassDef))
        named = {node.name for node in mesh.body if isinstance(node, ast.FunctionDef)}
        present = {name for name in vars(Mesh) if not name.startswith("_")} | {"__init__"}
        self.assertEqual(named, present)
        for node in mesh.body:
            if isinstance(node, ast.FunctionDef) and not node.decorator_list:
                arguments = [each.arg for each in node.args.args + node.args.kwonlyargs]
                for argument in arguments:
                    self.assertIn(f"{argument}:", getattr(Mesh, node.name).__doc__, node.name)
        self.assertEqual(set(qz_poly.__all__) - set(vars(qz_poly)), set())


if __name__ == "__main__":
    unittest.main()

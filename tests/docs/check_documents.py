#!/usr/bin/env python3
"""Checks that documents tell what is so: commands run, quoted code is in the source, links lead on.

usage: check_documents.py PROJECT PROGRAM [PYTHON_PATH]

Blocks of `sh` hold commands. Those of `./dev render` and `./dev qzpoly` are run here by PROGRAM,
with smaller pictures and fewer rays; so is Python, where PYTHON_PATH has the module. The others must
be called by .ci/run or ./dev nightly, or by a check named below. Blocks of `cpp` and `cmake` name the
file that has them; a line of three dots leaves some out.
"""

import os
import pathlib
import re
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile

# Commands that something else runs, and what shows that it does.
RUN_ELSEWHERE = {
    "cmake --install": ("tests/package/check.sh", "cmake --install"),
    "cmake -S examples": ("tests/package/check.sh", 'cmake -S "$root/examples"'),
    "cmake --build build/examples": ("tests/package/check.sh", 'ninja -C "$folder/examples"'),
    "pip install": ("dev", 'bin/pip" install'),
    "./dev build": ("dev", 'build "$1"'),
    "./dev nightly": ("dev", "dev_nightly()"),
}


class Documents:
    def __init__(self, root, program, python_path):
        self.root = root
        self.program = program
        self.python_path = python_path
        self.faults = []
        self.counts = {"commands": 0, "quotes": 0, "links": 0}
        lanes = (root / ".ci/run").read_text() + (root / "dev").read_text().split(
            "dev_nightly() {")[1].split("\n}")[0].replace("dev_", "./dev ")
        self.lanes = lanes.replace("run_tests", "./dev test ./dev clang ./dev asan ./dev tsan")

    def fault(self, place, text):
        self.faults.append(f"{place}: {text}")

    def check(self, path, folder):
        text = path.read_text()
        name = path.relative_to(self.root)
        for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", text):
            self.counts["links"] += 1
            if not (path.parent / link).exists():
                self.fault(name, f"links to {link}, which is not there")
        for named in re.findall(r"`((?:poly|platform|tools|tests|docs|examples|python|assets|bench|fuzz|cmake)/[\w./]+)`",
                                text):
            self.counts["links"] += 1
            if not (self.root / named).exists():
                self.fault(name, f"names {named}, which is not there")
        for source, kind, block in re.findall(
                r"(?:<!-- from (\S+) -->\n)?^ *```(\w+)\n(.*?)^ *```$", text, re.M | re.S):
            if kind == "sh":
                for line in block.splitlines():
                    self.run(name, line.split("#")[0].strip(), folder)
            elif kind == "python":
                self.run_python(name, ["-c", block], folder)
            else:
                self.find_quote(name, source, block)

    def find_quote(self, name, source, block):
        self.counts["quotes"] += 1
        if not source or not (self.root / source).exists():
            self.fault(name, f"does not tell which file has: {block.splitlines()[0]}")
            return
        lines = [line.strip() for line in (self.root / source).read_text().splitlines()]
        there = "\n".join(lines)
        for part in re.split(r"^\.\.\.$", block, flags=re.M):
            quoted = "\n".join(line.strip() for line in part.strip().splitlines())
            if quoted not in there:
                self.fault(name, f"quotes what is not in {source}: {quoted.splitlines()[0]} ...")

    def run(self, name, command, folder):
        self.counts["commands"] += 1
        words = shlex.split(command)
        if words[:2] in (["./dev", "render"], ["./dev", "qzpoly"]):
            words = words[1 if words[1] == "render" else 2:]
            if "--rays" in words:
                words[words.index("--rays") + 1] = "1000"
            is_drawn = words[0] in ("render", "turntable", "sheet") or "--picture" in words
            if is_drawn and "--size" not in words:
                words += ["--size", "32", "24"]
            self.call(name, [self.program, *words], folder)
        elif words[0] == "build/python/venv/bin/python":
            self.run_python(name, words[1:] + ["--size", "32"], folder)
        else:
            for known, (file, proof) in RUN_ELSEWHERE.items():
                if command.startswith(known):
                    if proof not in (self.root / file).read_text():
                        self.fault(name, f"{command} should be run by {file}")
                    return
            tests = "".join(each.read_text() for each in (self.root / "tests").rglob("*_test.cpp"))
            if "-R" in words[:-1] and not re.search(words[-1], tests + "frame."):
                self.fault(name, f"{command} names no test")
            if words[0] != "./dev" or not re.search(rf"\./dev {words[1]}\b", self.lanes):
                self.fault(name, f"nothing runs {command}")

    def run_python(self, name, arguments, folder):
        if self.python_path:
            environment = {"PYTHONPATH": self.python_path}
            self.call(name, ["/usr/bin/python3", *arguments], folder, environment)

    def call(self, name, words, folder, environment=None):
        done = subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                              env={**os.environ, **(environment or {})}, check=False)
        has_found_faults = "check" in words and done.returncode == 1 and not done.stderr
        if done.returncode != 0 and not has_found_faults:
            self.fault(name, f"{shlex.join(map(str, words))[:200]} fails: "
                             f"{done.stderr.decode(errors='replace')[-400:]}")


def make_lightwave_object():
    """One triangle."""
    def chunk(name, data):
        return name + struct.pack(">I", len(data)) + data + b"\0" * (len(data) % 2)
    body = (b"LWO2" + chunk(b"TAGS", b"paint\0") + chunk(b"LAYR", bytes(18))
            + chunk(b"PNTS", struct.pack(">9f", 0, 0, 0, 1, 0, 0, 0, 1, 0))
            + chunk(b"POLS", b"FACE" + struct.pack(">4H", 3, 0, 2, 1)))
    return chunk(b"FORM", body)


def main():
    root, program = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    python_path = str(pathlib.Path(sys.argv[3]).resolve()) if len(sys.argv) > 3 else ""
    documents = Documents(root, program, python_path)
    with tempfile.TemporaryDirectory() as folder:
        for shared in ("assets", "examples"):
            os.symlink(root / shared, pathlib.Path(folder, shared))
        os.symlink(root / "assets", pathlib.Path(folder, "folder"))
        shutil.copy(root / "assets/rocket.obj", pathlib.Path(folder, "model.obj"))
        shutil.copy(root / "docs/images/rocket-uv.png", pathlib.Path(folder, "hull.png"))
        pathlib.Path(folder, "model.lwo").write_bytes(make_lightwave_object())
        for path in [*sorted(root.glob("*.md")), *sorted(root.glob("docs/*.md"))]:
            documents.check(path, folder)
    print(", ".join(f"{count} {what}" for what, count in documents.counts.items()))
    sys.exit("\n".join(documents.faults) if documents.faults or not documents.counts["quotes"] else 0)


main()

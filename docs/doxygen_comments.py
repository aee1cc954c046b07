#!/usr/bin/env python3
"""Shows a header to Doxygen, for the comments in it are plain ones.

A block of comment right above a declaration documents it, and one behind it that declaration; the
block under `#pragma once` is about the file, and a line of its own within a class heads what
follows. usage: doxygen_comments.py HEADER
"""

import re
import sys

IS_NO_DECLARATION = ("#", "}", "static_assert", "friend class")


def is_comment(line):
    return re.match(r"\s*//( |$)", line) is not None


class Viewer:
    def __init__(self, lines):
        self.lines = lines
        self.shown = []
        self.is_group_open = False

    def close_group(self):
        if self.is_group_open:
            self.shown.append("/// @}")
        self.is_group_open = False

    def show_block(self, first, last):
        """The comment of lines first to last - 1."""
        block = [line.replace("//", "///", 1) for line in self.lines[first:last]]
        below = self.lines[last].strip() if last < len(self.lines) else ""
        is_of_class = block[0].startswith(" ")
        if not below and not is_of_class:
            self.shown += ["/// @file", *block]
        elif not below and len(block) == 1:
            self.close_group()
            self.shown += [block[0].replace("/// ", "/// @name "), "/// @{"]
            self.is_group_open = True
        elif below and not below.startswith(IS_NO_DECLARATION):
            self.shown += block

    def show(self):
        at = 0
        while at < len(self.lines):
            line = self.lines[at]
            if is_comment(line):
                last = at
                while last < len(self.lines) and is_comment(self.lines[last]):
                    last += 1
                self.show_block(at, last)
                at = last
                continue
            if re.match(r"};|\s*(public|private|protected):", line):
                self.close_group()
            if not line.startswith("#"):
                line = re.sub(r"(\S) {2,}// ", r"\1  ///< ", line, count=1)
            self.shown.append(line)
            at += 1
        return self.shown


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        print("\n".join(Viewer(file.read().splitlines()).show()))


main()

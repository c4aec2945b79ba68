#!/usr/bin/env python3
"""Checks that the plug-in's folders include each other in one direction only.

The order of layers, top to bottom, is written once here and in ARCHITECTURE.md:
a folder may include only folders below it. Folders on one line share a rank and
include neither each other. An XPLM header named without a folder ("XPLMCamera.h")
comes from sdk/.

Prints one line per include that runs against the order (file:line: from -> to) and
one line per loop in the folders' graph; exits 1 when there is any. With --graph it
prints the folder graph, one "from -> to, to" line per folder, and exits 0.
"""
import os
import re
import sys

LAYERS = [
    ["shell"],
    ["panels"],
    ["community", "airports"],
    ["motion"],
    ["inputs"],
    ["data"],
    ["platform"],
    ["sdk"],
]
RANK = {folder: rank for rank, row in enumerate(LAYERS) for folder in row}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')
SOURCE_ENDINGS = (".h", ".hpp", ".c", ".cc", ".cpp")


def target_folder(name, top_folders):
    """The layer an include names, or None for a system or library header."""
    if "/" in name:
        head = name.split("/", 1)[0]
        if head in RANK or head in top_folders:
            return head
        return None
    return "sdk" if name.startswith("XPLM") else None


def scan(root):
    """Yields (path, line number, from folder, to folder, included name)."""
    top_folders = {d for d in os.listdir(root) if os.path.isdir(os.path.join(root, d)) and not d.startswith(".")}
    for folder in sorted(RANK):
        base = os.path.join(root, folder)
        if not os.path.isdir(base):
            continue
        for directory, subdirs, files in os.walk(base):
            subdirs.sort()
            for name in sorted(files):
                if not name.endswith(SOURCE_ENDINGS):
                    continue
                path = os.path.join(directory, name)
                with open(path, encoding="utf-8", errors="replace") as source:
                    for number, line in enumerate(source, 1):
                        match = INCLUDE.match(line)
                        if not match:
                            continue
                        to = target_folder(match.group(1), top_folders)
                        if to is None or to == folder:
                            continue
                        yield os.path.relpath(path, root), number, folder, to, match.group(1)


def find_loops(edges):
    """Every elementary loop of the folder graph, each once, from its smallest folder."""
    loops = []

    def walk(start, node, path):
        for nxt in sorted(edges.get(node, ())):
            if nxt == start:
                loops.append(path + [start])
            elif nxt > start and nxt not in path:
                walk(start, nxt, path + [nxt])

    for start in sorted(edges):
        walk(start, start, [start])
    return loops


def main(argv):
    args = [a for a in argv[1:] if not a.startswith("--")]
    root = args[0] if args else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    includes = list(scan(root))
    edges = {}
    for _, _, source, to, _ in includes:
        edges.setdefault(source, set()).add(to)

    if "--graph" in argv:
        for folder in sorted(edges):
            print(f"{folder} -> {', '.join(sorted(edges[folder]))}")
        return 0

    problems = []
    for path, number, source, to, name in includes:
        if to not in RANK:
            problems.append(f"{path}:{number}: {source} -> {to}: {to}/ is not a layer of the plug-in ({name})")
        elif RANK[to] <= RANK[source]:
            where = "beside" if RANK[to] == RANK[source] else "above"
            problems.append(f"{path}:{number}: {source} -> {to}: {to}/ stands {where} {source}/ ({name})")
    for loop in find_loops(edges):
        problems.append("loop: " + " -> ".join(loop))

    for line in problems:
        print(line)
    if problems:
        order = " -> ".join(", ".join(f + "/" for f in row) for row in LAYERS)
        print(f"check-layers: {len(problems)} problem(s); the order, top to bottom: {order}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

#!/usr/bin/env python3
"""The layer check on small trees: it must name every include against the order and
every loop, and pass a tree that keeps the order (the repository itself included)."""
import os
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
CHECK = os.path.join(HERE, "..", "tools", "check_layers.py")
failures = []


def run(root):
    result = subprocess.run([sys.executable, CHECK, root], capture_output=True, text=True)
    return result.returncode, result.stdout


def tree(files):
    root = tempfile.mkdtemp(prefix="layers-")
    for path, text in files.items():
        os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
        with open(os.path.join(root, path), "w") as f:
            f.write(text)
    return root


def expect(what, condition):
    if not condition:
        failures.append(what)


# Downward includes, a bare XPLM header and system headers pass.
code, out = run(tree({
    "shell/a.cpp": '#include "panels/b.h"\n#include "sdk/XPLMDefs.h"\n',
    "panels/b.h": '#include "airports/c.h"\n#include "community/d.h"\n',
    "airports/c.h": '#include <vector>\n#include "motion/e.h"\n#include "XPLMCamera.h"\n',
    "motion/e.h": '#include "inputs/f.h"\n',
    "inputs/f.h": '  #  include "data/g.h"\n',
    "data/g.h": '#include "platform/h.h"\n',
    "platform/h.h": '#include "XPLMUtilities.h"\n',
}))
expect("an ordered tree passes", code == 0 and out == "")

# Upward, sideways and outside includes are each named with file, line and edge; the
# loop they close is named too.
code, out = run(tree({
    "data/g.cpp": '#include "data/g.h"\n#include "motion/e.h"\n',
    "motion/e.h": '#include "data/g.h"\n',
    "airports/c.cpp": '\n\n#include "community/d.h"\n',
    "community/d.h": "",
    "inputs/f.cpp": '#include "host/host.h"\n',
    "host/host.h": "",
}))
lines = out.splitlines()
expect("exit status 1 on a wrong include", code == 1)
expect("upward include named", "data/g.cpp:2: data -> motion: motion/ stands above data/ (motion/e.h)" in lines)
expect("sideways include named", "airports/c.cpp:3: airports -> community: community/ stands beside airports/ (community/d.h)" in lines)
expect("outside folder named", any(l.startswith("inputs/f.cpp:1: inputs -> host:") for l in lines))
expect("loop named", "loop: data -> motion -> data" in lines)
expect("nothing else", len(lines) == 4)

# The repository keeps the order.
code, out = run(os.path.join(HERE, ".."))
expect("the repository passes: " + out, code == 0)

for f in failures:
    print("FAILED:", f)
sys.exit(1 if failures else 0)

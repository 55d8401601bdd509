#!/usr/bin/python3
"""Fails when the project's own #include graph of app/, bitmap/ or util/ has
a cycle between modules (a header and its source file are one module), or when a library includes a layer above it (bitmap/ nothing of
util/ or app/; util/ nothing of app/). Prints the cycle or the offending edge."""
import os
import re
import sys

root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
inc = re.compile(r'^\s*#\s*include\s+"((?:app|bitmap|util)/[^"]+)"', re.M)
graph = {}
for top in ("app", "bitmap", "util"):
    for d, _, files in os.walk(os.path.join(root, top)):
        for f in files:
            if f.endswith((".h", ".cpp")):
                module = os.path.splitext(os.path.relpath(os.path.join(d, f), root))[0]
                text = open(os.path.join(d, f), encoding="utf-8").read()
                graph.setdefault(module, set()).update(
                    os.path.splitext(h)[0] for h in inc.findall(text))
                graph[module].discard(module)

bad = [f"{f} includes {h}" for f, hs in graph.items() for h in hs
       if (f.startswith("bitmap/") and not h.startswith("bitmap/"))
       or (f.startswith("util/") and h.startswith("app/"))]
state, stack = {}, []


def visit(node):
    state[node] = 1
    stack.append(node)
    for h in graph.get(node, []):
        if state.get(h) == 1:
            bad.append("cycle: " + " -> ".join(stack[stack.index(h):] + [h]))
        elif h not in state:
            visit(h)
    stack.pop()
    state[node] = 2


for n in sorted(graph):
    graph[n] = sorted(graph[n])
for n in sorted(graph):
    if n not in state:
        visit(n)
for b in bad:
    print(b)
sys.exit(1 if bad else 0)

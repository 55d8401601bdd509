#!/usr/bin/python3
"""Loads a DXF file with ezdxf and prints what a CAD reader sees, for test_dxf.

Usage: dxf_entities.py FILE. Prints the table entries ("LAYER 1", "LTYPE
CONTINUOUS"), "EXTMAX x y", then one line per model-space entity: its type,
its layer and its corner coordinates in C's "%g". Fails (with ezdxf's
message) when the file does not load.
"""
import sys

import ezdxf


def g(values):
    return " ".join("%g" % v for v in values)


doc = ezdxf.readfile(sys.argv[1])

for layer in doc.layers:
    print("LAYER", layer.dxf.name)
for ltype in doc.linetypes:
    print("LTYPE", ltype.dxf.name)
print("EXTMAX", g(doc.header.get("$EXTMAX", ())))

CORNERS = {"POINT": ["location"], "LINE": ["start", "end"],
           "3DFACE": ["vtx0", "vtx1", "vtx2", "vtx3"]}
for e in doc.modelspace():
    kind = e.dxftype()
    coords = [c for name in CORNERS.get(kind, []) for c in e.dxf.get(name)]
    print(kind, e.dxf.layer, g(coords))

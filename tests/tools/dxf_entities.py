#!/usr/bin/python3
"""Loads a DXF file with ezdxf and prints what a CAD reader sees: dxf_entities.py FILE.
Prints "LAYER name", "LTYPE name", "EXTMAX x y", then per model-space entity its
type, layer and corner coordinates in C's "%g". Fails when the file does not load."""
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
CORNERS = {"POINT": ["location"], "LINE": ["start", "end"], "3DFACE": ["vtx0", "vtx1", "vtx2", "vtx3"]}
for e in doc.modelspace():
    print(e.dxftype(), e.dxf.layer, g([c for name in CORNERS.get(e.dxftype(), []) for c in e.dxf.get(name)]))

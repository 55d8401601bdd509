#!/usr/bin/python3
"""dxf_entities.py FILE: loads a DXF file with ezdxf and prints "LAYER name", "LTYPE name", "EXTMAX x y", then per
model-space entity its type, layer and corner coordinates in C's "%g". Fails when the file does not load."""
import sys

import ezdxf

doc = ezdxf.readfile(sys.argv[1])
print("\n".join(["LAYER " + t.dxf.name for t in doc.layers] + ["LTYPE " + t.dxf.name for t in doc.linetypes]))
print("EXTMAX", " ".join("%g" % v for v in doc.header.get("$EXTMAX", ())))
CORNERS = {"POINT": ["location"], "LINE": ["start", "end"], "3DFACE": ["vtx0", "vtx1", "vtx2", "vtx3"]}
for e in doc.modelspace():
    corners = [c for name in CORNERS.get(e.dxftype(), []) for c in e.dxf.get(name)]
    print(e.dxftype(), e.dxf.layer, " ".join("%g" % v for v in corners))

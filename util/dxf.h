// util/dxf.h - DXF and Radiance facet writers.
#pragma once

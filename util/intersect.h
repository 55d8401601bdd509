// util/intersect.h - lines, planes and polygons: distances, intersections and polygon tests.
#pragma once

// util/delaunay.h - Delaunay triangulation of points in the plane.
#pragma once

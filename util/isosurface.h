// util/isosurface.h - isosurface polygonisation of volume cells and facetted spheres.
#pragma once

// util/contour.h - contour lines of gridded data and plane sections of facets.
#pragma once

// util/util.h - umbrella header of the utility library.
//
// Free functions over plain records, one header per family. Functions return
// 1 on success and 0 on failure unless their header says otherwise. The
// library never prints and never exits.
#pragma once

#include "util/timer.h"
#include "util/terminal.h"
#include "util/arith.h"
#include "util/bessel.h"
#include "util/values.h"
#include "util/regress.h"
#include "util/vectors.h"
#include "util/stream.h"
#include "util/rle.h"
#include "util/dxf.h"
#include "util/audio.h"
#include "util/colour.h"
#include "util/curves.h"
#include "util/intersect.h"
#include "util/delaunay.h"
#include "util/contour.h"
#include "util/isosurface.h"
#include "util/matrix.h"
#include "util/random.h"
#include "util/fourier.h"
#include "util/complexq.h"

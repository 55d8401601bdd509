// util/util.h - umbrella header of the utility library.
//
// Free functions over plain records, one header per family. Functions return
// 1 on success and 0 on failure unless their header says otherwise. The
// library never prints and never exits.
#pragma once

#include "util/maths.h"
#include "util/regress.h"

// util/matrix.h - determinants, inverses, linear systems and matrix output.
#pragma once

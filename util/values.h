// util/values.h - clipping a value into a range, and exchanging two values.
// Pure functions over the caller's variables.
#pragma once

// Clips *v into [lower, upper]; returns 1 when it changed *v, else 0.
int ClipInteger(int *v, int lower, int upper);
// Note the reversed bounds: the second is the lower limit, the first the
// upper. The lower one is tested first. Returns 1 when it changed *v, else 0.
int ClipDouble(double *v, double upper, double lower);
void SwapDouble(double *a, double *b);

// util/arith.h - logarithm to any base, integer power, integer square root
// and factorial. Pure functions.
#pragma once

// log(x) / log(base), unguarded.
double Logarithm(double x, double base);
// x to the power n by repeated 64-bit multiplication (wraps); 1 for n < 1.
long PowerInt(long x, long n);
// Integer square root by bitwise trial from bit 2^14: never above 32767;
// 0 for negative n.
long IntSqrt(long n);
// n! as a double; 1.0 for n < 2, infinity above 170.
double Factorial(int n);

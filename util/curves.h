// util/curves.h - splines and Bezier curves.
#pragma once

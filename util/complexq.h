// util/complexq.h - complex numbers and quaternions.
#pragma once

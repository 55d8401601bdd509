// util/fourier.h - Fourier transforms and correlation.
#pragma once

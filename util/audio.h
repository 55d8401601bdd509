// util/audio.h - AIFF, AU and WAVE sample writers.
#pragma once

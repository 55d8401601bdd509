// util/colour.h - colour maps and RGB/HSV/HSL/YCC conversions.
#pragma once

// util/stream.h - binary and text stream helpers with byte-order control and string cleaning.
#pragma once

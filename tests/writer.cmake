# Image writer: byte-exact headers, run-length packets, round trips through the
# TGA reader, and files decoded by ImageMagick, Ghostscript and netpbm
# (cases skip when a program is missing; scripts/setup.sh installs them all).
# Suite names start with "writer" so that `ctest -R writer` selects the family.
quorl_unit_test(test_writer ${CMAKE_CURRENT_LIST_DIR}/test_writer.cpp LIBS bitmap)

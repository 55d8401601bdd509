# Run-length codec: packet bytes, round trips, buffer bounds.
quorl_unit_test(test_rle ${CMAKE_CURRENT_LIST_DIR}/test_rle.cpp LIBS util)

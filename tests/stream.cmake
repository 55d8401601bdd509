# Stream helpers: byte orders, line and word input, string helpers.
quorl_unit_test(test_stream ${CMAKE_CURRENT_LIST_DIR}/test_stream.cpp LIBS util)

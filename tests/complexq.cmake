# Complex numbers and quaternions, checked against std::complex where the
# formulas share its branches. Suite names: Complex, Quaternion.
quorl_unit_test(test_complexq ${CMAKE_CURRENT_LIST_DIR}/test_complexq.cpp LIBS util)

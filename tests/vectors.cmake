# Vectors, rotations, polar conversions and interpolation.
quorl_unit_test(test_vectors ${CMAKE_CURRENT_LIST_DIR}/test_vectors.cpp LIBS util)

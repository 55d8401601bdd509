# Lines, planes and polygons: the documented cases and seeded property checks.
quorl_unit_test(test_intersect ${CMAKE_CURRENT_LIST_DIR}/test_intersect.cpp LIBS util)

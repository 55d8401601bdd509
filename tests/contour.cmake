# Contouring: the one-cell cases, the visiting order, level curves of planes
# and cones on a grid, and plane sections of facets.
quorl_unit_test(test_contour ${CMAKE_CURRENT_LIST_DIR}/test_contour.cpp LIBS util)

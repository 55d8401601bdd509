# Delaunay triangulation: circle tests, the empty-circle property, the array
# bounds a caller provides, error codes, and whole triangulations compared with
# scipy.spatial.Delaunay (skipped when /usr/bin/python3 lacks scipy).
quorl_unit_test(test_delaunay ${CMAKE_CURRENT_LIST_DIR}/test_delaunay.cpp LIBS util)
target_compile_definitions(test_delaunay PRIVATE
  QUORL_DELAUNAY_CHECK="${CMAKE_CURRENT_LIST_DIR}/tools/delaunay_check.py")

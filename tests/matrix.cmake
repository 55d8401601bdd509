# Matrices and linear systems: inverses, determinants, the solver against
# numpy.linalg.solve (skipped without /usr/bin/python3 and numpy), and the
# text and HTML output byte for byte.
quorl_unit_test(test_matrix ${CMAKE_CURRENT_LIST_DIR}/test_matrix.cpp LIBS util)
target_compile_definitions(test_matrix PRIVATE
  QUORL_SOLVE_LINEAR="${CMAKE_CURRENT_LIST_DIR}/tools/solve_linear.py")

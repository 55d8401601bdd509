# Splines and Bezier curves: knots, end points, and agreement of the forms.
quorl_unit_test(test_curves ${CMAKE_CURRENT_LIST_DIR}/test_curves.cpp LIBS util)

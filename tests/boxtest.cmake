# The box test against a pixel-by-pixel reference, on random images, regions
# and boxes.
quorl_unit_test(test_boxtest ${CMAKE_CURRENT_LIST_DIR}/test_boxtest.cpp LIBS quorlcore)

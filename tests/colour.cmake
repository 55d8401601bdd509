# Colour maps and conversions; the hue conversions are checked against Python's
# colorsys through tests/tools/colorsys_grid.py (skipped without /usr/bin/python3).
quorl_unit_test(test_colour ${CMAKE_CURRENT_LIST_DIR}/test_colour.cpp LIBS util)
target_compile_definitions(test_colour PRIVATE
  QUORL_COLORSYS_GRID="${CMAKE_CURRENT_LIST_DIR}/tools/colorsys_grid.py")

# Raw single-key input (SetKeyboardIO) in a pseudo-terminal the test opens, and
# its failure on a pipe and /dev/null. Suite name: Keyboard.
quorl_unit_test(test_keyboard ${CMAKE_CURRENT_LIST_DIR}/test_keyboard.cpp LIBS util)

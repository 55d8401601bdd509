# AIFF, AU and WAVE writers: exact bytes, and files decoded by sox and soxi
# (skipped when sox is missing; scripts/setup.sh installs it).
quorl_unit_test(test_audio ${CMAKE_CURRENT_LIST_DIR}/test_audio.cpp LIBS util)

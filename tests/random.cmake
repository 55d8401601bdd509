# Random number generators: published check values, seeding, skipping and
# stepping back, moments. Suite names start with "Random".
quorl_unit_test(test_random ${CMAKE_CURRENT_LIST_DIR}/test_random.cpp LIBS util)

# Hostile input and scarce resources: the command-line seam, results that
# cannot be written, buffers that cannot be allocated, huge and lying headers.
# Tests labelled "heavy" need real memory (more than a gigabyte) and are left
# out of the sanitizer run.
quorl_e2e_test(e2e_limits limits.py)
quorl_e2e_test(e2e_large_image large_image.py heavy)
set_tests_properties(e2e_large_image PROPERTIES TIMEOUT 120)

# Fourier transforms and correlation; numpy.fft (through a helper script) is
# the reference for scaling and sign. Suite name: Fourier.
quorl_unit_test(test_fourier ${CMAKE_CURRENT_LIST_DIR}/test_fourier.cpp LIBS util)
target_compile_definitions(test_fourier PRIVATE
  QUORL_FFT_REFERENCE="${CMAKE_CURRENT_LIST_DIR}/tools/fft_reference.py")

# Installing: the installed tree (its files, the installed program, the
# example program built against it with find_package and with pkg-config)
# and the manual page. Label "install": a sanitized build is not installed
# for other programs, so its test run leaves these out (-LE install).
# They need the install rules of cmake/QuorlInstall.cmake (QUORL_CMAKEDIR).
if(DEFINED QUORL_CMAKEDIR)
  add_test(NAME install_tree
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/e2e/install.py ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR}
                   $<BOOL:${QUORL_SANITIZE}>
           WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
  set_tests_properties(install_tree PROPERTIES LABELS "install" SKIP_RETURN_CODE 77 TIMEOUT 300)

  add_test(NAME install_manpage COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/e2e/install_man.py $<TARGET_FILE:quorl>
           WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
  set_tests_properties(install_manpage PROPERTIES LABELS "install" SKIP_RETURN_CODE 77)
endif()

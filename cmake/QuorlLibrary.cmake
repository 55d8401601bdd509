# quorl_library(<name>): the install rules of one of the two libraries.
# Installed as libquorl-<name>.a (no clash with other libraries: the C library
# already has a libutil), exported as Quorl::<name>, headers under
# include/quorl/<name>; programs add include/quorl to their include path and
# write "<name>/<header>.h" as this build does.
include(GNUInstallDirs)
function(quorl_library name)
  add_library(Quorl::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    OUTPUT_NAME quorl-${name}
    INTERFACE_INCLUDE_DIRECTORIES "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>;$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quorl>")
  install(TARGETS ${name} EXPORT QuorlTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quorl/${name}
          FILES_MATCHING PATTERN "*.h")
endfunction()

# The interactive program: what its keys, menus and panels do (without a
# display), and end-to-end runs under a private Xvfb. The end-to-end scripts
# exit 77 (skipped) only when no X server with GLX can be started.
if(TARGET quorlshell)
  quorl_unit_test(test_gui_commands test_gui_commands.cpp LIBS quorlshell)
endif()

if(QUORL_GUI)
  foreach(t startup menus panels results)
    quorl_e2e_test(gui_${t} gui_${t}.py gui)
    set_tests_properties(gui_${t} PROPERTIES TIMEOUT 180)
  endforeach()
endif()

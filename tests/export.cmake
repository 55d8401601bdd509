# DXF, Radiance, AIFF, AU and WAVE writers: exact bytes, and whole files read
# by ezdxf (through tests/tools/dxf_entities.py) and by sox and soxi; those
# cases skip when the reader is missing (scripts/setup.sh installs them).
quorl_unit_test(test_export ${CMAKE_CURRENT_LIST_DIR}/test_export.cpp LIBS util)
target_compile_definitions(test_export PRIVATE
  QUORL_DXF_ENTITIES="${CMAKE_CURRENT_LIST_DIR}/tools/dxf_entities.py")

# DXF and Radiance facet writers: exact text, and whole drawings loaded by
# ezdxf through tests/tools/dxf_entities.py (skipped when ezdxf is missing).
quorl_unit_test(test_dxf ${CMAKE_CURRENT_LIST_DIR}/test_dxf.cpp LIBS util)
target_compile_definitions(test_dxf PRIVATE
  QUORL_DXF_ENTITIES="${CMAKE_CURRENT_LIST_DIR}/tools/dxf_entities.py")

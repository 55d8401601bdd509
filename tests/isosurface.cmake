# Isosurfaces: the marching-cubes tables checked against their rules, single
# cells, spheres polygonised by cubes and by tetrahedra (closed, oriented,
# converging area), and the subdivided octahedron.
quorl_unit_test(test_isosurface ${CMAKE_CURRENT_LIST_DIR}/test_isosurface.cpp LIBS util)

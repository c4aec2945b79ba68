# The simulator stand-in for Windows: the host's core as XPLM_64.dll, which the .xpl's
# import resolves to, and the runner as a Windows program that Wine runs. Drawing is
# left out (no OSMesa there): the runner always goes as with --no-draw.
file(GLOB WIN_HOST_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/host/*.cpp)
foreach(drawing graphics scene screenshot title_text gl_forward)
  list(REMOVE_ITEM WIN_HOST_SOURCES ${CMAKE_SOURCE_DIR}/host/${drawing}.cpp)
endforeach()
add_library(xplm_host SHARED ${WIN_HOST_SOURCES} ${CMAKE_SOURCE_DIR}/host/no_drawing.cpp)
target_compile_definitions(xplm_host PRIVATE XPLM=1)
target_include_directories(xplm_host PUBLIC ${CMAKE_SOURCE_DIR} ${XPLM_INCLUDE_DIRS})
target_link_libraries(xplm_host PUBLIC opengl32 Threads::Threads)
# The runner links the host's own C++ interface too: export everything of the host,
# nothing of the statically linked run-time libraries (which each program has its own).
set(WIN_RUNTIME_LIBS libgcc.a:libgcc_eh.a:libstdc++.a:libwinpthread.a:libmingwex.a:libmingw32.a:libmoldname.a)
target_link_options(xplm_host PRIVATE -Wl,--export-all-symbols -Wl,--exclude-libs,${WIN_RUNTIME_LIBS})
set_target_properties(xplm_host PROPERTIES PREFIX "" OUTPUT_NAME XPLM_64
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

file(GLOB WIN_RUNNER_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/runner/*.cpp)
add_executable(vistarig-sim ${WIN_RUNNER_SOURCES})
target_link_libraries(vistarig-sim PRIVATE xplm_host ${FREETYPE_LIBRARIES} psapi)
target_include_directories(vistarig-sim PRIVATE ${FREETYPE_INCLUDE_DIRS})
target_compile_definitions(vistarig-sim PRIVATE
  VISTARIG_XPL_PATH="Vistarig/win_x64/Vistarig.xpl" VISTARIG_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
set_target_properties(vistarig-sim PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
add_dependencies(vistarig-sim Vistarig)

# The TrackIR test double, as the vendor names its Windows library.
add_library(trackir_double SHARED ${CMAKE_SOURCE_DIR}/tests/support/trackir_double/trackir_double.cpp)
set_target_properties(trackir_double PROPERTIES PREFIX "" OUTPUT_NAME NPClient64
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
target_link_options(trackir_double PRIVATE -Wl,--export-all-symbols -Wl,--exclude-libs,${WIN_RUNTIME_LIBS})

# The Windows code paths' tests, run under Wine (tools/test-windows.sh), with GoogleTest
# compiled from the sources Debian's libgtest-dev ships.
set(WIN_GTEST_SOURCE_DIR /usr/src/googletest/googletest CACHE PATH "GoogleTest sources")
if(EXISTS ${WIN_GTEST_SOURCE_DIR}/CMakeLists.txt)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${WIN_GTEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  target_compile_options(gtest PRIVATE -w)
  target_compile_options(gtest_main PRIVATE -w)
  add_executable(vistarig_windows_tests ${CMAKE_SOURCE_DIR}/tests/windows/windows_platform_test.cpp)
  target_link_libraries(vistarig_windows_tests PRIVATE vistarig_core xplm_host gtest_main)
  set_target_properties(vistarig_windows_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  add_dependencies(vistarig_windows_tests trackir_double)
endif()

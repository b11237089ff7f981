# tervalon_library(NAME DIRS dir... [LIBS lib...])
# One static library from every .cpp in the named folders (not their tests).
# Globbing keeps the build files stable while classes are added.
function(tervalon_library name)
  cmake_parse_arguments(ARG "" "" "DIRS;LIBS" ${ARGN})
  set(sources)
  foreach(dir ${ARG_DIRS})
    file(GLOB found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.h)
    list(APPEND sources ${found})
  endforeach()
  if(NOT sources)
    # A folder whose classes come in a later step still gives a library to link.
    set(stub ${CMAKE_CURRENT_BINARY_DIR}/${name}_empty.cpp)
    file(WRITE ${stub} "namespace Tervalon {}\n")
    set(sources ${stub})
  endif()
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC ${ARG_LIBS})
endfunction()

# tervalon_add_tests(FOLDER [LIBS lib...])
# One test program per library folder from FOLDER/tests/*.cpp; every gtest case
# becomes one ctest test, run with a fixed zone and no display.
function(tervalon_add_tests folder)
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/tests/*.cpp)
  if(NOT tests)
    return()
  endif()
  set(target ${folder}_tests)
  add_executable(${target} ${tests})
  get_property(libs GLOBAL PROPERTY TERVALON_TEST_LIBS_${folder})
  get_property(gui GLOBAL PROPERTY TERVALON_TEST_GUI_${folder})
  if(gui)
    set(support TervalonTestSupportGui)
  else()
    set(support TervalonTestSupport)
  endif()
  target_link_libraries(${target} PRIVATE ${libs} ${support} GTest::gtest)
  target_compile_definitions(${target} PRIVATE TERVALON_TEST_DATA="${CMAKE_SOURCE_DIR}/${folder}/tests/data")
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;TZ=UTC")
endfunction()

# Records which libraries a folder's tests link against.
function(tervalon_test_libs folder)
  set_property(GLOBAL PROPERTY TERVALON_TEST_LIBS_${folder} ${ARGN})
endfunction()

# The tests of a folder that holds windows run under a QApplication.
function(tervalon_test_gui folder)
  set_property(GLOBAL PROPERTY TERVALON_TEST_GUI_${folder} ON)
endfunction()

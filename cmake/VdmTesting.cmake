# vdm_add_test(<name> SOURCES <files…> [LIBS <targets…>] [ENV <VAR=value…>] [LABELS <labels…>] [TIMEOUT <s>])
# One QtTest program per unit, run by CTest on the offscreen platform with Qt's asserts forced on.
set(VDM_TEST_OUTPUT_DIR ${CMAKE_BINARY_DIR}/tests)
# The shared folder beside the checkout holds the real-world document corpus.
get_filename_component(VDM_SHARED_DIR "${CMAKE_SOURCE_DIR}/../shared" ABSOLUTE)

function(vdm_add_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS;ENV;LABELS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE Qt5::Test ${T_LIBS})
  target_compile_definitions(${name} PRIVATE QT_FORCE_ASSERTS)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${VDM_TEST_OUTPUT_DIR})
  add_test(NAME ${name} COMMAND ${name})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_FORCE_ASSERTS=1;VDM_SHARED_DIR=${VDM_SHARED_DIR};${T_ENV}"
    TIMEOUT ${T_TIMEOUT})
  if(T_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${T_LABELS}")
  endif()
endfunction()

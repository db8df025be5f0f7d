# netvane_module(NAME SOURCES ... LINK ...): the static library of src/NAME. LINK names what its headers need.
function(netvane_module name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(netvane_${name} STATIC ${ARG_SOURCES})
    netvane_precompile(netvane_${name} ${ARG_LINK})
    target_link_libraries(netvane_${name} PUBLIC netvane_options ${ARG_LINK})
endfunction()

# netvane_test(NAME SOURCES ... LINK ...): one test executable, found by ctest under NAME.
function(netvane_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    netvane_precompile(${name} ${ARG_LINK})
    target_link_libraries(${name} PRIVATE ${ARG_LINK} netvane_test_support Qt6::Test)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 60 ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()

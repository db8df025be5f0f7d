# netvane_module(NAME SOURCES ... LINK ...): the static library of src/NAME. LINK names what its headers need.
function(netvane_module name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(netvane_${name} STATIC ${ARG_SOURCES})
    netvane_precompile(netvane_${name} ${ARG_LINK})
    target_link_libraries(netvane_${name} PUBLIC netvane_options ${ARG_LINK})
endfunction()

# netvane_tests(ROOM SOURCES ... LINK ... [WIDGETS]): one test executable for a room. Each source test_NAME.cpp is a
# class of tests, which ctest runs separately as ROOM.NAME. Its label is `hermetic` when it includes nothing that needs
# root, a namespace, a bus or a resolver.
function(netvane_tests room)
    cmake_parse_arguments(ARG "WIDGETS" "" "SOURCES;LINK" ${ARGN})
    set(target test_${room})
    add_executable(${target} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/test_main.cpp)
    netvane_precompile(${target} ${ARG_LINK})
    target_link_libraries(${target} PRIVATE ${ARG_LINK} netvane_test_support Qt6::Test)
    if(ARG_WIDGETS)
        target_compile_definitions(${target} PRIVATE NETVANE_TEST_WIDGETS)
        target_link_libraries(${target} PRIVATE Qt6::Widgets)
    endif()
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    foreach(source IN LISTS ARG_SOURCES)
        if(NOT source MATCHES "^test_(.*)\\.cpp$")
            continue()
        endif()
        set(name ${room}.${CMAKE_MATCH_1})
        add_test(NAME ${name} COMMAND ${target} ${CMAKE_MATCH_1})
        file(STRINGS ${source} needs REGEX "#include .*[\"/](private_bus|own_network|fake_bus_service|scan_services|fault|system_resolver)\\.h")
        if(NOT needs)
            set_tests_properties(${name} PROPERTIES LABELS hermetic)
        endif()
        # Freed memory is overwritten (mallopt(3)), so that reading it shows, in libraries too.
        set_tests_properties(${name} PROPERTIES TIMEOUT 60 SKIP_RETURN_CODE 77
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;MALLOC_PERTURB_=165")
    endforeach()
endfunction()

# netvane_services_of_program(VARIABLE LIBRARY...): what the views link, but not when they are built as the library that
# the program loads: then they use the program's own.
function(netvane_services_of_program variable)
    set(services ${ARGN})
    list(TRANSFORM services PREPEND "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:NETVANE_IS_LOADED>>>:")
    list(TRANSFORM services APPEND ">")
    set(${variable} ${services} PARENT_SCOPE)
endfunction()

# netvane_loads_views(PROGRAM): a program that loads the views from a separate library. The program contains and exports
# the symbols that the library needs, and no others.
function(netvane_loads_views program)
    set(taken ${CMAKE_BINARY_DIR}/netvane-views.symbols)
    target_link_libraries(${program} PRIVATE netvane_app netvane_system)
    target_link_options(${program} PRIVATE @${taken})
    set_property(TARGET ${program} APPEND PROPERTY LINK_DEPENDS ${taken})
    add_dependencies(${program} netvane-views)
    target_compile_definitions(${program} PRIVATE NETVANE_VIEWS="$<TARGET_FILE:netvane-views>")
endfunction()

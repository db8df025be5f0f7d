# One interface library has the options that every target is compiled with.
add_library(netvane_options INTERFACE)
target_include_directories(netvane_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(netvane_options INTERFACE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400
    NETVANE_VERSION="${PROJECT_VERSION}")
set(conversion_warning -Wconversion)
if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5)
    # The macros of newer versions of Qt Test narrow a duration, and GCC warns in the test that uses them.
    set(conversion_warning $<$<NOT:$<IN_LIST:Qt6::Test,$<TARGET_PROPERTY:LINK_LIBRARIES>>>:-Wconversion>)
endif()
target_compile_options(netvane_options INTERFACE
    -Wall -Wextra -Wshadow ${conversion_warning} -Wnon-virtual-dtor -Woverloaded-virtual
    # Records are initialized with only the known fields.
    -Wno-missing-field-initializers)
if(NETVANE_WERROR)
    target_compile_options(netvane_options INTERFACE -Werror)
endif()
if(NETVANE_SANITIZE)
    target_compile_options(netvane_options INTERFACE -fsanitize=${NETVANE_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all
        # GCC's flow analysis gives false warnings for instrumented code.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized> $<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>)
    target_link_options(netvane_options INTERFACE -fsanitize=${NETVANE_SANITIZE})
else()
    # The program decodes hostile data. These options make a memory fault end the program instead of running an
    # attacker's code.
    target_compile_options(netvane_options INTERFACE -fstack-protector-strong -fstack-clash-protection -fcf-protection
        $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release,RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
    target_link_options(netvane_options INTERFACE -Wl,-z,relro -Wl,-z,now)
endif()
include(CheckPIESupported)
check_pie_supported()
# Programs are compiled like the libraries and not with -fPIE, which does not accept their precompiled headers. The
# linker still makes them position-independent.
set(CMAKE_CXX_COMPILE_OPTIONS_PIE ${CMAKE_CXX_COMPILE_OPTIONS_PIC})

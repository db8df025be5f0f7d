# Most of a build is reading the same large headers again; they are read once, for code with views and without.
# Sources name what they use all the same: clang-tidy reads them without this. Not Qt Test, which reads
# differently in each test.
option(NETVANE_PRECOMPILE "Read the large headers once" ON)

function(netvane_precompiled_headers name)
    cmake_parse_arguments(ARG "" "" "LINK;HEADERS" ${ARGN})
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "")
    add_library(${name} STATIC ${CMAKE_BINARY_DIR}/${name}.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${name} PRIVATE netvane_options ${ARG_LINK})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

if(NETVANE_PRECOMPILE)
    # No more than most sources use: what a header leaves to be instantiated is done again in each source.
    set(core_headers <algorithm> <array> <atomic> <chrono> <functional> <memory> <optional> <string> <vector>
        <QCoreApplication> <QDateTime> <QDir> <QFile> <QHash> <QList> <QMetaType> <QObject> <QPointer> <QSocketNotifier>
        <QString> <QStringList> <QThread> <QTimer> <QUrl> <QVariant>)
    netvane_precompiled_headers(netvane_precompiled
        LINK Qt6::Core
        HEADERS ${core_headers})
    netvane_precompiled_headers(netvane_precompiled_views
        LINK Qt6::Quick
        HEADERS ${core_headers} <QPainter> <QQmlEngine> <QQuickPaintedItem> <QQuickWindow> <QtQml/qqmlprivate.h>
            <QtQmlIntegration>)
endif()

# netvane_precompile(TARGET LINK...): LINK is what the target links, which tells whether it knows of views.
function(netvane_precompile target)
    if(NOT NETVANE_PRECOMPILE)
        return()
    endif()
    if("${ARGN}" MATCHES "netvane_(ui|windows|demo|view)|Qt6::Quick")
        target_precompile_headers(${target} REUSE_FROM netvane_precompiled_views)
    else()
        target_precompile_headers(${target} REUSE_FROM netvane_precompiled)
    endif()
endfunction()

# Most of the time of a build is parsing the same large headers. They are parsed once, for code with and without views.
# Sources still include what they use: clang-tidy reads them without this. Qt Test is left out, since it depends on
# macros of each test.
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
    # Only what most sources use: the templates of a header are instantiated again in each source.
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

# netvane_precompile(TARGET LINK...): LINK is what the target links; it decides whether the target uses views.
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

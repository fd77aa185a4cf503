# Headers that nearly every source of a target includes are precompiled. Each source still includes what it
# uses, because clang-tidy and the builds for Windows do without precompiled headers. (GCC's cross compiler would
# warn about code inside std::string from a precompiled header, MSVC about a source that has more definitions.)
if(WIN32)
    set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()

# These precompiled headers depend on compiler options only, so ccache may ignore macros when it compares
# them. Paths are relative to the source folder, so that checkouts in different folders share the cache.
if(CCACHE_PROGRAM AND NOT MSVC)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        ${CCACHE_PROGRAM})
    add_compile_options($<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-fpch-preprocess>)
endif()

set(TARN_STANDARD_HEADERS
    <algorithm> <array> <atomic> <chrono> <cstdint> <filesystem> <fstream> <functional> <memory> <optional> <span>
    <string> <string_view> <utility> <vector>)
set(TARN_QT_HEADERS
    <QByteArray> <QCoreApplication> <QDebug> <QDir> <QFile> <QFileInfo> <QJsonDocument> <QJsonObject> <QList> <QMutex>
    <QObject> <QProcess> <QString> <QStringList> <QThread> <QTimer>)

set(TARN_WIDGET_HEADERS
    <QAbstractTableModel> <QApplication> <QBoxLayout> <QComboBox> <QDateTime> <QLabel> <QLineEdit> <QPainter> <QPushButton>
    <QSettings> <QSplitter> <QString> <QStringList> <QTableView> <QTimer>)

# Precompiling takes as long as several sources, so targets with the same compiler options share the headers. Those belong
# to a library that has nothing else: the compiler refuses headers that saw a definition which the source does not have,
# while a source may have more definitions than the headers asked for.
#
#   tarn_precompile(NAME HEADERS <header> ... LIBRARIES target ... DEFINITIONS NAME ...)
#   tarn_use_precompiled(NAME target ...)
function(tarn_precompile name)
    cmake_parse_arguments(PARSE_ARGV 1 precompiled "" "" "HEADERS;LIBRARIES;DEFINITIONS")
    add_library(${name} OBJECT ${PROJECT_SOURCE_DIR}/cmake/precompiled_headers.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${name} PRIVATE ${precompiled_LIBRARIES})
    target_compile_definitions(${name} PRIVATE ${precompiled_DEFINITIONS})
    target_precompile_headers(${name} PRIVATE ${precompiled_HEADERS})
endfunction()

function(tarn_use_precompiled name)
    foreach(target ${ARGN})
        target_precompile_headers(${target} REUSE_FROM ${name})
    endforeach()
endfunction()

# Small sources with much the same headers are compiled together, BATCH of them at a time. clang-tidy needs
# each by itself.
option(TARN_UNITE_SOURCES "Compile small sources together" ON)
function(tarn_unite_sources target batch)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${TARN_UNITE_SOURCES} UNITY_BUILD_BATCH_SIZE ${batch})
    # GCC takes an anonymous namespace in such a file for one in a header, and would warn.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# Compiles only the sources of one list together, so that a list in which one more stands does not bring files of others
# together whose names clash. For targets with several lists, called for each of them.
function(tarn_unite_list target name batch)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${TARN_UNITE_SOURCES} UNITY_BUILD_MODE GROUP)
    set(count 0)
    foreach(source ${ARGN})
        math(EXPR part "${count} / ${batch}")
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${name}_${part})
        math(EXPR count "${count} + 1")
    endforeach()
endfunction()

# Headers that nearly every source of a target includes are precompiled. Each source still includes what it
# uses, because clang-tidy and the cross build do without precompiled headers. (GCC's cross compiler would
# warn about code inside std::string from a precompiled header.)
if(MINGW)
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

function(tarn_precompile_standard target)
    target_precompile_headers(${target} PRIVATE ${TARN_STANDARD_HEADERS})
endfunction()

function(tarn_precompile_qt target)
    target_precompile_headers(${target} PRIVATE <atomic> <chrono> <functional> <memory> <optional> <string> <vector>
        ${TARN_QT_HEADERS})
endfunction()

# They take longer than a small library: another target with the same compiler options shares them.
function(tarn_precompile_widgets target)
    target_precompile_headers(${target} PRIVATE <chrono> <functional> <memory> <optional> <vector> <QtCore> <QtWidgets>)
endfunction()

function(tarn_share_widgets target owner)
    target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()

function(tarn_precompile_tests target)
    target_precompile_headers(${target} PRIVATE <gtest/gtest.h> ${TARN_STANDARD_HEADERS} ${TARN_QT_HEADERS})
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

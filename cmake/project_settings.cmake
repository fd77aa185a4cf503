# Settings that hold for every target of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

if(MSVC)
    add_compile_options(/W4 /WX /utf-8 /permissive-)
else()
    # For C++ only: the resource compiler does not know these options.
    add_compile_options(
        "$<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion;-Wnon-virtual-dtor;-Werror>")
endif()

if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Part of Clang's -Wconversion, but not of GCC's.
    add_compile_options(-Wno-sign-conversion)
endif()

if(MINGW)
    # GCC 12 sees an overlap in std::string's own append that cannot happen (GCC bug 105651).
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
    # Reproducible builds: the same sources give the same bytes.
    add_link_options(-Wl,--no-insert-timestamp)
endif()

if(WIN32)
    add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
endif()

# Literals are text, and may be converted implicitly where a target allows it. A QByteArray must be converted
# explicitly, because the encoding of its bytes is not known.
add_compile_definitions(QT_NO_CAST_FROM_BYTEARRAY QT_NO_FOREACH)

if(TARN_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(TARN_SANITIZE STREQUAL "fuzzer")
    # With the address sanitizer as well. The fuzzer's main function is linked into the fuzz programs only.
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    add_link_options(-fsanitize=address,undefined)
elseif(TARN_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
endif()

if(TARN_COVERAGE)
    add_compile_options(--coverage -O0)
    add_link_options(--coverage)
endif()

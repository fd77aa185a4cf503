# What the explorer, the task manager and the installer read from a program: version, description, icon.

if(WIN32)
    enable_language(RC)
endif()

# tarn_windows_resource(TARGET "what it is"): nothing happens for other systems.
function(tarn_windows_resource target description)
    if(NOT WIN32)
        return()
    endif()
    set(TARN_PROGRAM ${target})
    set(TARN_DESCRIPTION ${description})
    set(TARN_ICON_LINE "")
    set(icon ${PROJECT_SOURCE_DIR}/packaging/tarn_service.ico)
    if(EXISTS ${icon})
        set(TARN_ICON_LINE "1 ICON \"${icon}\"")
    endif()
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
endfunction()

# tarn_message_table(PROGRAM LIBRARY events.mc): compiles the messages of the event log. The header with their numbers,
# events.h, is for the library; the table goes into the program.
function(tarn_message_table program library messages)
    if(MSVC)
        find_program(TARN_MESSAGE_COMPILER mc REQUIRED)
    else()
        find_program(TARN_MESSAGE_COMPILER NAMES ${tarn_mingw_triplet}-windmc windmc REQUIRED)
    endif()
    get_filename_component(name ${messages} NAME_WE)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/messages)
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(
        OUTPUT ${folder}/${name}.h ${folder}/${name}.rc
        BYPRODUCTS ${folder}/${name}_english.bin
        COMMAND ${TARN_MESSAGE_COMPILER} -h ${folder} -r ${folder} ${CMAKE_CURRENT_SOURCE_DIR}/${messages}
        DEPENDS ${messages}
        VERBATIM)
    target_sources(${library} PRIVATE ${folder}/${name}.h)
    target_include_directories(${library} PRIVATE ${folder})
    add_dependencies(${program} ${library}) # which runs the command
    target_sources(${program} PRIVATE ${folder}/${name}.rc)
    target_include_directories(${program} PRIVATE ${folder})
endfunction()

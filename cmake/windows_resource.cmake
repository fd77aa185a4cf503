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

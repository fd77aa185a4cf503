# Tests of tarnctl; the executable that takes them links tarnctl_logic.
set(CLIENT_TEST_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/command_catalogue_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/data_rule_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fake_service.cpp
    ${CMAKE_CURRENT_LIST_DIR}/firmware_update_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/json_splitter_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/message_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/one_shot_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/raw_exchange_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/staged_firmware_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/stdin_reader_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tool_options_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tool_run.cpp
    ${CMAKE_CURRENT_LIST_DIR}/update_progress_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/update_run.cpp
    ${CMAKE_CURRENT_LIST_DIR}/watch_test.cpp
)

# Tests of the client library and of tarnctl; the executable that takes them links tarnctl_logic.
file(GLOB CLIENT_TEST_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp ${CMAKE_CURRENT_LIST_DIR}/tarnctl/*.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tarnctl/check/*.cpp ${CMAKE_CURRENT_LIST_DIR}/tarnctl/diagnose/*.cpp)

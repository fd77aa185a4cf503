# Tests of the simulated computer; paths are relative to this folder.
set(SIMULATOR_TEST_SOURCES
    recording/channel_decoder_test.cpp
    recording/comparison_of_everything_test.cpp
    recording/comparison_of_faults_test.cpp
    recording/comparison_test.cpp
    recording/deviation_test.cpp
    recording/recording_summary_test.cpp
    replay/loose_replay_test.cpp
    replay/replay_steps_test.cpp
    replay/replay_verb_test.cpp
    replay/request_places_test.cpp
    replay/strict_replay_test.cpp
    simulated_accessories_test.cpp
    simulated_boot_loader_test.cpp
    simulated_channel_test.cpp
    simulated_computer_test.cpp
    simulated_desktop_test.cpp
    simulated_devices_test.cpp
    simulated_eeprom_test.cpp
    simulated_events_test.cpp
    simulated_faults_test.cpp
    simulated_flash_faults_test.cpp
    simulated_mailbox_test.cpp
    simulated_mcu_test.cpp
    simulated_port_library_test.cpp
    simulated_register_log_test.cpp
    simulated_register_table_test.cpp
    simulated_registers_test.cpp
    simulated_state_file_test.cpp
    simulated_values_test.cpp
    tarnsim_device_verbs_test.cpp
    tarnsim_fault_verbs_test.cpp
    tarnsim_firmware_verb_test.cpp
    tarnsim_recording_verbs_test.cpp
    tarnsim_register_verbs_test.cpp
    tarnsim_test.cpp)

set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/simulated_port_library_test.cpp PROPERTIES
    COMPILE_DEFINITIONS "TARN_SIMULATED_PORT_LIBRARY=\"$<TARGET_FILE:tarn_port_library>\"")

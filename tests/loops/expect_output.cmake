# Runs a program: cmake [-D EMULATOR=...] -D PROGRAM=... -D EXPECTED=... -P expect_output.cmake
# Fails where it does not exit with 0 or prints anything but the expected lines.
execute_process(COMMAND ${EMULATOR} ${PROGRAM} OUTPUT_VARIABLE printed RESULT_VARIABLE status)
string(REPLACE "\r\n" "\n" printed "${printed}")
string(STRIP "${printed}" printed)
if(NOT status EQUAL 0 OR NOT printed STREQUAL EXPECTED)
  message(FATAL_ERROR "exit status ${status}, expected 0\nprinted:\n${printed}\nexpected:\n${EXPECTED}")
endif()

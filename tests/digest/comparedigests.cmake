# Compares what DIGEST writes with the file EXPECTED: about the recording that MAKEGREETING makes as RECORDING if that is
# given, else about random observations.

if(MAKEGREETING)
  execute_process(COMMAND ${MAKEGREETING} ${RECORDING} COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(COMMAND ${DIGEST} ${RECORDING} OUTPUT_VARIABLE digests COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXPECTED} expected)
if(NOT digests STREQUAL expected)
  message(FATAL_ERROR "The states are not what they were.\nExpected:\n${expected}\nNow:\n${digests}")
endif()

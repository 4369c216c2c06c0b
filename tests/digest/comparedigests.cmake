# Compares the output of DIGEST with the file EXPECTED: for the recording that MAKEGREETING makes as RECORDING if that is given,
# else for random observations.

if(MAKEGREETING)
  execute_process(COMMAND ${MAKEGREETING} ${RECORDING} COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(COMMAND ${DIGEST} ${RECORDING} OUTPUT_VARIABLE digests COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXPECTED} expected)
if(NOT digests STREQUAL expected)
  message(FATAL_ERROR "The states are not what they were.\nExpected:\n${expected}\nNow:\n${digests}")
endif()

# Runs PROGRAM (with the ;-separated ARGS) in a fresh DIR and passes when it exits with 0 and its
# standard output matches the regular expression EXPECT. ctest's own output checks ignore the
# exit code.
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}")
execute_process(COMMAND "${PROGRAM}" ${ARGS}
    WORKING_DIRECTORY "${DIR}"
    OUTPUT_VARIABLE out
    ERROR_VARIABLE err
    RESULT_VARIABLE result
    TIMEOUT 60)
message("${out}${err}")
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ended with ${result}")
endif()
if(NOT out MATCHES "${EXPECT}")
    message(FATAL_ERROR "${PROGRAM} did not print anything matching: ${EXPECT}")
endif()

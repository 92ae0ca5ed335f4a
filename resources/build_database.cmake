# Runs each SQL file into one new database; any SQL error fails the build.
foreach(sql IN LISTS INPUTS)
    execute_process(
        COMMAND "${SQLITE3}" -bail -batch "${OUTPUT}"
        INPUT_FILE "${sql}"
        RESULT_VARIABLE result
        ERROR_VARIABLE errors)
    if(NOT result EQUAL 0 OR errors)
        message(FATAL_ERROR "${sql}: ${errors}")
    endif()
endforeach()

# Fails when a C++ source of the project is not formatted as .clang-format says.
find_program(CLANG_FORMAT NAMES clang-format clang-format-14 REQUIRED)
file(GLOB_RECURSE files
     ${SOURCE_DIR}/include/*.h ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp
     ${SOURCE_DIR}/apps/*.h ${SOURCE_DIR}/apps/*.cpp ${SOURCE_DIR}/tests/*.h
     ${SOURCE_DIR}/tests/*.cpp ${SOURCE_DIR}/bench/*.cpp ${SOURCE_DIR}/fuzz/*.h
     ${SOURCE_DIR}/fuzz/*.cpp ${SOURCE_DIR}/plugins/*/*.h ${SOURCE_DIR}/plugins/*/*.cpp)
set(bad "")
foreach(f IN LISTS files)
  execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${f}
                  RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
  if(NOT rc EQUAL 0)
    file(RELATIVE_PATH rel ${SOURCE_DIR} ${f})
    list(APPEND bad ${rel})
  endif()
endforeach()
if(bad)
  list(JOIN bad "\n  " lines)
  message(FATAL_ERROR "Not formatted (run: make format):\n  ${lines}")
endif()
list(LENGTH files n)
message(STATUS "${n} files formatted as .clang-format says")

# Fails when Doxygen finds a public class, property, function, signal, enumeration or
# enumerator of include/velmora without documentation, or any other warning about the
# public headers (a broken reference, a parameter that does not exist). Warnings about
# the guides in docs/ are printed but do not fail. Doxygen does not warn about an
# enumerator without documentation: those are found in its XML output.
#   cmake -DDOXYGEN=<doxygen> -DDOXYFILE=<build>/docs/Doxyfile -DWORK_DIR=<dir>
#         -DSOURCE_DIR=<source> -P check-api-docs.cmake
cmake_minimum_required(VERSION 3.25)
foreach(var DOXYGEN DOXYFILE WORK_DIR SOURCE_DIR)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "check-api-docs: -D${var}=... is missing")
  endif()
endforeach()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
set(log ${WORK_DIR}/warnings.log)
file(WRITE ${WORK_DIR}/Doxyfile
  "@INCLUDE = ${DOXYFILE}\n"
  "OUTPUT_DIRECTORY = ${WORK_DIR}\n"
  "WARN_LOGFILE = ${log}\n"
  "WARN_IF_UNDOCUMENTED = YES\n"
  "WARN_IF_DOC_ERROR = YES\n"
  "WARN_NO_PARAMDOC = NO\n"
  "WARN_AS_ERROR = NO\n"
  "QUIET = YES\n"
  "GENERATE_HTML = NO\n"
  "GENERATE_XML = YES\n"
  "XML_PROGRAMLISTING = NO\n")

execute_process(COMMAND ${DOXYGEN} ${WORK_DIR}/Doxyfile
                WORKING_DIRECTORY ${WORK_DIR} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "check-api-docs: doxygen failed (${rc})")
endif()

set(warnings "")
if(EXISTS ${log})
  file(STRINGS ${log} warnings)
endif()
set(faults "")
set(notes "")
foreach(line IN LISTS warnings)
  string(REPLACE "${SOURCE_DIR}/" "" line "${line}")
  if(line MATCHES "^include/velmora/[^:]*\\.h:" OR line MATCHES "is not documented")
    list(APPEND faults "${line}")
  elseif(line MATCHES "warning:")
    list(APPEND notes "${line}")
  endif()
endforeach()

# Every enumerator needs a brief or a detailed description: a <para> in its block.
file(GLOB xml_files ${WORK_DIR}/xml/*.xml)
foreach(xml IN LISTS xml_files)
  file(READ ${xml} text)
  string(REGEX MATCH "<compoundname>[^<]*</compoundname>" compound "${text}")
  string(REGEX REPLACE "</?compoundname>" "" compound "${compound}")
  while(TRUE)
    string(FIND "${text}" "<enumvalue " start)
    if(start EQUAL -1)
      break()
    endif()
    string(SUBSTRING "${text}" ${start} -1 text)
    string(FIND "${text}" "</enumvalue>" stop)
    string(SUBSTRING "${text}" 0 ${stop} block)
    string(SUBSTRING "${text}" ${stop} -1 text)
    if(NOT block MATCHES "<para>")
      string(REGEX MATCH "<name>[^<]*</name>" name "${block}")
      string(REGEX REPLACE "</?name>" "" name "${name}")
      list(APPEND faults "Enumerator ${name} of ${compound} is not documented.")
    endif()
  endwhile()
endforeach()

if(notes)
  list(JOIN notes "\n  " text)
  message(STATUS "Warnings about the guides (not a failure):\n  ${text}")
endif()
if(faults)
  list(LENGTH faults n)
  list(JOIN faults "\n  " text)
  message(FATAL_ERROR "${n} public members undocumented or with documentation faults:\n  ${text}")
endif()
message(STATUS "Every public member of include/velmora is documented")

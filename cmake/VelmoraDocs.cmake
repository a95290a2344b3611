# The API reference: `cmake --build <build> --target docs` (or `make docs`) writes it
# to <build>/docs/html. Without Doxygen there is no docs target and no api_docs test.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  message(STATUS "Doxygen not found: no docs target (install doxygen for the API reference)")
  return()
endif()

set(VELMORA_DOCS_OUTPUT ${PROJECT_BINARY_DIR}/docs)
set(VELMORA_DOXYFILE ${VELMORA_DOCS_OUTPUT}/Doxyfile)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${VELMORA_DOXYFILE} @ONLY)

add_custom_target(docs
  COMMAND Doxygen::doxygen ${VELMORA_DOXYFILE}
  COMMAND ${CMAKE_COMMAND} -E echo "API reference: ${VELMORA_DOCS_OUTPUT}/html/index.html"
  WORKING_DIRECTORY ${VELMORA_DOCS_OUTPUT}
  COMMENT "Writing the API reference with Doxygen"
  VERBATIM)

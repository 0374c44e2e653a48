# Holds the program against the README, then configures, builds and runs one consumer project from nothing and compares what it prints.
# Called with -DPROJECT, -DBINARY_DIR, -DPREFIX, -DHEARTH_SOURCE_DIR, -DLIBDIR, -DSHARED, -DNET, -DCOMPILER, -DGENERATOR.
file(READ ${HEARTH_SOURCE_DIR}/README.md readme)
file(READ ${CMAKE_CURRENT_LIST_DIR}/program.cpp program)
string(REGEX REPLACE "^(//[^\n]*\n)+" "" program "${program}")
string(FIND "${readme}" "```cpp\n${program}```\n" shown)
if(shown EQUAL -1)
  message(FATAL_ERROR "README.md shows another program than tests/consumers/program.cpp")
endif()

file(REMOVE_RECURSE ${BINARY_DIR})
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR})
execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND ${CMAKE_COMMAND} -G ${GENERATOR}
  -S ${CMAKE_CURRENT_LIST_DIR}/${PROJECT} -B ${BINARY_DIR} -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=${COMPILER}
  -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_PREFIX_PATH=${PREFIX} -DBUILD_SHARED_LIBS=${SHARED}
  -DHEARTH_SOURCE_DIR=${HEARTH_SOURCE_DIR} -DNET=${NET} -DHEARTH_NET=${NET})

function(check_program target name)
  execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND ${CMAKE_COMMAND} --build ${BINARY_DIR} --target ${target} -j2)
  execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND ${BINARY_DIR}/${target} OUTPUT_VARIABLE printed)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/${name}.expected expected)
  if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "printed:\n${printed}\nexpected:\n${expected}")
  endif()
endfunction()

check_program(consumer program)
if(NET)
  check_program(net_consumer net_program)
endif()

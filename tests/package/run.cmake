# Installs the build into a fresh folder, then builds and runs a C and a C++ program that find the package there.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${FOLDER})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}/prefix)

set(arguments -G ${CMAKE_GENERATOR} -D CMAKE_PREFIX_PATH=${FOLDER}/prefix -D CMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
              "-DCMAKE_C_FLAGS=${CMAKE_C_FLAGS}" "-DCMAKE_CXX_FLAGS=${CMAKE_CXX_FLAGS}")
if(CMAKE_TOOLCHAIN_FILE)
  list(APPEND arguments -D CMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE})
else()
  list(APPEND arguments -D CMAKE_C_COMPILER=${CMAKE_C_COMPILER} -D CMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER})
endif()
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER}/build ${arguments})
run(${CMAKE_COMMAND} --build ${FOLDER}/build)
run(${CTEST} --test-dir ${FOLDER}/build --output-on-failure --no-tests=error)

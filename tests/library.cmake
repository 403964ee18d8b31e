# Tests of the shared library as a file: what it exports, what it needs, and that an installed copy can be used.
# Sanitizers add symbols and libraries of their own, so these tests belong to the plain builds.
if(ZRCLB_SANITIZE)
  return()
endif()

add_test(NAME library_exports
         COMMAND ${CMAKE_COMMAND} -D LIBRARY=$<TARGET_FILE:zrclb> -D NM=${CMAKE_NM} -D OBJDUMP=${CMAKE_OBJDUMP}
                 -D OBJECTS=${PROJECT_BINARY_DIR}/src/objects.txt -D PREFIX=${zrclb_symbol_prefix} -D EXPORTS=${PROJECT_SOURCE_DIR}/cmake/exports.txt
                 -P ${PROJECT_SOURCE_DIR}/cmake/CheckExports.cmake)
add_test(NAME library_needs
         COMMAND ${CMAKE_COMMAND} -D LIBRARY=$<TARGET_FILE:zrclb> -D OBJDUMP=${CMAKE_OBJDUMP}
                 -D VERSION=${PROJECT_VERSION} -D SOVERSION=${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
                 -P ${PROJECT_SOURCE_DIR}/cmake/CheckNeeds.cmake)

set(package_arguments -D BUILD=${PROJECT_BINARY_DIR} -D SOURCE=${CMAKE_CURRENT_SOURCE_DIR}/package
                      -D FOLDER=${CMAKE_CURRENT_BINARY_DIR}/package -D CTEST=${CMAKE_CTEST_COMMAND})
foreach(variable CMAKE_GENERATOR CMAKE_BUILD_TYPE CMAKE_TOOLCHAIN_FILE CMAKE_C_COMPILER CMAKE_CXX_COMPILER CMAKE_C_FLAGS
                 CMAKE_CXX_FLAGS)
  list(APPEND package_arguments -D ${variable}=${${variable}})
endforeach()
add_test(NAME library_package COMMAND ${CMAKE_COMMAND} ${package_arguments} -P ${CMAKE_CURRENT_SOURCE_DIR}/package/run.cmake)

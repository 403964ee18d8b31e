# Each public header alone and twice, as C17 and as C++20 (*.hpp as C++20 only), with every warning fatal.
file(GLOB public_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/include/zrclb/*.h
     ${PROJECT_SOURCE_DIR}/include/zrclb/*.hpp)
set(header_sources "")
foreach(header IN LISTS public_headers)
  set(languages c cpp)
  if(header MATCHES "\\.hpp$")
    set(languages cpp)
  endif()
  foreach(language IN LISTS languages)
    string(MAKE_C_IDENTIFIER ${header} name)
    set(file ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.${language})
    file(CONFIGURE OUTPUT ${file}
         CONTENT "#include <${header}>\n#include <${header}>\nextern int ${name};\nint ${name} = 1;\n")
    list(APPEND header_sources ${file})
  endforeach()
endforeach()
add_library(header_tests OBJECT ${header_sources})
target_include_directories(header_tests PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_options(header_tests PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wundef -Werror
                                            $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)

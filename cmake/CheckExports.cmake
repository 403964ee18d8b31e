# Fails unless the library exports exactly what the export list says.
#   cmake -D LIBRARY=... -D NM=... -D OBJDUMP=... -D OBJECTS=<file with one object a line> -D PREFIX=<of symbols> -D EXPORTS=<list>
#         -P CheckExports.cmake
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/ExportList.cmake)
read_export_list("${EXPORTS}")

# What the library shows to the loader.
set(exported "")
if(LIBRARY MATCHES "\\.dll$")
  execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE ".*\\[Ordinal/Name Pointer\\] Table" "" text "${text}")
  string(REGEX MATCHALL "\t\\[ *[0-9]+\\] [^\n]+" lines "${text}")
else()
  execute_process(COMMAND ${NM} --dynamic --defined-only --format=posix ${LIBRARY} OUTPUT_VARIABLE text
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+" lines "${text}")
  list(TRANSFORM lines REPLACE " .*" "")
endif()
foreach(line IN LISTS lines)
  string(REGEX MATCH "[^ @]+(@.*)?$" name "${line}")
  string(REGEX REPLACE "@.*" "" name "${name}")
  list(APPEND exported "${name}")
endforeach()

# What the list asks for: its functions, and of its classes what the objects define beyond inline members.
set(expected ${functions})
execute_process(COMMAND ${NM} --defined-only --extern-only --format=posix @${OBJECTS} OUTPUT_VARIABLE text
                COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${text}")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^${PREFIX}([^ ]+) ([A-Za-z]) ")
    continue()
  endif()
  set(name "${CMAKE_MATCH_1}")
  set(type "${CMAKE_MATCH_2}")
  if(name MATCHES "${class_symbols}" AND (type STREQUAL "T" OR name MATCHES "^_ZT"))
    list(APPEND expected "${name}")
  endif()
endforeach()
list(REMOVE_DUPLICATES expected)

# A listed class without a single member is as missing as a function is.
foreach(class IN LISTS classes)
  class_pattern(pattern ${class})
  set(members ${exported})
  list(FILTER members INCLUDE REGEX "${pattern}")
  if(NOT members)
    list(APPEND expected "${class}")
  endif()
endforeach()

set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
set(surplus ${exported})
list(REMOVE_ITEM surplus ${expected})
list(LENGTH exported count)
if(missing OR surplus OR count EQUAL 0)
  list(JOIN missing "\n  " missing)
  list(JOIN surplus "\n  " surplus)
  message(FATAL_ERROR "${count} exported symbols\nmissing:\n  ${missing}\nnot in the list:\n  ${surplus}")
endif()
message(STATUS "${count} exported symbols, as listed")

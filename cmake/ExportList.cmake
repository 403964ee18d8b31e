# Reads the export list and picks symbols by it. Used by the build (MakeExports.cmake) and by the test of the library
# (CheckExports.cmake).

# Sets `functions` to the plain names and `classes` to the qualified class names of the list `file`. A class outside of all
# namespaces stands there with the leading "::" alone.
macro(read_export_list file)
  file(STRINGS "${file}" export_lines REGEX "^[^#]")
  set(functions ${export_lines})
  list(FILTER functions EXCLUDE REGEX "::")
  set(classes ${export_lines})
  list(FILTER classes INCLUDE REGEX "::")
  class_pattern(class_symbols ${classes})
endmacro()

# Sets `out` to a pattern that matches every mangled symbol of the given classes: members, tables and type information.
function(class_pattern out)
  set(names "")
  foreach(class IN LISTS ARGN)
    string(REGEX REPLACE "^::" "" parts "${class}")
    string(REPLACE "::" ";" parts "${parts}")
    set(mangled "")
    foreach(part IN LISTS parts)
      string(LENGTH "${part}" length)
      string(APPEND mangled "${length}${part}")
    endforeach()
    list(APPEND names "${mangled}")
  endforeach()
  list(JOIN names "|" names)
  # A member's own name: an identifier with its length, a constructor, a destructor or an operator.
  set(${out} "^(_ZN[VK]*(${names})([0-9]+[A-Za-z_0-9]+|[CD][0-9]|[a-z][a-zA-Z])|_ZT[VIS]N?(${names})E?$)" PARENT_SCOPE)
endfunction()

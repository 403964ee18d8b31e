# Warnings, sanitizers and linking that hold for everything the project compiles itself.

set(zrclb_warnings -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(ZRCLB_WERROR)
  list(APPEND zrclb_warnings -Werror)
endif()

if(ZRCLB_SANITIZE)
  add_compile_options(-fsanitize=${ZRCLB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZRCLB_SANITIZE})
endif()

# The older arithmetic of 32-bit processors keeps more digits than a double has, and rounds differently for it.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86")
  add_compile_options(-msse2 -mfpmath=sse)
endif()

# The compiler's runtime goes into every Windows binary: the library must need nothing but system libraries.
if(MINGW)
  add_link_options(-static)
endif()

# What stands before the names of C in the object files of a system.
set(zrclb_symbol_prefix "")
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(zrclb_symbol_prefix "_")
endif()

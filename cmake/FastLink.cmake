# How the programs of a folder are linked that only tests use: there are some 160 of them, all with the objects of the library, and
# the MinGW linker takes three seconds for each, lld a tenth of one. What users get is linked with the system's own linker.
if(WIN32)
  find_program(ZRCLB_LLD ld.lld)
  if(ZRCLB_LLD)
    add_link_options(-fno-use-linker-plugin -wrapper ${PROJECT_SOURCE_DIR}/cmake/mingw-lld.sh)
  endif()
endif()

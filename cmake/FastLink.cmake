# How the programs of a folder are linked that only tests use: there are some 160 of them, all with the objects of the library. lld
# takes a tenth of a second for each, the system's own linker three tenths, that of MinGW three seconds. What users get is
# linked with the system's own.
find_program(ZRCLB_LLD ld.lld)
if(ZRCLB_LLD AND WIN32)
  add_link_options(-fno-use-linker-plugin -wrapper ${PROJECT_SOURCE_DIR}/cmake/mingw-lld.sh)
elseif(ZRCLB_LLD)
  add_link_options(-fuse-ld=lld)
endif()

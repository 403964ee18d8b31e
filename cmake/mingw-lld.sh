#!/bin/sh
# Takes the place of the linker's front end in a call of the MinGW compiler (its option -wrapper): the same arguments for lld,
# which links a test program in a tenth of the time.
shift
exec ld.lld "$@"

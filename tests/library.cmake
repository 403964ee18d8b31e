# Tests of the shared library as a file: what it exports, what it needs, and that an installed copy can be used.

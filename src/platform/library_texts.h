// The texts of the library's string table, in German: read by the resource compiler on Windows, compiled in on Linux.
#ifndef ZR_PLATFORM_LIBRARY_TEXTS_H
#define ZR_PLATFORM_LIBRARY_TEXTS_H

// Data that a module can't fully work on, and data that it can't work on at all. Arguments: the name of the data, its
// major and minor version (long), the name of the module, the highest major and minor version that it knows (long).
#define ZR_LIBRARY_TEXT_1                                                                                              \
    "Die Daten %s entsprechen Version %ld,%ld.\n"                                                                      \
    "Das Modul %s kann nur korrekt mit Daten bis einschl. Version %ld,%ld arbeiten.\n"                                 \
    "Mit diesen Daten arbeitet das Modul eventuell nicht richtig.\n"                                                   \
    "Bitte aktualisieren Sie das Modul."
#define ZR_LIBRARY_TEXT_2                                                                                              \
    "Die Daten %s entsprechen Version %ld,%ld.\n"                                                                      \
    "Das Modul %s kann nur mit Daten bis einschl. Version %ld,%ld arbeiten.\n"                                         \
    "Das Modul kann nicht mit den Daten arbeiten.\n"                                                                   \
    "Bitte aktualisieren Sie das Modul."

#endif

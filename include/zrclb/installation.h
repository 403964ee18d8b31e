/* The installation: its settings file, its folders, the search for files, and paths in a portable form. C17 and C++20.
 *
 * 1. Texts are zero-terminated bytes in code page 1252. A path has at most 259 characters; an output without a size needs
 *    260 bytes. An output must not overlap the other arguments unless said so.
 * 2. The settings file "zr.zrini" is looked for in the folder that the registry value "zr.ini" names (it may begin with a
 *    path variable), in the install root, and in the folder of the library's file, in this order. Where it isn't found the
 *    error "zr.zrini not found" is reported, and the next need searches again.
 * 3. Registry values lie under HKEY_CLASSES_ROOT\Software\Zr Works\Zr Bench\2013; on Linux a file takes the registry's
 *    place (docs/installation.md). One counts if it has at most 255 characters and is not empty.
 * 4. Folders are found at the first use and kept as long as the process lives, also if registry or disk change. The texts
 *    got belong to the library; they are never null, and empty after a failure, which is reported and not kept: the next
 *    call tries again. A function that is entered again while it works, by a report that looks for the log for example,
 *    answers with the empty text, and the search for the settings file with "not found", without a further report.
 * 5. A path variable is one of these texts in front of a path; case counts:
 *      $INSTALLDIR$  $PROJDIR$  $PROJDOCDIR$  $INSTALLDIR_PROJEKTE$  $APPDATA$  $LOCAL_APPDATA$  $COMMON_APPDATA$
 *      $COMMON_DIR$  $USER_DIR$
 *    The last two are the entries COMMON_DIR and USER_DIR of section System of the settings file, else the install root.
 *    $PROJDOCDIR$ is the document folder in the project folder. The others are the folders of like names.
 * 6. Reports carry the tag "Zr".
 * 7. Threads: what is kept is not guarded. One thread at a time, reads included. */
#ifndef ZRCLB_INSTALLATION_H
#define ZRCLB_INSTALLATION_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Search --------------------------------------------------------------------------------------------------- */

/* Looks for file and writes its path to out[0..259]: 0 found, -1 not, also for a null out.
 * - A null file asks for the settings file itself. Without one the report of the search comes a second time, and out is
 *   empty.
 * - A null or empty section or entry gives the path of the settings file, too, and 0 whether there is one or not.
 * - Section "System" with entry "Exe", in any case: as zr_GetBinFile.
 * - Else the entry of the settings file lists folders, divided by ";", taken in order; they may begin with a path variable,
 *   and relative ones lie under the folder of the settings file. One that is nothing, a variable that isn't known, is the
 *   current folder. If none has the file: -1, out untouched.
 * - Without such an entry the registry value with the name of file is the folder. Without one: -1. A value whose folder lacks
 *   the file counts as found all the same, 0, and out stays untouched. */
ZR_API int zr_suche_datei(const char *section, const char *entry, const char *file, char *out) ZR_NOEXCEPT;

/* Reads a path from the settings file as ini_read_path does, to out[0..259]: 0, or -1 if there is no such entry, or,
 * after the reports of zr_suche_datei and the error "zr.zrini not found" once more, no settings file. Section
 * "System" with entry "Exe", in any case, is zr_GetBinDir, whatever the file says. */
ZR_API int zr_suche_pfad(const char *section, const char *entry, char *out) ZR_NOEXCEPT;

/* The same from inifile, without those special cases; a null inifile is zr_suche_pfad. */
ZR_API int zr_suche_pfad_ex(const char *inifile, const char *section, const char *entry, char *out) ZR_NOEXCEPT;

/* Stores path in the settings file as ini_write_path does: 0, or -1 if that fails or, with the reports of zr_suche_pfad, there
 * is no settings file. Section "System" with entry "Exe", in any case, is not written: 0 after the message "Pfad System
 * / Exe wird nicht mehr geschrieben.". */
ZR_API int zr_schreibe_pfad(const char *section, const char *entry, const char *path) ZR_NOEXCEPT;

/* The same into inifile, without those special cases; a null inifile is zr_schreibe_pfad. */
ZR_API int zr_schreibe_pfad_ex(const char *inifile, const char *section, const char *entry,
                               const char *path) ZR_NOEXCEPT;

/* ---- Folders of the installation ------------------------------------------------------------------------------- */

/* The install root in its long form: the registry value "InstallDir", else the folder above that of the library's file.
 * Errors: "InstallDir nicht korrekt gesetzt." (no such folder; it then goes on as without the value), "Fehler beim
 * Ermitteln des Installations-Ordners". */
ZR_API const char *zr_GetInstallDir(void) ZR_NOEXCEPT;

/* The folder of the library's file. Error: "Fehler beim Ermitteln des bin-Ordners". */
ZR_API const char *zr_GetBinDir(void) ZR_NOEXCEPT;

/* "bin" and "bin64" beside each other: the library may stand in either. Error: "Fehler beim Ermitteln des bin32-Ordners"
 * and the like. */
ZR_API const char *zr_GetBin32Dir(void) ZR_NOEXCEPT;
ZR_API const char *zr_GetBin64Dir(void) ZR_NOEXCEPT;

/* "binExt" and "binExt64" in the install root. zr_GetBinExtDir is zr_GetBinExt32Dir. Error: "Fehler beim Ermitteln des
 * binExt32-Ordners" and the like. */
ZR_API const char *zr_GetBinExtDir(void) ZR_NOEXCEPT;
ZR_API const char *zr_GetBinExt32Dir(void) ZR_NOEXCEPT;
ZR_API const char *zr_GetBinExt64Dir(void) ZR_NOEXCEPT;

/* Puts file under the folder of that name, or leaves it bare if that isn't known, and writes the path to out[0..259]: 1, or 0
 * if it is too long ("Buffer zu klein", out untouched) or after the error "Null-Pointer". The disk isn't looked at. */
ZR_API int zr_GetBin32File(const char *file, char *out) ZR_NOEXCEPT;
ZR_API int zr_GetBin64File(const char *file, char *out) ZR_NOEXCEPT;
ZR_API int zr_GetBinExt32File(const char *file, char *out) ZR_NOEXCEPT;
ZR_API int zr_GetBinExt64File(const char *file, char *out) ZR_NOEXCEPT;

/* The first of the two folders, that of 32 bits before that of 64, in which file exists: 1 with its path in out[0..259],
 * else 0 with an empty out. */
ZR_API int zr_GetBinFile(const char *file, char *out) ZR_NOEXCEPT;
ZR_API int zr_GetBinExtFile(const char *file, char *out) ZR_NOEXCEPT;

/* ---- Folders for data ------------------------------------------------------------------------------------------ */

/* The folder "Zr Works\Zr Bench\2013\" in the user's folder for data that follow him, in that for data of this machine,
 * and in the folder of all users. It is made if need be, and ends in a backslash then. Messages: "SHGetFolderPath
 * failed", "fio_CreatePath failed" with the path. */
ZR_API const char *zr_GetAppDataDir(void) ZR_NOEXCEPT;
ZR_API const char *zr_GetLocalAppDataDir(void) ZR_NOEXCEPT;
ZR_API const char *zr_GetCommonAppDataDir(void) ZR_NOEXCEPT;

/* Entry InstallDirProjekte of section "Zr Tekbau Tek+" of the settings file, read at every call; what was read last if it
 * can't be read. */
ZR_API const char *zr_GetInstallDirProjekte(void) ZR_NOEXCEPT;

/* The project folder, as it was set: at most 260 characters; null is ignored. */
ZR_API const char *zr_GetProjDir(void) ZR_NOEXCEPT;
ZR_API void zr_SetProjDir(const char *dir) ZR_NOEXCEPT;

/* The name of the document folder in the project folder: at most 256 characters; null is ignored. */
ZR_API void zr_SetProjDocFolder(const char *name) ZR_NOEXCEPT;

/* ---- Portable paths -------------------------------------------------------------------------------------------- */

/* Whether path begins with a path variable: 1, with the variable in out[0..size-1], cut if need be; 0 with out untouched.
 * Nothing is written for a null out or a size of 0. */
ZR_API int zr_FindPathVar(const char *path, char *out, unsigned int size) ZR_NOEXCEPT;

/* Writes the full path of path to out[0..259] and gives 1: a path variable in front is replaced by its folder (by nothing, if
 * that is empty), what then has no drive is put under base, if base isn't null, and the whole is made absolute, with
 * "." and ".." resolved. Of path 259 characters count. The empty text stays empty; what has no full path stays as it is. 0 for a
 * null path or out. out may be path or base.
 * Reports of others: "str_repl : Buffer zu klein" (the variable stays), "Buffer zu klein" (base is left out). */
ZR_API int zr_BuildFullPath(const char *path, const char *base, char *out) ZR_NOEXCEPT;

/* Writes the form of path as seen from the folder base to out[0..259]: behind a path variable if base begins with one
 * ("$INSTALLDIR$\bin\a.dll"; what stands behind the variable in base gets lost), else relative (".\a", "..\a"). With a
 * null or empty base every path variable that is known is tried, and the form with the fewest folders is taken, with
 * equal numbers the first in the order of rule 5; if the path itself has fewer, that is out, and the result still 1.
 * 1, or 0: for a null or empty path (out is empty) or null out; where no way leads from base to path (another drive),
 * out is then the absolute path; and if the way goes up from a path variable and allow_up is 0, or the form has more
 * than 259 characters, out is then path. A way that is ".." and no more isn't taken for one up. */
ZR_API int zr_BuildRelativePathEx(const char *path, const char *base, char *out, int allow_up) ZR_NOEXCEPT;

/* The same with allow_up 1. */
ZR_API int zr_BuildRelativePath(const char *path, const char *base, char *out) ZR_NOEXCEPT;

/* The same with allow_up 0 and base $INSTALLDIR$, $PROJDIR$, $PROJDOCDIR$. */
ZR_API int zr_BuildInstallDirPath(const char *path, char *out) ZR_NOEXCEPT;
ZR_API int zr_BuildProjDirPath(const char *path, char *out) ZR_NOEXCEPT;
ZR_API int zr_BuildProjDocDirPath(const char *path, char *out) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif

// The file name value: a path taken apart into drive, directory, name and extension. C++20.
//
// Conventions of this header
//  - Texts are zero-terminated bytes in code page 1252. A null text counts as empty, except for AddDir. Texts given are
//    copied, and may be results of the same object.
//  - Setters store first and judge then: false means that what was given is invalid, and it is stored all the same, as
//    far as it fits. GetError tells which part is bad.
//  - Getters never give null. Their texts live in the object: a built one (path, compact path, name with extension,
//    directory with drive, last directory) stays as it is until that getter is called again, by GetError, PathValid or
//    Exist as well; a stored part follows its setters. Neither outlives the object.
//  - Everything lies in arrays of fixed size: no member allocates or throws. Copies are independent.
//  - An object belongs to one thread at a time: getters write their results into it.
//  - Reports go through zr_error with the tag ZrFileName.
#ifndef ZRCLB_FILE_NAME_HPP
#define ZRCLB_FILE_NAME_HPP

#include <zrclb/file_name.h>
#include <zrclb/types.h>

class ZR_API CZrFileName {
public:
    // Takes the texts that are not empty: name as SetFileName(name, true) does, then ext, dir and drive. A valid ext
    // takes the place of an extension that name brought along, which goes to the name if that stays below 256
    // characters: ("a.b", "c") has the name "a.b" and the extension "c".
    CZrFileName(const char *name = nullptr, const char *ext = nullptr, const char *dir = nullptr,
                const char *drive = nullptr);

    CZrFileName(const CZrFileName &other) = default;
    CZrFileName &operator=(const CZrFileName &other) = default;
    ~CZrFileName() = default;

    // As GetPath.
    operator const char *() const;

    // The name without its extension; with with_ext name, dot and extension, if there are both. Empty if these would
    // have more than 259 characters.
    const char *GetFileName(bool with_ext) const;

    // The extension without its dot.
    const char *GetExt() const;

    // The directory with the backslash at its end. With with_drive, and if there is a drive, fio_makepath's join of the
    // two: "C:\d", "C:\", "C:d\e". That has no backslash at its end but at a root and behind a relative directory of a
    // single letter ("C:d\"). Empty, after fio_makepath's report, if it would have more than 259 characters.
    const char *GetDir(bool with_drive) const;

    // The drive as "C:".
    const char *GetDrive() const;

    // The whole path. A drive always stands with a root: "C:" with the name "a" is "C:\a". Empty for an object without
    // parts; an extension without a name is left out. Empty after a report where no path can be built:
    //   "GetPath(): Kein g\xFCltiger Pfad"    only an extension, or the parts have 260 characters or more together
    //   "GetPath(): Buffer zu klein"       the dot, or a backslash behind the directory or at the end, doesn't fit
    //   "GetPath(): Fehler bei str_ins"    the backslash behind the drive doesn't (str_ins reports as well)
    // The result, that of a failure too, is kept until a part changes: asked again, it comes without a new report.
    const char *GetPath() const;

    // The path cut by an ellipsis to at most width bytes, terminator counted, as fio_CompactPath does it; it stays
    // whole if these are at least 2 more than its characters. 0 and 1 give the empty text, 261 and more the whole path.
    // "GetCompactPath: failed" and an empty text should the service refuse.
    const char *GetCompactPath(zr_ulong width) const;

    // The last element of the directory without separators.
    const char *GetLastDir() const;

    // The path as seen from `from`, a folder for a kind of 16, a file for 128: ".\a", "..\a\b". `from` is made absolute,
    // null and empty mean the current folder; the path is GetAbsolutePath(nullptr). Empty if nothing leads there (another
    // drive), and for another kind, after the report "GetRelativePath : Falscher Parameter".
    const char *GetRelativePath(const char *from, int kind) const;

    // The full path of GetPath as zr_BuildFullPath makes it: a path variable in front of the directory is replaced by its
    // folder, and what has no drive starts at the current folder. A project_dir that is not null is the project folder
    // meanwhile.
    const char *GetAbsolutePath(const char *project_dir) const;

    // Takes the parts that name holds, a file name or a whole path: the name always, extension, drive and directory
    // each through its setter if it is there. Parts that name lacks stay. False if one of them is invalid, or if there
    // is no name: behind a last separator, in front of a lone extension, behind a drive. An empty name clears the name.
    // Without split_ext the extension belongs to the name; if both exceed 255 characters, "Buffer too small" is
    // reported and the extension is lost. A text with a part of more than 255 characters has no parts at all.
    bool SetFileName(const char *name, bool split_ext);

    // Keeps at most 255 characters, less one leading dot. An empty text clears the extension.
    bool SetExt(const char *ext);

    // Keeps at most 255 characters in standard form: backslashes, none doubled except at the very start, one at the
    // end. A drive in front goes to SetDrive. An empty text clears the directory, not the drive. A text of 255
    // characters or more that has no separator at its 255th is reported, "TerminateDir() : length error", and loses its
    // last element.
    bool SetDir(const char *dir);

    // Keeps at most 2 characters. An empty text clears the drive.
    bool SetDrive(const char *drive);

    // Appends text to the directory, in standard form. An empty text does nothing and is fine. False after the report
    //   "AddDir(): NULL-Pointer"
    //   "AddDir(): Verzeichnis nicht g\xFCltig :" with text, which is appended all the same
    //   "AddDir(): Verzeichnis zu lang"  directory and text have 260 characters or more; nothing is changed
    // A directory without room for the backslash at its end, from 255 characters on, is reported by
    // "TerminateDir() : length error" and goes without. Whether the directory counts as set is left as it was.
    bool AddDir(const char *text);

    // Takes the last element away; false for an empty directory. The directory stays a part that was set, so once it is
    // empty GetError tells it as bad.
    bool RemoveLastDir();

    // Replaces the first occurrence of from by to, both cut to 255 characters and in standard form. An empty to removes
    // from. False after the report
    //   "ReplaceDir(): Verzeichnis nicht g\xFCltig :" with to, which is put in all the same
    //   "ReplaceDir(): Falscher Parameter"  from is empty
    //   "ReplaceDir() : Fehler beim Ersetzen"  from does not occur, or the result does not fit (str_repl reports, too)
    bool ReplaceDir(const char *from, const char *to);

    // The present name with its extension, however long, becomes the last element of the directory as AddDir does it;
    // then, unless that failed, SetFileName(name, true).
    bool FNToDir(const char *name);

    // Takes the directory, and the drive, from the entry of a settings file, as zr_suche_pfad_ex reads it; without `file`,
    // and for a null one, from the system-wide one. False, with nothing changed, if there is no such entry; else what
    // SetDir gives.
    bool SetDirFromConfig(const char *file, const char *section, const char *entry);
    bool SetDirFromConfig(const char *section, const char *entry);

    // The same, and then SetFileName(name, true). False, with the name left alone, if the directory could not be set.
    bool SetFileNameFromConfig(const char *section, const char *entry, const char *name);

    // Takes all parts from a new name in the temporary folder. The system creates the file, which belongs to the
    // caller. False, with nothing changed, if fio_tmpnam fails, which reports that.
    bool SetTemporaryFileName();

    // The same as a new object; without parts after a failure.
    static CZrFileName GetTemporaryFileName();

    // Whether the stored part, or what GetPath gives, is valid. A part that is empty is not.
    bool FileNameValid() const;
    bool ExtValid() const;
    bool DirValid() const;
    bool DriveValid() const;
    bool PathValid() const;

    // Whether a text is; the rules stand with zrFileNameValid and its kin. Any thread.
    static bool FileNameValid(const char *text);
    static bool ExtValid(const char *text);
    static bool DirValid(const char *text);
    static bool DriveValid(const char *text);
    static bool PathValid(const char *text);

    // Whether the file or folder exists: fio_exist of GetDir(true) and GetFileName(true). False if one of these has no
    // room for its parts.
    bool Exist() const;

    // The first fault in the order name, extension, directory, drive, path. A part that was never set is not tested.
    ZR_FILE_NAME_ERROR GetError() const;

private:
    void Init(const char *new_name, const char *new_ext, const char *new_dir, const char *new_drive);

    // Both work on buffer[0..259], or on dir if it is null.
    void TerminateDir(char *buffer);
    void StandardizeDir(char *buffer);

    void BuildPath() const;

    char name[256];                  // without extension
    char ext[256];                   // without its dot
    char dir[260];                   // without drive, in standard form
    char drive[3];                   // "C:"
    mutable char path[260];          // result of GetPath while path_dirty is clear
    mutable char relative_path[260]; // results of the getters of like names
    mutable char absolute_path[260];
    mutable char compact_path[260];
    mutable char full_name[260]; // result of GetFileName(true)
    mutable char drive_dir[260]; // result of GetDir(true)
    mutable char last_dir[260];
    mutable bool path_dirty; // a part changed since path was built
    bool name_set;           // the part was given a text that is not empty
    bool ext_set;
    bool dir_set;
    bool drive_set;
};

#endif

// The file name value through plain functions: each tests its handle and reaches the member of its name.
#include <zrclb/file_name.h>

#include <new>

#include <zrclb/file_name.hpp>

#include "files/file_name_text.h"

using namespace zr::files;

namespace {

CZrFileName *FileName(zr_value handle) {
    return reinterpret_cast<CZrFileName *>(handle);
}

// What work makes of the handle's value; for a null handle `failure`, after the report of the function's own text.
template <class Result, class Work>
Result WithHandle(zr_value handle, Result failure, const char *report, int line, const Work &work) noexcept {
    if (handle == 0) {
        ReportFileName(report, nullptr, line);
        return failure;
    }
    return static_cast<Result>(work(*FileName(handle)));
}

// The same for functions that give a text.
template <class Work>
const char *TextOf(zr_value handle, const char *report, int line, const Work &work) noexcept {
    return WithHandle<const char *>(handle, nullptr, report, line, work);
}

} // namespace

extern "C" {

zr_value zrFileCreateFileHandle(const char *name, const char *ext, const char *dir, const char *drive) noexcept {
    auto *made = new (std::nothrow) CZrFileName(name, ext, dir, drive);
    if (made == nullptr)
        ReportFileName("zrFileCreateFileHandle: Fehler beim Erzeugen von File-Handle", nullptr, __LINE__);
    return reinterpret_cast<zr_value>(made);
}

void zrFileFreeFileHandle(zr_value handle) noexcept {
    delete FileName(handle);
}

const char *zrFileGetFileName(zr_value handle, int with_ext) noexcept {
    return TextOf(handle, "zrFileGetFileName : Handle falsch", __LINE__,
                  [=](const CZrFileName &file) { return file.GetFileName(with_ext == 1); });
}

const char *zrFileGetExt(zr_value handle) noexcept {
    return TextOf(handle, "zrFileGetExt : Handle falsch", __LINE__,
                  [](const CZrFileName &file) { return file.GetExt(); });
}

const char *zrFileGetDir(zr_value handle, int with_drive) noexcept {
    return TextOf(handle, "zrFileGetDir : Handle falsch", __LINE__,
                  [=](const CZrFileName &file) { return file.GetDir(with_drive == 1); });
}

const char *zrFileGetDrive(zr_value handle) noexcept {
    return TextOf(handle, "zrFileGetDrive : Handle falsch", __LINE__,
                  [](const CZrFileName &file) { return file.GetDrive(); });
}

const char *zrFileGetPath(zr_value handle) noexcept {
    return TextOf(handle, "zrFileGetPath : Handle falsch", __LINE__,
                  [](const CZrFileName &file) { return file.GetPath(); });
}

const char *zrFileGetCompactPath(zr_value handle, zr_ulong width) noexcept {
    return TextOf(handle, "zrFileGetCompactPath : Handle falsch", __LINE__,
                  [=](const CZrFileName &file) { return file.GetCompactPath(width); });
}

int zrFileSetFileName(zr_value handle, const char *name) noexcept {
    return WithHandle(handle, 0, "zrFileSetFileName : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.SetFileName(name, true); });
}

int zrFileSetExt(zr_value handle, const char *text) noexcept {
    return WithHandle(handle, 0, "zrFileSetExt : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.SetExt(text); });
}

int zrFileSetDir(zr_value handle, const char *text) noexcept {
    return WithHandle(handle, 0, "zrFileSetDir : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.SetDir(text); });
}

int zrFileAddDir(zr_value handle, const char *text) noexcept {
    return WithHandle(handle, 0, "zrFileAddDir : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.AddDir(text); });
}

int zrFileSetDrive(zr_value handle, const char *text) noexcept {
    return WithHandle(handle, 0, "zrFileSetDrive : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.SetDrive(text); });
}

int zrFileFNToDir(zr_value handle, const char *text) noexcept {
    return WithHandle(handle, 0, "zrFileFNToDir : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.FNToDir(text); });
}

int zrFileRemoveLastDir(zr_value handle) noexcept {
    return WithHandle(handle, 0, "zrFileRemoveLastDir : Handle falsch", __LINE__,
                      [](CZrFileName &file) { return file.RemoveLastDir(); });
}

int zrFileReplaceDir(zr_value handle, const char *from, const char *to) noexcept {
    return WithHandle(handle, 0, "zrFileReplaceDir : Handle falsch", __LINE__,
                      [=](CZrFileName &file) { return file.ReplaceDir(from, to); });
}

int zrFileGetError(zr_value handle) noexcept {
    return WithHandle<int>(handle, ZR_FILE_NAME_BAD_PATH, "zrFileGetError : Handle falsch", __LINE__,
                           [](const CZrFileName &file) { return file.GetError(); });
}

int zrFileNameValid(const char *text) noexcept {
    return CZrFileName::FileNameValid(text);
}

int zrFileExtValid(const char *text) noexcept {
    return CZrFileName::ExtValid(text);
}

int zrFileDirValid(const char *text) noexcept {
    return CZrFileName::DirValid(text);
}

int zrFileDriveValid(const char *text) noexcept {
    return CZrFileName::DriveValid(text);
}

int zrFilePathValid(const char *text) noexcept {
    return CZrFileName::PathValid(text);
}
}

// The env_ functions that read and write typed values, files and texts, and the version of data.
#include "env/function_call.h"

using namespace zr::env;
using Zr::CZrEnv;
using Zr::CZrEnvDataElement;

namespace {

constexpr const char *kTag = "Env_uti2";
constexpr int kError = Zr::ENV_ERROR;

constexpr const char *kVersionSection = "_Zr_Data_Version_Info_";
constexpr const char *kVersionPath = "Version";
constexpr int kVersionCount = 4;

// The frame of all typed getters: handle and outputs tested by the caller, then the lock and the look-up.
template <class Read>
int ReadValue(zr_env env, const char *section, const char *path, int direct, int iLine, const Read &read) noexcept {
    return Locked(kError, kTag, iLine, [&] { return ReadData(env, section, path, direct, read); });
}

// The frame of the list getters: nothing was counted where there is no data element.
template <class Read>
int ReadList(zr_env env, const char *section, const char *path, int direct, zr_long *count, int iLine,
             const Read &read) noexcept {
    return Locked(kError, kTag, iLine, [&] {
        bool reached = false;
        const int result = ReadData(env, section, path, direct, [&](CZrEnvDataElement &rData) {
            reached = true;
            return read(rData);
        });
        if (!reached)
            *count = 0;
        return result;
    });
}

// The frame of the setters.
template <class Write>
int Change(zr_env env, int iLine, const Write &write) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, iLine, [&] { return write(*Tree(env)); });
}

// Any number that is no mode reads wrapped.
EEnvReadMode ReadMode(zr_long mode) {
    if (mode == eEnvReadNotWrapped)
        return eEnvReadNotWrapped;
    return mode == eEnvReadAuto ? eEnvReadAuto : eEnvReadWrapped;
}

void StoreIfWanted(zr_long *to, zr_long value) {
    if (to)
        *to = value;
}

} // namespace

// --- files and texts --------------------------------------------------------------------------------------------------

int env_read_file(const char *path, zr_env env) noexcept {
    return env_read_file_ex(path, env, eEnvReadAuto);
}

int env_read_file_ex(const char *path, zr_env env, zr_long mode) noexcept {
    if (!env)
        return kError;
    return Guarded(kError, kTag, __LINE__, [&] { return Tree(env)->ReadFile(path, ReadMode(mode)); });
}

int env_write_file(const char *path, zr_env env) noexcept {
    return env_write_file_ex(path, env, 1);
}

int env_write_file_ex(const char *path, zr_env env, int wrap) noexcept {
    if (!env)
        return kError;
    return Guarded(0, kTag, __LINE__, [&] { return Tree(env)->WriteFile(path, wrap != 0); });
}

int env_read_from_string(const char *text, zr_env env) noexcept {
    return env_read_from_string_ex(text, env, eEnvReadAuto);
}

int env_read_from_string_ex(const char *text, zr_env env, zr_long mode) noexcept {
    if (!env)
        return kError;
    return Guarded(kError, kTag, __LINE__, [&] { return Tree(env)->ReadString(text, ReadMode(mode)); });
}

char *env_write_to_string(zr_env env) noexcept {
    return env_write_to_string_ex(env, 1);
}

char *env_write_to_string_ex(zr_env env, int wrap) noexcept {
    if (!env)
        return nullptr;
    return Guarded(static_cast<char *>(nullptr), kTag, __LINE__, [&] { return Tree(env)->WriteString(wrap != 0); });
}

void env_free_string(char *s) noexcept {
    CZrEnv::FreeString(s);
}

// --- typed getters ----------------------------------------------------------------------------------------------------

int env_get_bin(zr_env env, const char *section, const char *path, int direct, char *data, zr_long *size) noexcept {
    if (!env || !data || !size)
        return kError;
    return ReadValue(env, section, path, direct, __LINE__,
                     [&](CZrEnvDataElement &rData) { return rData.GetBinary(size, data); });
}

int env_get_double(zr_env env, const char *section, const char *path, int direct, double *value) noexcept {
    if (!env || !value)
        return kError;
    return ReadValue(env, section, path, direct, __LINE__,
                     [&](const CZrEnvDataElement &rData) { return rData.GetDouble(*value); });
}

int env_get_long(zr_env env, const char *section, const char *path, int direct, zr_long *value) noexcept {
    if (!env || !value)
        return kError;
    return ReadValue(env, section, path, direct, __LINE__,
                     [&](const CZrEnvDataElement &rData) { return rData.GetLong(*value); });
}

int env_get_doubles(zr_env env, const char *section, const char *path, int direct, zr_long *count,
                    double *values) noexcept {
    if (!env || !count || !values)
        return kError;
    return ReadList(env, section, path, direct, count, __LINE__,
                    [&](CZrEnvDataElement &rData) { return rData.GetDoubles(*count, values); });
}

int env_get_longs(zr_env env, const char *section, const char *path, int direct, zr_long *count,
                  zr_long *values) noexcept {
    if (!env || !count || !values)
        return kError;
    return ReadList(env, section, path, direct, count, __LINE__,
                    [&](CZrEnvDataElement &rData) { return rData.GetLongs(*count, values); });
}

int env_get_strings(zr_env env, const char *section, const char *path, int direct, zr_long *count, zr_long width,
                    char **items) noexcept {
    if (!env || !count || !items)
        return kError;
    return ReadList(env, section, path, direct, count, __LINE__,
                    [&](CZrEnvDataElement &rData) { return rData.GetStrings(*count, width, items); });
}

int env_get_reference(zr_env env, const char *section, const char *path, int direct, const char **text) noexcept {
    if (!env || !text)
        return 0;
    return ReadValue(env, section, path, direct, __LINE__, [&](const CZrEnvDataElement &rData) {
        *text = rData.GetString();
        return Zr::ENV_OK;
    });
}

int env_get_array_size(zr_env env, const char *section, const char *path, int direct, zr_long *count,
                       zr_long *width) noexcept {
    zr_long lCount = 0;
    zr_long lWidth = 0;
    int result = kError;
    if (env)
        result = Locked(kError, kTag, __LINE__,
                        [&] { return Tree(env)->GetArraySize(section, path, direct != 0, lCount, lWidth); });
    StoreIfWanted(count, result == Zr::ENV_OK ? lCount : 0);
    StoreIfWanted(width, result == Zr::ENV_OK ? lWidth : 0);
    return result;
}

int env_data_length(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return Tree(env)->GetDataLength(section, path, direct != 0); });
}

// --- typed setters ----------------------------------------------------------------------------------------------------

int env_put_bin(zr_env env, const char *section, const char *path, const char *data, zr_long size) noexcept {
    if (!env)
        return kError;
    return Guarded(kError, kTag, __LINE__,
                   [&] { return Tree(env)->SetBinary(section, path, static_cast<zr_ulong>(size), data); });
}

int env_put_double(zr_env env, const char *section, const char *path, double value) noexcept {
    return Change(env, __LINE__, [&](CZrEnv &rEnv) { return rEnv.SetDouble(section, path, value); });
}

int env_put_long(zr_env env, const char *section, const char *path, zr_long value) noexcept {
    return Change(env, __LINE__, [&](CZrEnv &rEnv) { return rEnv.SetLong(section, path, value); });
}

int env_put_doubles(zr_env env, const char *section, const char *path, zr_long count, const double *values) noexcept {
    if (!values)
        return kError;
    return Change(env, __LINE__, [&](CZrEnv &rEnv) { return rEnv.SetDoubles(section, path, count, values); });
}

int env_put_longs(zr_env env, const char *section, const char *path, zr_long count, const zr_long *values) noexcept {
    if (!values)
        return kError;
    return Change(env, __LINE__, [&](CZrEnv &rEnv) { return rEnv.SetLongs(section, path, count, values); });
}

int env_put_strings(zr_env env, const char *section, const char *path, zr_long count, const char **items) noexcept {
    if (!items)
        return kError;
    return Change(env, __LINE__, [&](CZrEnv &rEnv) { return rEnv.SetStrings(section, path, count, items); });
}

// --- version of data --------------------------------------------------------------------------------------------------

int env_set_data_version(zr_env env, zr_long a, zr_long b, zr_long c, zr_long d) noexcept {
    const zr_long version[kVersionCount] = {a, b, c, d};
    return env_put_longs(env, kVersionSection, kVersionPath, kVersionCount, version);
}

void env_get_data_version(zr_env env, zr_long *a, zr_long *b, zr_long *c, zr_long *d) noexcept {
    zr_long version[kVersionCount] = {};
    zr_long count = kVersionCount;
    env_get_longs(env, kVersionSection, kVersionPath, 1, &count, version);
    StoreIfWanted(a, version[0]);
    StoreIfWanted(b, version[1]);
    StoreIfWanted(c, version[2]);
    StoreIfWanted(d, version[3]);
}

// What every env_ function begins and ends with: handle to object, the lock, and no exception to the caller.
#ifndef ZR_ENV_FUNCTION_CALL_H
#define ZR_ENV_FUNCTION_CALL_H

#include <exception>

#include <zrclb/env.hpp>
#include <zrclb/report.h>

#include "env/env_lock.h"

namespace zr::env {

inline Zr::CZrEnv *Tree(zr_env env) {
    return reinterpret_cast<Zr::CZrEnv *>(env);
}

inline zr_env Handle(Zr::CZrEnv *pEnv) {
    return reinterpret_cast<zr_env>(pEnv);
}

// Gives what work() gives. Where it runs out of memory, that is reported and the result is failure.
template <class Result, class Work>
Result Guarded(Result failure, const char *szTag, int iLine, const Work &work) noexcept {
    try {
        return static_cast<Result>(work());
    } catch (const std::exception &) {
        zr_error("Out of memory", nullptr, nullptr, szTag, iLine);
        return failure;
    }
}

// The same under the lock.
template <class Result, class Work>
Result Locked(Result failure, const char *szTag, int iLine, const Work &work) noexcept {
    const SectionGuard guard;
    return Guarded(failure, szTag, iLine, work);
}

// The id of the environment that holds an element, or other if it is in none.
inline zr_long IdOf(const Zr::CZrEnvElement &rElem, zr_long other) {
    const Zr::CZrEnv *pOwner = rElem.GetEnv();
    return pOwner ? pOwner->GetID() : other;
}

// Looks an element up, with defaults, and hands it to read() if it is a data element. The result is ENV_NOT_FOUND,
// ENV_DATA for any other element, what read() gives if that is not 0, and else the id of the element's environment.
// The caller holds the lock.
template <class Read>
int ReadData(zr_env env, const char *section, const char *path, int direct, const Read &read) {
    Zr::CZrEnvElement *pElem = Tree(env)->GetElement(section, path, direct != 0, true);
    if (!pElem)
        return Zr::ENV_NOT_FOUND;
    Zr::CZrEnvDataElement *pData = pElem->ToEnvDataElement();
    if (!pData)
        return Zr::ENV_DATA;
    const int result = read(*pData);
    return result != 0 ? result : static_cast<int>(IdOf(*pElem, 0));
}

} // namespace zr::env

#endif

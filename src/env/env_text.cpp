// The text format as operations of the environment: reading, writing, and where a reading failed.
#include <zrclb/env.hpp>

#include "env/reader.h"
#include "env/writer.h"

namespace Zr {

EZrEnvError CZrEnv::ReadFile(const char *szPath, EEnvReadMode eMode) {
    CZrEnvReader reader(eMode);
    return reader.ReadFile(this, szPath);
}

EZrEnvError CZrEnv::ReadString(const char *szText, EEnvReadMode eMode) {
    CZrEnvReader reader(eMode);
    return reader.ReadString(this, szText);
}

bool CZrEnv::WriteFile(const char *szPath, bool bWrap) {
    CZrEnvWriter writer(bWrap);
    return writer.WriteFile(this, szPath);
}

char *CZrEnv::WriteString(bool bWrap) {
    CZrEnvWriter writer(bWrap);
    return writer.WriteString(this);
}

EZrEnvError CZrEnv::GetErrorPosition(zr_long &rlLine, zr_long &rlColumn) const {
    if (m_lErrorLine == 0)
        return ENV_NOT_FOUND;
    rlLine = m_lErrorLine;
    rlColumn = m_lErrorColumn;
    return ENV_OK;
}

} // namespace Zr

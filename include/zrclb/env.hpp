// The environment tree as classes: elements, blocks, sections, data elements and the environment that holds them.
//
// Conventions of this header
//  - Texts are zero-terminated bytes in code page 1252. A null text is told from an empty one.
//  - Positions count from 1 among the namesakes of one block, unless a function says otherwise.
//  - A block owns its children, an environment its sections; a subenvironment owns nothing. An element that is not
//    inserted belongs to whoever made it and stays theirs when an insertion fails.
//  - Nothing here takes a lock: an environment, with all environments that it shares a chain or elements with, belongs to
//    one thread at a time, reads included (they write the last error). The env_ functions serialise all of this.
//  - Member functions may let std::bad_alloc pass; the tree is then still sound.
//  - Copies of elements and environments are views: they share texts, links and children with their source, own nothing,
//    and must not outlive it.
#ifndef ZRCLB_ENV_HPP
#define ZRCLB_ENV_HPP

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <zrclb/env.h>
#include <zrclb/types.h>

namespace Zr {

using ::EEnvReadMode;
using ::eEnvReadAuto;
using ::eEnvReadNotWrapped;
using ::eEnvReadWrapped;

enum EZrEnvElementType : int {
    ENV_TYPE_DATA = 0,
    ENV_TYPE_BLOCK = 1,
    ENV_TYPE_SECTION = 2,
    ENV_TYPE_UNKNOWN = -1
};

class CZrEnv;
class CZrEnvBlock;
class CZrEnvDataElement;
class CZrEnvSection;
class CZrEnvReader;
class CZrEnvWriter;
class CZrEnvPathElem;
class CZrEnvNameIndex;
class CZrEnvNodeStore;

// Root of all nodes: a name, the block that holds it, the next sibling.
class ZR_API CZrEnvElement {
public:
    CZrEnvElement(const CZrEnvElement &other);
    CZrEnvElement &operator=(const CZrEnvElement &other);

    virtual CZrEnv *GetEnv() const;
    virtual CZrEnvBlock *ToEnvBlock();
    virtual const CZrEnvBlock *ToEnvBlock() const;
    virtual CZrEnvDataElement *ToEnvDataElement();
    virtual const CZrEnvDataElement *ToEnvDataElement() const;
    virtual CZrEnvSection *ToEnvSection();
    virtual const CZrEnvSection *ToEnvSection() const;

    const char *GetName() const { return m_szName; }
    bool SetName(const char *szName);
    CZrEnvBlock *GetParent() const { return m_pParent; }
    CZrEnvElement *GetSuccElem() const { return m_pSucc; }

    // Nodes of a file that was read share chunks of memory; releasing one looks at where it lives before it ends it.
    static void operator delete(CZrEnvElement *pElem, std::destroying_delete_t);
    static void operator delete(void *pMemory) { ::operator delete(pMemory); } // after a constructor that threw

protected:
    virtual bool CheckName(const char *szName);
    explicit CZrEnvElement(const char *szName);
    virtual ~CZrEnvElement();

private:
    friend class CZrEnv;
    friend class CZrEnvBlock;
    friend class CZrEnvSection;
    friend class CZrEnvDataElement;
    friend class CZrEnvReader;
    friend class CZrEnvWriter;
    friend class CZrEnvNameIndex;
    friend class CZrEnvNodeStore;

    CZrEnvElement(char *szName, std::uint32_t uFlags) : m_szName(szName), m_uFlags(uFlags) {}
    void SetParent(CZrEnvBlock *pParent) { m_pParent = pParent; }
    void PutName(char *szName);
    void ReleaseName();

    char *m_szName = nullptr;
    CZrEnvBlock *m_pParent = nullptr;
    CZrEnvElement *m_pSucc = nullptr;
    std::uint32_t m_uFlags = 0; // CZrEnvNodeStore::Flag
};

// A leaf: one value, kept as text whatever its type.
class ZR_API CZrEnvDataElement : public CZrEnvElement {
public:
    explicit CZrEnvDataElement(const char *szName, const char *szValue);
    explicit CZrEnvDataElement(const char *szName, zr_long lValue);
    explicit CZrEnvDataElement(const char *szName, double dValue);
    explicit CZrEnvDataElement(const char *szName, float fValue);
    CZrEnvDataElement(const CZrEnvDataElement &other);
    CZrEnvDataElement &operator=(const CZrEnvDataElement &other);

    CZrEnvDataElement *ToEnvDataElement() override;
    const CZrEnvDataElement *ToEnvDataElement() const override;

    EZrEnvError SetLong(zr_long lValue);
    EZrEnvError SetDouble(double dValue);
    EZrEnvError SetFloat(float fValue);
    EZrEnvError SetString(const char *szValue);
    EZrEnvError SetBinary(zr_ulong ulLength, const char *pData);
    EZrEnvError SetLongs(zr_long lCount, const zr_long *plValues);
    EZrEnvError SetDoubles(zr_long lCount, const double *pdValues);
    EZrEnvError SetStrings(zr_long lCount, const char **pszValues);

    EZrEnvError GetLong(zr_long &rlValue) const;
    zr_long GetLong() const;
    EZrEnvError GetDouble(double &rdValue) const;
    double GetDouble() const;
    EZrEnvError GetFloat(float &rfValue) const;
    float GetFloat() const;
    EZrEnvError GetString(zr_ulong ulSize, char *szBuffer) const;
    const char *GetString() const { return m_szData; }
    EZrEnvError GetBinary(zr_long *plLength, char *pBuffer);
    EZrEnvError GetLongs(zr_long &rlCount, zr_long *plValues);
    EZrEnvError GetDoubles(zr_long &rlCount, double *pdValues);
    EZrEnvError GetStrings(zr_long &rlCount, zr_long lSize, char **pszValues);
    zr_ulong GetDataLength() const;
    EZrEnvError GetArraySize(zr_long &rlCount, zr_long &rlMaxLength) const;

protected:
    ~CZrEnvDataElement() override;

private:
    friend class CZrEnv;
    friend class CZrEnvBlock;
    friend class CZrEnvReader;
    friend class CZrEnvWriter;
    friend class CZrEnvNodeStore;

    CZrEnvDataElement(char *szName, char *szData, std::uint32_t uFlags)
        : CZrEnvElement(szName, uFlags), m_szData(szData) {}
    char *GetBuffer(unsigned int uiSize);
    void PutData(char *szData);
    EZrEnvError StoreText(std::string_view text); // a new exact array in place of the present value

    char *m_szData = nullptr;
};

// An inner node: owns children of any kind, in the order of their insertion and by name.
class ZR_API CZrEnvBlock : public CZrEnvElement {
public:
    explicit CZrEnvBlock(const char *szName);
    ~CZrEnvBlock() override;
    CZrEnvBlock(const CZrEnvBlock &other);
    CZrEnvBlock &operator=(const CZrEnvBlock &other);

    CZrEnvBlock *ToEnvBlock() override;
    const CZrEnvBlock *ToEnvBlock() const override;

    bool InsertElement(CZrEnvElement *pElem);
    bool InsertElementBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore);
    bool RemoveElement(CZrEnvElement *pElem, bool bDelete);
    bool ReplaceElement(CZrEnvElement *pOld, CZrEnvElement *pNew);
    void ElemNameChanged(CZrEnvElement *pElem);
    CZrEnvElement *GetElement(const char *szName, zr_long lPos);
    CZrEnvDataElement *GetDataElement(const char *szName, zr_long lPos);
    CZrEnvBlock *GetBlock(const char *szName, zr_long lPos);
    zr_ulong GetElemCount() const;
    zr_ulong GetElemCount(const char *szName) const;
    CZrEnvElement *GetFirstElement() const { return m_pFirst; }
    CZrEnvElement *GetNextElement(const CZrEnvElement *pElem) const;
    void GetElems(std::vector<CZrEnvElement *> &rElems);
    void GetElemNames(std::vector<std::string> &rNames);

private:
    friend class CZrEnv;
    friend class CZrEnvElement;
    friend class CZrEnvSection;
    friend class CZrEnvReader;
    friend class CZrEnvWriter;
    friend class CZrEnvNameIndex;
    friend class CZrEnvNodeStore;

    CZrEnvBlock(char *szName, std::uint32_t uFlags) : CZrEnvElement(szName, uFlags) {}
    void InsertElementIntoContainer(CZrEnvElement *pElem);
    bool RemoveElementFromContainer(CZrEnvElement *pElem);
    CZrEnvElement *CreateNewElement(const CZrEnvPathElem &rStep, EZrEnvElementType eType);
    CZrEnvElement *Find(std::string_view name, zr_long lPos) const;
    zr_ulong Count(std::string_view name) const;
    CZrEnvNameIndex *LookUpIndex() const;
    CZrEnvNameIndex &OrderedIndex() const;
    bool Adopt(CZrEnvElement *pElem);
    void Disown(CZrEnvElement *pElem);

    std::uint32_t m_uCount = 0; // children in the sequence
    CZrEnvElement *m_pFirst = nullptr;
    CZrEnvElement *m_pLast = nullptr;
    mutable CZrEnvNameIndex *m_pIndex = nullptr; // built at the first look-up that needs it
};

// A block at the top level of one environment.
class ZR_API CZrEnvSection : public CZrEnvBlock {
public:
    explicit CZrEnvSection(const char *szName);
    ~CZrEnvSection() override;
    CZrEnvSection(const CZrEnvSection &other);
    CZrEnvSection &operator=(const CZrEnvSection &other);

    CZrEnv *GetEnv() const override;
    CZrEnvSection *ToEnvSection() override;
    const CZrEnvSection *ToEnvSection() const override;

protected:
    bool CheckName(const char *szName) override;

private:
    friend class CZrEnv;
    friend class CZrEnvElement;
    friend class CZrEnvBlock;
    friend class CZrEnvReader;
    friend class CZrEnvNodeStore;

    CZrEnvSection(char *szName, std::uint32_t uFlags) : CZrEnvBlock(szName, uFlags) {}
    void SetEnv(CZrEnv *pEnv) { m_pEnv = pEnv; }

    CZrEnv *m_pEnv = nullptr;
};

// An environment: a list of sections, or (a subenvironment) a view rooted at one element of another environment.
class ZR_API CZrEnv {
public:
    CZrEnv(const CZrEnv &other);
    CZrEnv &operator=(const CZrEnv &other);

    // Life cycle and state
    static CZrEnv *CreateEnv(zr_long lID, CZrEnv *pDefault);
    static EZrEnvError DestroyEnv(CZrEnv *pEnv, bool bDefaults);
    void DeleteEnvironmentSections();
    zr_long GetID() const { return m_lID; }
    bool IsSubEnv() const { return m_pParentEnv != nullptr; }
    CZrEnvElement *GetSubEnvRootElement() const { return m_pSubEnvRoot; }
    EZrEnvError SetLastError(EZrEnvError eError) const { return m_eLastError = eError; }
    EZrEnvError GetLastError() const { return m_eLastError; }
    void ResetLastError() const { m_eLastError = ENV_OK; }
    char SetDelimiter(char cDelimiter);
    char GetDelimiter() const { return m_cDelimiter; }
    const char *GetStrDelimiter() const { return m_szDelimiter; }
    zr_long GetFileMTime();
    static EZrEnvElementType GetElementType(CZrEnvElement *pElem);
    static void FreeString(char *szText);

    // Sections
    bool InsertSection(CZrEnvSection *pSection);
    CZrEnvSection *InsertSection(const char *szName);
    bool InsertSectionBefore(CZrEnvSection *pSection, CZrEnvSection *pBefore);
    CZrEnvSection *GetSection(const char *szName) const;
    CZrEnvSection *GetFirstSection() const { return m_pFirstSection; }
    CZrEnvSection *GetNextSection(CZrEnvSection *pSection) const;
    EZrEnvError GetSections(std::vector<CZrEnvSection *> &rSections) const;
    EZrEnvError GetSectionNames(std::vector<std::string> &rNames) const;
    void DeleteSection(CZrEnvSection *pSection);
    EZrEnvError DeleteSection(const char *szName);

    // Subenvironments and the default chain
    CZrEnv *OpenSubenv(CZrEnvElement *pElem);
    CZrEnv *OpenSubenv(const char *szSection, const char *szPath, bool bDirect);
    CZrEnv *CreateSubenv(const char *szSection, const char *szPath);
    void AttachAsLastDefault(CZrEnv *pDefault);
    CZrEnv *DetachDefaultChain();

    // Names
    static bool CheckSectionName(const char *szName);
    static bool CheckElementName(const char *szName, char cDelimiter);
    bool CheckElementName(const char *szName);

    // Look-ups
    CZrEnvElement *GetElement(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const;
    CZrEnvDataElement *GetDataElement(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const;
    CZrEnvBlock *GetBlock(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const;
    CZrEnvElement *GetPosElement(const char *szSection, const char *szPath, zr_long lPos, bool bDirect,
                                 bool bDefaults) const;
    CZrEnvElement *GetNextElement(CZrEnvElement *pElem) const;
    zr_long CountElements(const char *szSection, const char *szPath, bool bDirect);
    zr_long CountPath(const char *szSection, const char *szPath, bool bDirect);
    EZrEnvError GetElems(const char *szSection, const char *szPath, bool bDirect,
                         std::vector<CZrEnvElement *> &rElems) const;
    zr_long GetElemNames(const char *szSection, const char *szPath, bool bDirect,
                         std::vector<std::string> &rNames) const;
    zr_long BuildPath(zr_ulong ulSize, char *szBuffer, const char *szFirst, ...);
    static zr_long BuildPath(char cDelimiter, zr_ulong ulSize, char *szBuffer, const char *szFirst, ...);
    zr_long BuildPathVA(zr_ulong ulSize, char *szBuffer, const char *szFirst, va_list pArgs);
    static zr_long BuildPathVA(char cDelimiter, zr_ulong ulSize, char *szBuffer, const char *szFirst, va_list pArgs);

    // Typed access and editing
    EZrEnvError GetLong(const char *szSection, const char *szPath, zr_long &rlValue) const;
    zr_long GetLong(const char *szSection, const char *szPath) const;
    EZrEnvError GetDouble(const char *szSection, const char *szPath, double &rdValue) const;
    double GetDouble(const char *szSection, const char *szPath) const;
    EZrEnvError GetString(const char *szSection, const char *szPath, zr_long lSize, char *szBuffer) const;
    const char *GetString(const char *szSection, const char *szPath) const;
    EZrEnvError GetBinary(const char *szSection, const char *szPath, zr_long *plLength, char *pBuffer) const;
    EZrEnvError GetLongs(const char *szSection, const char *szPath, zr_long &rlCount, zr_long *plValues) const;
    EZrEnvError GetDoubles(const char *szSection, const char *szPath, zr_long &rlCount, double *pdValues) const;
    EZrEnvError GetStrings(const char *szSection, const char *szPath, zr_long &rlCount, zr_long lSize,
                           char **pszValues) const;
    zr_long GetDataLength(const char *szSection, const char *szPath, bool bDirect) const;
    EZrEnvError GetArraySize(const char *szSection, const char *szPath, bool bDirect, zr_long &rlCount,
                             zr_long &rlMaxLength) const;
    EZrEnvError SetLong(const char *szSection, const char *szPath, zr_long lValue);
    EZrEnvError SetDouble(const char *szSection, const char *szPath, double dValue);
    EZrEnvError SetString(const char *szSection, const char *szPath, const char *szValue);
    EZrEnvError SetBinary(const char *szSection, const char *szPath, zr_ulong ulLength, const char *pData);
    EZrEnvError SetLongs(const char *szSection, const char *szPath, zr_long lCount, const zr_long *plValues);
    EZrEnvError SetDoubles(const char *szSection, const char *szPath, zr_long lCount, const double *pdValues);
    EZrEnvError SetStrings(const char *szSection, const char *szPath, zr_long lCount, const char **pszValues);
    EZrEnvError Rename(const char *szSection, const char *szPath, const char *szNewName);
    EZrEnvError Delete(const char *szSection, const char *szPath);
    bool DeleteElement(CZrEnvElement *pElem);

    // The text format
    EZrEnvError ReadFile(const char *szPath, EEnvReadMode eMode);
    EZrEnvError ReadString(const char *szText, EEnvReadMode eMode);
    bool WriteFile(const char *szPath, bool bWrap);
    char *WriteString(bool bWrap);

    // 0 and the place, counted from 1, at which the last failed read of this environment stopped, or ENV_NOT_FOUND.
    EZrEnvError GetErrorPosition(zr_long &rlLine, zr_long &rlColumn) const;

    // One step of a direct check without defaults, as env_check needs it: ENV_DATA, ENV_BLOCK or ENV_NOT_FOUND.
    EZrEnvError Check(const char *szSection, const char *szPath, bool bDirect) const;

private:
    friend class CZrEnvBlock;
    friend class CZrEnvElement;
    friend class CZrEnvReader;
    friend class CZrEnvWriter;
    friend class CZrEnvNodeStore;

    CZrEnv(zr_long lID, CZrEnv *pDefault);
    explicit CZrEnv(CZrEnvElement *pRoot);
    ~CZrEnv();

    void SetFileMTime(zr_long lTime);
    void AddSubEnv(CZrEnv *pSub);
    void RemoveSubEnv(CZrEnv *pSub);
    void SetDefault(CZrEnv *pDefault);
    void UnlinkSection(CZrEnvSection *pSection);
    static bool Detach(CZrEnvSection *pSection);
    void SectionsChanged();
    void ForgetRootsBelow(const CZrEnvElement *pElem);

    CZrEnvElement *GetHere(const char *szSection, const char *szPath, bool bDirect, bool &rbAtOnce) const;
    template <class Look>
    CZrEnvElement *AlongDefaults(bool bDefaults, Look look) const;
    CZrEnvElement *SearchProc(const char *szSection, const char *szPath, bool bDirect) const;
    CZrEnvElement *CommonSearch(const char *szPath, bool bDirect, CZrEnvBlock *pStart) const;
    CZrEnvElement *SearchInTree(CZrEnvBlock *pBlock, const CZrEnvPathElem &rStep) const;
    CZrEnvElement *FindElement(const char *szSection, const char *szPath, zr_long lPos, bool bDirect) const;
    CZrEnvElement *SetPosBlock(zr_long lPos, CZrEnvBlock *pBlock) const;
    CZrEnvElement *SetPosEnv(zr_long lPos) const;
    CZrEnvDataElement *ReadableElement(const char *szSection, const char *szPath, bool bDirect) const;

    CZrEnvBlock *CreateStart(const char *szSection, bool bHasSteps);
    CZrEnvBlock *CreateStepBlock(CZrEnvBlock *pBlock, const CZrEnvPathElem &rStep);
    CZrEnvElement *CreatePath(const char *szSection, const char *szPath, EZrEnvElementType eType);
    CZrEnvDataElement *GetOrCreateEnvDataElement(const char *szSection, const char *szPath);
    bool ReplaceElement(CZrEnvElement *pOld, CZrEnvElement *pNew);

    char m_cDelimiter = '@';
    char m_szDelimiter[2] = {'@', '\0'};
    zr_long m_lID = 0;
    mutable EZrEnvError m_eLastError = ENV_OK;
    zr_long m_lRefCount = 0;
    zr_long m_lFileMTime = -1;
    zr_long m_lSectionCount = 0;
    CZrEnvSection *m_pFirstSection = nullptr;
    CZrEnvSection *m_pLastSection = nullptr;
    CZrEnv *m_pParentEnv = nullptr;
    CZrEnvElement *m_pSubEnvRoot = nullptr;
    CZrEnv *m_pDefaultEnv = nullptr;
    std::vector<CZrEnv *> m_SubEnvs;
    std::vector<CZrEnv *> m_Holders;                    // environments whose default pointer leads here, counted or not
    mutable CZrEnvNameIndex *m_pSectionIndex = nullptr; // built at a look-up among many sections
    bool m_bView = false;                               // a copy: owns nothing
    zr_long m_lErrorLine = 0;                           // 0: the last read did not fail
    zr_long m_lErrorColumn = 0;
};

} // namespace Zr

#endif

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
class CZrEnvWalk;
class CZrEnvTreeCheck;
class CZrEnvProbe; // the tests' way to the private parts

// Root of all nodes: a name, the block that holds it, the next sibling.
class ZR_API CZrEnvElement {
public:
    CZrEnvElement(const CZrEnvElement &other);
    CZrEnvElement &operator=(const CZrEnvElement &other);

    // The environment of the section at the top; null for an element that no section holds. Costs a step for each level.
    virtual CZrEnv *GetEnv() const;

    // The element as what it is, or null: the only test of kinds. A section answers as a block too.
    virtual CZrEnvBlock *ToEnvBlock();
    virtual const CZrEnvBlock *ToEnvBlock() const;
    virtual CZrEnvDataElement *ToEnvDataElement();
    virtual const CZrEnvDataElement *ToEnvDataElement() const;
    virtual CZrEnvSection *ToEnvSection();
    virtual const CZrEnvSection *ToEnvSection() const;

    // The name, borrowed until the next change of it; null for an element whose name was refused.
    const char *GetName() const { return m_szName; }

    // False, with nothing changed and no report, for null and for a name that CheckName refuses: for elements the empty
    // name and one with '=', for sections one with ']'. The delimiter of the environment is not looked at: a name that
    // holds it is taken, and no path reaches it. In its block the element moves behind its namesakes by number, not in
    // sequence, and may count once more than before under its old place (see CZrEnvBlock::GetElemCount). Out of memory
    // leaves the element nameless. szName may be a part of the present name.
    bool SetName(const char *szName);

    // The block that holds the element; null for a section and for a detached element.
    CZrEnvBlock *GetParent() const { return m_pParent; }

    // The next sibling, for a section the next section; null at the end. A removed element keeps its last one.
    CZrEnvElement *GetSuccElem() const { return m_pSucc; }

    // Nodes of a file that was read share chunks of memory; releasing one looks at where it lives before it ends it.
    static void operator delete(CZrEnvElement *pElem, std::destroying_delete_t);
    static void operator delete(void *pMemory) noexcept; // after a constructor that threw
    static void operator delete(void *pMemory, const std::nothrow_t &) noexcept;
    static void operator delete(void *, void *) noexcept {}

    // Memory comes from the library, which also gives it back, whoever makes the node.
    static void *operator new(std::size_t uSize);
    static void *operator new(std::size_t uSize, const std::nothrow_t &) noexcept;
    static void *operator new(std::size_t, void *pPlace) noexcept { return pPlace; }

protected:
    // Whether SetName takes a name.
    virtual bool CheckName(const char *szName);
    // A refused name leaves the element nameless and otherwise valid.
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
    friend class CZrEnvTreeCheck;
    friend class CZrEnvProbe;

    CZrEnvElement(char *szName, std::uint32_t uFlags) : m_szName(szName), m_uFlags(uFlags) {}
    void ReleaseName();

    char *m_szName = nullptr;
    CZrEnvBlock *m_pParent = nullptr;
    CZrEnvElement *m_pSucc = nullptr;
    std::uint32_t m_uFlags = 0; // CZrEnvNodeStore::Flag
};

// A leaf: one value, kept as text whatever its type. Numbers are converted at each access, so a value written in one way
// can be read in any other in which its text parses. An element without value differs from one with the empty text; no
// operation takes a value away again, but for a SetString or SetStrings that finds no memory.
//
// The results of all operations are ENV_OK or what is told beside them. Reports carry the tag ZrEnvDataElement. Null
// buffers give ENV_ERROR. Counts are numbers of values; lists are separated by commas, without any quoting.
class ZR_API CZrEnvDataElement : public CZrEnvElement {
public:
    // With the value that the setter of that type stores. A null szValue makes an element without value. A name that
    // CheckName refuses leaves the element nameless.
    explicit CZrEnvDataElement(const char *szName, const char *szValue);
    explicit CZrEnvDataElement(const char *szName, zr_long lValue);
    explicit CZrEnvDataElement(const char *szName, double dValue);
    explicit CZrEnvDataElement(const char *szName, float fValue);

    // Views: the copy shows its source's value until either of the two is written, and gets a text of its own when it is
    // written itself. An assignment ends the value that was there.
    CZrEnvDataElement(const CZrEnvDataElement &other);
    CZrEnvDataElement &operator=(const CZrEnvDataElement &other);

    CZrEnvDataElement *ToEnvDataElement() override;
    const CZrEnvDataElement *ToEnvDataElement() const override;

    // Setters of one value. All end what GetString() gave before. ENV_ERROR with zr_message "Out of memory" if there is
    // none: the old value is then still there, except after SetString.
    EZrEnvError SetLong(zr_long lValue);  // "%ld"
    EZrEnvError SetDouble(double dValue); // "%.13g": 13 significant digits; infinities do not read back
    EZrEnvError SetFloat(float fValue);   // "%f": six places behind the point
    EZrEnvError
    SetString(const char *szValue); // a copy; may lie in the present value. ENV_ERROR, nothing changed: null

    // The ENV_BIN text of pData[0..ulLength-1], which may hold any bytes. A length above 2147483647 stores no bytes.
    EZrEnvError SetBinary(zr_ulong ulLength, const char *pData);

    // Setters of a list of lCount values. ENV_ERROR, nothing changed: a count below 1, a null array or a null text in it.
    // No memory: ENV_ERROR with the report "Out of memory", zr_error from SetStrings (the old value is then gone), else
    // zr_message. Texts are joined as they stand, so one that holds a comma reads back as two.
    EZrEnvError SetLongs(zr_long lCount, const zr_long *plValues);
    EZrEnvError SetDoubles(zr_long lCount, const double *pdValues);
    EZrEnvError SetStrings(zr_long lCount, const char **pszValues);

    // Getters of one number. ENV_ERROR: no value. ENV_BAD_FORMAT: the text is no number of that kind up to its end or to
    // its first line end, with blanks and tabs around it; the output may have been written ("12 34" leaves 12), except a
    // float. Longs saturate at 32 bits, doubles become infinite. The forms without output give what was written, else 0.
    EZrEnvError GetLong(zr_long &rlValue) const;
    zr_long GetLong() const;
    EZrEnvError GetDouble(double &rdValue) const;
    double GetDouble() const;
    EZrEnvError GetFloat(float &rfValue) const;
    float GetFloat() const;

    // The text into szBuffer[0..ulSize-1], terminated. ENV_ERROR: no value. ENV_TOO_SMALL: no room for text and
    // terminator, the buffer is untouched.
    EZrEnvError GetString(zr_ulong ulSize, char *szBuffer) const;

    // The element's own text, valid until the next write to the element; null without value.
    const char *GetString() const { return m_szData; }

    // The bytes of an ENV_BIN text, or any other text as its own bytes, into pBuffer[0..*plLength-1]; *plLength becomes
    // their number. A buffer for N bytes of ENV_BIN has N + 1. ENV_ERROR: no value, or a version that is not known,
    // with zr_message "Incorrect version of ENV_BIN". ENV_TOO_SMALL with zr_message "Small buffer": the buffer holds what
    // fitted, *plLength is unchanged. zr_message "Unknown '_'-symbol" tells of a byte that is left out. Tag of all three:
    // ZrEnvDataConvert.
    EZrEnvError GetBinary(zr_long *plLength, char *pBuffer);

    // Lists of numbers into an array of rlCount; rlCount becomes the number of values, 0 on any failure. ENV_ERROR: no
    // value. ENV_BAD_FORMAT: a fault in the text. ENV_TOO_SMALL: more values than room. What was read before is stored.
    EZrEnvError GetLongs(zr_long &rlCount, zr_long *plValues);
    EZrEnvError GetDoubles(zr_long &rlCount, double *pdValues);

    // The text, split at every comma, into the rlCount buffers pszValues[i][0..lSize-1], each terminated; rlCount becomes
    // the number of texts. ENV_ERROR: no value (rlCount becomes 0), a count or size below 1, a null buffer. ENV_TOO_SMALL:
    // more texts than buffers, or one longer than lSize - 1, whose buffer is left without terminator.
    EZrEnvError GetStrings(zr_long &rlCount, zr_long lSize, char **pszValues);

    // Length of the text in bytes, terminator not counted; 0 without value.
    zr_ulong GetDataLength() const;

    // Number of texts between commas and the length of the longest, terminator not counted. ENV_ERROR, both 0: no value.
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
    void PutData(char *szData);                   // takes over an array as the value, null for none
    EZrEnvError StoreText(std::string_view text); // in place of the present value, which stays on no memory
    bool IsWritable() const;                      // whether the present text may be overwritten where it is

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

    // Appends, in sequence and behind all namesakes. False, with no report, for null, for a child of this block, for this
    // block or one above it, and for a section that an environment holds. A child of another block leaves that one.
    // On success the block owns the element.
    bool InsertElement(CZrEnvElement *pElem);

    // Inserts in front of pBefore; null appends. Among namesakes of pBefore the new element takes pBefore's number. False
    // as above, and for a pBefore that is no child of this block. Linear in the number of children.
    bool InsertElementBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore);

    // Takes a child out; with bDelete it ends with all that is below it, without it the caller owns it from here on.
    // False for null, and for no child of this block after zr_message "CZrEnvBlock::RemoveElement - Element geh\xF6rt nicht
    // zum Block". Linear in the number of children, constant for the first one.
    bool RemoveElement(CZrEnvElement *pElem, bool bDelete);

    // Puts pNew at pOld's place in the sequence and behind its namesakes by number, and ends pOld with all that is below
    // it. False, with nothing changed, for null or identical arguments, for a pNew that cannot become a child, and for a
    // foreign pOld after zr_message "CZrEnvBlock::ReplaceElement - Element geh\xF6rt nicht zum Block".
    bool ReplaceElement(CZrEnvElement *pOld, CZrEnvElement *pNew);

    // Files a child anew under its present name, behind its namesakes. SetName calls it.
    void ElemNameChanged(CZrEnvElement *pElem);

    // The lPos-th child of that name, from 1; less than 1 gives the first. Null when there are fewer, and for a name that
    // no element can have. Logarithmic or better.
    CZrEnvElement *GetElement(const char *szName, zr_long lPos);
    // The same, null as well when that child is of another kind.
    CZrEnvDataElement *GetDataElement(const char *szName, zr_long lPos);
    CZrEnvBlock *GetBlock(const char *szName, zr_long lPos);

    // The number of children by name, of all names or of one. A renamed child whose old entry was not found at its new
    // place counts twice from then on.
    zr_ulong GetElemCount() const;
    zr_ulong GetElemCount(const char *szName) const;

    // The sequence: the order of insertion, as a file shows it.
    CZrEnvElement *GetFirstElement() const { return m_pFirst; }
    CZrEnvElement *GetNextElement(const CZrEnvElement *pElem) const; // null for null
    void GetElems(std::vector<CZrEnvElement *> &rElems);             // appends all children to rElems
    void GetElemNames(std::vector<std::string> &rNames);             // appends copies of their names to rNames

private:
    friend class CZrEnv;
    friend class CZrEnvElement;
    friend class CZrEnvSection;
    friend class CZrEnvReader;
    friend class CZrEnvWriter;
    friend class CZrEnvNameIndex;
    friend class CZrEnvNodeStore;
    friend class CZrEnvTreeCheck;
    friend class CZrEnvProbe;

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
    friend class CZrEnvTreeCheck;
    friend class CZrEnvProbe;

    CZrEnvSection(char *szName, std::uint32_t uFlags) : CZrEnvBlock(szName, uFlags) {}
    void SetEnv(CZrEnv *pEnv) { m_pEnv = pEnv; }

    CZrEnv *m_pEnv = nullptr;
};

// An environment: a list of sections, or (a subenvironment) a view rooted at one element of another environment.
class ZR_API CZrEnv {
public:
    CZrEnv(const CZrEnv &other);
    CZrEnv &operator=(const CZrEnv &other);

    // --- Life cycle and state -----------------------------------------------------------------------------------------

    // A new, empty environment with the caller's id; pDefault, if any, is held as its default. Null on no memory. Ids of 0
    // and above keep the results of the env_ functions unambiguous.
    static CZrEnv *CreateEnv(zr_long lID, CZrEnv *pDefault);

    // Ends an environment, a top-level one with its whole tree. ENV_IN_USE, with nothing done, while subenvironments of it
    // are open or others hold it as their default. With bDefaults a top-level environment's default chain is ended behind
    // it, up to one that is still held, whose ENV_IN_USE is then the result. Null gives ENV_OK.
    static EZrEnvError DestroyEnv(CZrEnv *pEnv, bool bDefaults);

    // Ends all sections. Nothing on a subenvironment.
    void DeleteEnvironmentSections();

    zr_long GetID() const { return m_lID; } // a subenvironment has its parent's
    bool IsSubEnv() const { return m_pParentEnv != nullptr; }
    CZrEnvElement *GetSubEnvRootElement() const { return m_pSubEnvRoot; } // null at top level

    // The result of the last operation that keeps one; const operations keep it too.
    EZrEnvError SetLastError(EZrEnvError eError) const { return m_eLastError = eError; }
    EZrEnvError GetLastError() const { return m_eLastError; }
    void ResetLastError() const { m_eLastError = ENV_OK; }

    // The character between the steps of a path, '@' at first. Gives the one before the call; zero changes nothing and
    // raises zr_error "Bad delimiter". Open subenvironments keep theirs.
    char SetDelimiter(char cDelimiter);
    char GetDelimiter() const { return m_cDelimiter; }
    const char *GetStrDelimiter() const { return m_szDelimiter; } // as a text, borrowed from the environment

    // Time of last modification, low 32 bits of the seconds since 1970, of the file last read; -1 before, ENV_ERROR (-10) on a
    // subenvironment.
    zr_long GetFileMTime();

    static EZrEnvElementType GetElementType(CZrEnvElement *pElem); // ENV_TYPE_UNKNOWN for null
    static void FreeString(char *szText);                          // frees a text of WriteString; null is allowed

    // --- Sections (names need not be unique) --------------------------------------------------------------------------

    // Appends, and owns the section on success; one that stands in another environment leaves that one. False after
    // zr_message "Fehler bei InsertSection" for null, for a section of this environment and on a subenvironment, and after
    // "Wrong section name: " for a name that CheckSectionName refuses.
    bool InsertSection(CZrEnvSection *pSection);
    // Makes a section and appends it: borrowed, or null after the reports above (zr_error "Out of memory" on no memory).
    CZrEnvSection *InsertSection(const char *szName);
    // Inserts in front of pBefore; null appends. False, with no report, for a section of this environment and for a pBefore
    // that is none. The name is not tested.
    bool InsertSectionBefore(CZrEnvSection *pSection, CZrEnvSection *pBefore);

    // The first section of that name. Null and ENV_NOT_FOUND if there is none; null and ENV_ERROR after zr_message "try find
    // section in subenvironment" on a subenvironment; null for null, the last error left alone.
    CZrEnvSection *GetSection(const char *szName) const;
    CZrEnvSection *GetFirstSection() const { return m_pFirstSection; }
    CZrEnvSection *GetNextSection(CZrEnvSection *pSection) const; // null for null and at the end

    // Append all sections, or copies of their names, in order. ENV_OK; on a subenvironment ENV_ERROR after zr_message
    // "GetSections-Aufruf bei SubEnv" or "GetSectionNames-Aufruf bei SubEnv".
    EZrEnvError GetSections(std::vector<CZrEnvSection *> &rSections) const;
    EZrEnvError GetSectionNames(std::vector<std::string> &rNames) const;

    // Ends a section of this environment with all that is below it; nothing for null.
    void DeleteSection(CZrEnvSection *pSection);
    // ENV_OK or ENV_NOT_FOUND; on a subenvironment ENV_ERROR after zr_message "DeleteSection-Aufruf bei SubEnv".
    EZrEnvError DeleteSection(const char *szName);

    // --- Subenvironments and the default chain ------------------------------------------------------------------------

    // A view rooted at an element, with the delimiter, id and default that the top-level environment has now; ended by
    // DestroyEnv. It holds the top-level environment alive. Null for null, on no memory and, at top level, for an element of
    // another environment. A root that is deleted later, or moves to another tree, leaves the view without root: it then
    // finds nothing. One that RemoveElement takes out stays, and must not end before the view.
    CZrEnv *OpenSubenv(CZrEnvElement *pElem);
    // The same at the addressed element, without the default chain; null when there is none.
    CZrEnv *OpenSubenv(const char *szSection, const char *szPath, bool bDirect);
    // The same, with what is missing made as blocks, the section too. Null and ENV_ERROR if that fails.
    CZrEnv *CreateSubenv(const char *szSection, const char *szPath);

    // Appends pDefault, with its own chain, behind the end of this chain and holds it. Null changes nothing and raises
    // zr_message "Attempt to attach NIL as new_default.\nIgnored."; nor does one that is in the chain already, or whose
    // chain leads into this one.
    void AttachAsLastDefault(CZrEnv *pDefault);
    // Takes the default, with what is behind it, out of this environment and hands it back; null if there is none.
    CZrEnv *DetachDefaultChain();

    // --- Names --------------------------------------------------------------------------------------------------------

    static bool CheckSectionName(const char *szName); // not null, no ']'
    static bool CheckElementName(const char *szName,
                                 char cDelimiter); // not null, not empty, no '=', no delimiter (0: none)
    bool CheckElementName(const char *szName);     // with this environment's delimiter

    // --- Look-ups -----------------------------------------------------------------------------------------------------
    //
    // szSection names a section; a subenvironment does not look at it. szPath holds the steps below it, or below the root of
    // a subenvironment: names joined by the delimiter, each followed, if wanted, by its number among namesakes ("bar@2@length").
    // Null or empty stands for the section or root itself. With bDirect each step is a direct child of the one before; without,
    // it may lie anywhere below, the nearest level first. With bDefaults an environment that has nothing hands the same
    // arguments on to its default. A top-level environment with a null section answers with its first section at once.
    // What is found is borrowed from the tree. Not found: null, last error ENV_NOT_FOUND.

    CZrEnvElement *GetElement(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const;
    CZrEnvDataElement *GetDataElement(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const;
    CZrEnvBlock *GetBlock(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const;
    // The lPos-th child, from 1, of the addressed block, all names and kinds counted in sequence; the addressed element itself
    // for lPos below 1. With a null section at top level the lPos-th section (below 1: zr_error "szSection == NIL and pos == 0").
    CZrEnvElement *GetPosElement(const char *szSection, const char *szPath, zr_long lPos, bool bDirect,
                                 bool bDefaults) const;
    CZrEnvElement *GetNextElement(CZrEnvElement *pElem) const;
    // The number of children by name of the addressed block, of sections for a null section at top level; 0 if there is none.
    zr_long CountElements(const char *szSection, const char *szPath, bool bDirect);
    // The number of namesakes of the addressed element, itself included; 0 if there is none. The text behind the last delimiter
    // is taken as the name, so a path with a position at its end counts 0 as a rule.
    zr_long CountPath(const char *szSection, const char *szPath, bool bDirect);
    // Append the children of the addressed block, or copies of their names, in sequence order, the default chain included; of
    // a null section at top level the sections. ENV_OK; not found or no block: ENV_NOT_FOUND, and ENV_BLOCK for the names.
    EZrEnvError GetElems(const char *szSection, const char *szPath, bool bDirect,
                         std::vector<CZrEnvElement *> &rElems) const;
    zr_long GetElemNames(const char *szSection, const char *szPath, bool bDirect,
                         std::vector<std::string> &rNames) const;
    // Joins texts, ended by a null pointer, by the delimiter. ENV_OK, or ENV_TOO_SMALL when they do not fit into ulSize bytes,
    // the terminator included: the buffer is then untouched if the first text alone is too long, else empty. A null szFirst
    // leaves the buffer alone. The last error is left alone.
    zr_long BuildPath(zr_ulong ulSize, char *szBuffer, const char *szFirst, ...);
    static zr_long BuildPath(char cDelimiter, zr_ulong ulSize, char *szBuffer, const char *szFirst, ...);
    zr_long BuildPathVA(zr_ulong ulSize, char *szBuffer, const char *szFirst, va_list pArgs);
    static zr_long BuildPathVA(char cDelimiter, zr_ulong ulSize, char *szBuffer, const char *szFirst, va_list pArgs);

    // --- Reading of values --------------------------------------------------------------------------------------------
    //
    // Direct steps, with the default chain, data elements only. ENV_NOT_FOUND for a missing element and ENV_DATA for one of
    // another kind, in the result and as the last error, the outputs untouched but for counts, which become 0; otherwise
    // what the element's own operation gives. The forms that return a value give 0 or null instead of a failure.

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

    // --- Writing of values --------------------------------------------------------------------------------------------
    //
    // In this environment only. Missing sections, blocks and elements are made; a data element on the way becomes an empty
    // block, and a block at the end a data element, what they held being lost. A jump past the namesakes fills up with
    // elements without value ("x@3" in an empty block makes two). ENV_ERROR for a section as target, for a position below 1 and
    // for a refused section name.

    EZrEnvError SetLong(const char *szSection, const char *szPath, zr_long lValue);
    EZrEnvError SetDouble(const char *szSection, const char *szPath, double dValue);
    EZrEnvError SetString(const char *szSection, const char *szPath, const char *szValue);
    EZrEnvError SetBinary(const char *szSection, const char *szPath, zr_ulong ulLength, const char *pData);
    EZrEnvError SetLongs(const char *szSection, const char *szPath, zr_long lCount, const zr_long *plValues);
    EZrEnvError SetDoubles(const char *szSection, const char *szPath, zr_long lCount, const double *pdValues);
    EZrEnvError SetStrings(const char *szSection, const char *szPath, zr_long lCount, const char **pszValues);

    // --- Changes of the tree ------------------------------------------------------------------------------------------

    // Renames the addressed element, or section for a null path. ENV_OK, ENV_NOT_FOUND, or ENV_ERROR for a refused name and,
    // after zr_message "Rename-Aufruf mit szSection == NULL", for a null section at top level.
    EZrEnvError Rename(const char *szSection, const char *szPath, const char *szNewName);
    // Deletes the addressed element with all that is below it; a section for a null path, all sections for two nulls at top
    // level. ENV_OK, ENV_NOT_FOUND, or ENV_ERROR after a report for a call that the kind of environment does not allow.
    EZrEnvError Delete(const char *szSection, const char *szPath);
    // Deletes an element or section. False for null, and for one that stands nowhere, which then stays the caller's, after
    // zr_message "CZrEnv::DeleteElement - unbekanntes Objekt" with ENV_NOT_FOUND.
    bool DeleteElement(CZrEnvElement *pElem);

    // --- The text format ----------------------------------------------------------------------------------------------

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
    friend class CZrEnvWalk;
    friend class CZrEnvTreeCheck;
    friend class CZrEnvProbe;

    CZrEnv(zr_long lID, CZrEnv *pDefault);
    explicit CZrEnv(CZrEnvElement *pRoot);
    CZrEnv(CZrEnvElement *pRoot, CZrEnv *pParent); // pParent: what pRoot->GetEnv() gives
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

// The plain way of the reader: items that lie whole in the source's block and hold nothing that a level would change.
#include <cstring>

#include "env/reader.h"
#include "env/reader_text.h"

namespace Zr {

// A walk over the block's bytes. At each stop the source could go on from pNext with this line start.
struct CZrEnvReader::Item {
    const char *pNext;
    const char *pLimit;
    bool bAtLineStart;

    // To the first character of an item, over blanks, line ends and comments. False if the block ends before, or at a
    // carriage return that is not part of a line end.
    bool Find();
    // Over a line end; false if there is none.
    bool TakeLineEnd();
};

bool CZrEnvReader::Item::TakeLineEnd() {
    const std::ptrdiff_t lLeft = pLimit - pNext;
    if (lLeft > 0 && *pNext == '\n')
        pNext += 1;
    else if (lLeft > 1 && *pNext == '\r' && pNext[1] == '\n')
        pNext += 2;
    else
        return false;
    bAtLineStart = true;
    return true;
}

bool CZrEnvReader::Item::Find() {
    while (pNext != pLimit) {
        if (IsBlank(*pNext)) {
            ++pNext;
        } else if (*pNext == ';' && bAtLineStart) {
            const void *pEnd = std::memchr(pNext, '\n', static_cast<std::size_t>(pLimit - pNext));
            if (!pEnd)
                return false;
            pNext = static_cast<const char *>(pEnd) + 1;
        } else if (*pNext != '\n' && *pNext != '\r') {
            return true;
        } else if (!TakeLineEnd()) {
            return false;
        }
    }
    return false;
}

// Takes as many items of the section as lie plain in the source's block, and gives the block that is open then. A token
// has not been fetched before and is not fetched after. The first byte of a stream's block, to which other rules apply,
// has been taken by then, as only Get fills a block.
CZrEnvBlock *CZrEnvReader::ReadPlainItems(CZrEnvBlock *pBlock, const CZrEnvSection &section) {
    if (m_iPushedBack != 0 || !m_Pending.Empty())
        return pBlock;
    Item item{m_Source.Next(), m_Source.Limit(), m_bAtLineStart};
    while (item.Find()) {
        if (*item.pNext == '}') {
            if (pBlock == &section)
                break;
            pBlock = pBlock->GetParent();
            ++item.pNext;
            item.bAtLineStart = false;
        } else if (CZrEnvBlock *pOpen = ReadPlainItem(item, pBlock)) {
            pBlock = pOpen;
        } else {
            break;
        }
    }
    m_Source.SetNext(item.pNext);
    m_bAtLineStart = item.bAtLineStart;
    return pBlock;
}

// The data line or block head at the item's first character, appended to the block. The block that is open then; null,
// with nothing done, if it is neither or not plain.
CZrEnvBlock *CZrEnvReader::ReadPlainItem(Item &item, CZrEnvBlock *pBlock) {
    bool bMarked = false;
    const char *pName = item.pNext;
    const char *pEqual = PlainRun(pName, item.pLimit, StopAlways | StopEqual, bMarked);
    if (*pName == '[' || pEqual == pName || pEqual == item.pLimit || *pEqual != '=')
        return nullptr;
    const char *pValue = pEqual + 1;
    while (pValue != item.pLimit && IsBlank(*pValue))
        ++pValue;
    if (pValue == item.pLimit)
        return nullptr;
    const std::string_view name = WithoutTrailingBlanks(pName, pEqual);
    if (*pValue == '{') {
        item.pNext = pValue + 1;
        item.bAtLineStart = false;
        CZrEnvBlock *pInner = m_Batch.MakeBlock(name);
        CZrEnvNodeStore::Append(*pBlock, pInner);
        return pInner;
    }
    bMarked = false;
    Item end = item;
    end.pNext = PlainRun(pValue, item.pLimit, StopAlways, bMarked);
    std::string_view value = WithoutTrailingBlanks(pValue, end.pNext);
    if (!end.TakeLineEnd())
        return nullptr;
    if (bMarked) {
        m_uUsed = 0;
        m_bCut = false;
        Append(value.data(), value.size());
        CZrEnvNodeStore::AppendLeaf(*pBlock, m_Batch.MakeData(name, ReplaceMarks()));
        item = end;
        return pBlock;
    }
    CZrEnvNodeStore::AppendLeaf(*pBlock, m_Batch.MakeDataOfLine(name, value, item.pLimit));
    item = end;
    return pBlock;
}

// The first character of [pFirst, pLimit) that is one of the stops, other than backslashes that are plain characters:
// all of them when lines aren't wrapped, else those in front of a character that can neither be a fold's nor hide one.
// Marked if a line-end mark was passed.
const char *CZrEnvReader::PlainRun(const char *pFirst, const char *pLimit, unsigned char uStops, bool &rbMarked) const {
    const char *pNext = pFirst;
    for (;;) {
        pNext = FindStop(pNext, pLimit, uStops);
        if (pNext == pLimit || *pNext != '\\')
            return pNext;
        if (m_eMode != eEnvReadNotWrapped) {
            if (pNext + 1 == pLimit)
                return pNext;
            const char cBehind = pNext[1];
            if (cBehind == '\\' || cBehind == ' ' || cBehind == '\n' || cBehind == '\r')
                return pNext;
        }
        rbMarked = rbMarked || InMark(pNext, pFirst, pLimit);
        ++pNext;
    }
}

} // namespace Zr

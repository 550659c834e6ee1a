// The Waffle's cell store: the cells in the order they were first written,
// each index at most once, with a hash table beside them from an index to
// its place so that finding a cell does not grow with their number. Reads
// by row or column walk the store in write order.
#include "waffle.h"
#include "qziso32.h"

namespace {

DWORD Hash(DWORD index, DWORD slotCount)
{
    return (index * 2654435761u) & (slotCount - 1);
}

// Places `place` in the table; the table has room.
void Enter(DWORD *slots, DWORD slotCount, DWORD index, DWORD place)
{
    DWORD s = Hash(index, slotCount);
    while (slots[s])
        s = (s + 1) & (slotCount - 1);
    slots[s] = place + 1;
}

void DropIndex(WaffleRecord *r)
{
    if (r->slots)
        LocalFree(r->slots);
    r->slots = nullptr;
    r->slotCount = 0;
}

// Makes the table afresh for `cellCount` + 1 cells; without memory the
// lookups scan until the next rebuild.
void Rebuild(WaffleRecord *r)
{
    DropIndex(r);
    DWORD need = 16;
    while (need < 2 * (r->cellCount + 1) && need < 0x40000000u)
        need *= 2;
    DWORD *slots = static_cast<DWORD *>(LocalAlloc(LPTR, need * sizeof(DWORD)));
    if (!slots)
        return;
    for (DWORD i = 0; i < r->cellCount; ++i)
        Enter(slots, need, r->cells[i].index, i);
    r->slots = slots;
    r->slotCount = need;
}

// Room for one more cell; false with RV_OutOfLocalMemory and the store as
// it was.
bool MakeRoom(WaffleRecord *r)
{
    if (r->cellCount < r->cellRoom)
        return true;
    DWORD room = r->cellRoom ? r->cellRoom * 2 : 8;
    if (room > 0x7FFFFFFFu / sizeof(WaffleCell))
        room = r->cellRoom + 1;
    SIZE_T bytes = SIZE_T(room) * sizeof(WaffleCell);
    void *block = r->cells ? LocalReAlloc(r->cells, bytes, LMEM_MOVEABLE | LMEM_ZEROINIT)
                           : LocalAlloc(LPTR, bytes);
    if (!block) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
        return false;
    }
    r->cells = static_cast<WaffleCell *>(block);
    r->cellRoom = room;
    return true;
}

bool OnLine(const WaffleRecord *r, DWORD index, DWORD line, bool byColumn)
{
    return byColumn ? index % r->columnCount == line : index / r->columnCount == line;
}

}  // namespace

LONG WaffleFindCell(const WaffleRecord *r, DWORD index)
{
    if (!r->cells)
        return -1;
    if (r->slots) {
        for (DWORD s = Hash(index, r->slotCount); r->slots[s]; s = (s + 1) & (r->slotCount - 1))
            if (r->cells[r->slots[s] - 1].index == index)
                return static_cast<LONG>(r->slots[s] - 1);
        return -1;
    }
    for (DWORD i = 0; i < r->cellCount; ++i)
        if (r->cells[i].index == index)
            return static_cast<LONG>(i);
    return -1;
}

LRESULT WaffleSetCell(WaffleRecord *r, DWORD index, const char *text)
{
    if (!text) {
        OSErrorSetErrorInfo(RV_BadParms, "WFM_SETCELL");
        return -1;
    }
    int length = 0;
    while (length < kWaffleTextSize && text[length])
        ++length;
    if (length >= kWaffleTextSize) {
        OSErrorSetErrorInfo(RV_Failure);
        return -1;
    }
    LONG place = WaffleFindCell(r, index);
    if (place < 0) {
        if (!MakeRoom(r))
            return -1;
        place = static_cast<LONG>(r->cellCount++);
        r->cells[place].index = index;
        if (r->slots && 2 * r->cellCount < r->slotCount)
            Enter(r->slots, r->slotCount, index, static_cast<DWORD>(place));
        else
            Rebuild(r);
    }
    CopyMemory(r->cells[place].text, text, length);
    r->cells[place].text[length] = 0;
    return 1;
}

void WaffleGetCell(const WaffleRecord *r, DWORD index, char *buffer)
{
    LONG place = WaffleFindCell(r, index);
    buffer[0] = 0;
    if (place >= 0)
        lstrcpynA(buffer, r->cells[place].text, kWaffleTextSize);
}

DWORD WaffleLineSize(const WaffleRecord *r, DWORD line, bool byColumn)
{
    DWORD size = 1;
    for (DWORD i = 0; i < r->cellCount; ++i)
        if (OnLine(r, r->cells[i].index, line, byColumn))
            size += lstrlenA(r->cells[i].text) + 1;
    return size;
}

void WaffleGetLine(const WaffleRecord *r, DWORD line, bool byColumn, char *buffer)
{
    for (DWORD i = 0; i < r->cellCount; ++i) {
        if (!OnLine(r, r->cells[i].index, line, byColumn))
            continue;
        int length = lstrlenA(r->cells[i].text);
        CopyMemory(buffer, r->cells[i].text, length + 1);
        buffer += length + 1;
    }
    *buffer = 0;
}

DWORD WaffleLastRow(const WaffleRecord *r)
{
    if (!r->cellCount)
        return 0;
    DWORD highest = 0;
    for (DWORD i = 0; i < r->cellCount; ++i)
        if (r->cells[i].index > highest)
            highest = r->cells[i].index;
    return highest / r->columnCount;
}

void WaffleOpenRow(WaffleRecord *r, DWORD first)
{
    for (DWORD i = 0; i < r->cellCount; ++i)
        if (r->cells[i].index >= first)
            r->cells[i].index += r->columnCount;
    Rebuild(r);
}

void WaffleRemoveRow(WaffleRecord *r, DWORD row)
{
    DWORD kept = 0;
    for (DWORD i = 0; i < r->cellCount; ++i) {
        DWORD cellRow = r->cells[i].index / r->columnCount;
        if (cellRow == row)
            continue;
        if (kept != i)
            r->cells[kept] = r->cells[i];
        if (cellRow > row)
            r->cells[kept].index -= r->columnCount;
        ++kept;
    }
    if (kept == r->cellCount) {
        Rebuild(r);  // later rows were renumbered
        return;
    }
    ZeroMemory(r->cells + kept, (r->cellCount - kept) * sizeof(WaffleCell));
    r->cellCount = kept;
    if (!kept)
        WaffleFreeCells(r);
    else
        Rebuild(r);
}

void WaffleFreeCells(WaffleRecord *r)
{
    DropIndex(r);
    if (r->cells)
        LocalFree(r->cells);
    r->cells = nullptr;
    r->cellCount = 0;
    r->cellRoom = 0;
}

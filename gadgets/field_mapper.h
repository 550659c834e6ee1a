// FieldMapper: two list boxes side by side and lines in the gap between
// them, each line a link from a left item to a right item. Shared by the
// window procedure (field_mapper.cpp) and the link table and its drawing
// (field_mapper_links.cpp).
#pragma once
#include <windows.h>

// Left items that can carry links; the table has one spare slot so that the
// index the count queries let through (exactly this value) reads an empty
// entry.
const DWORD kMapperLeftItems = 100;
// A link's right index is kept in a byte.
const DWORD kMapperMostRight = 255;
const DWORD kMapperNone = 0xFFFFFFFF;

struct FieldMapperRecord {
    WNDPROC oldListProc;  // the list box procedure before subclassing
    HWND leftList;        // child id 1
    HWND rightList;       // child id 2
    BYTE **links;         // per left item: count, then right indexes; or null
    DWORD selectedLeft;   // left item picked, kMapperNone for none
    DWORD selectedRight;  // right item picked, kMapperNone for none
    LONG inSize;          // guards WM_SIZE against re-entry
};

// What the style rules answer for a link asked by message.
enum MapperRule : LRESULT { MR_Refused = 7, MR_MayAdd = 8, MR_AlreadyThere = 9 };

// The link table: 100 null entries and the spare one; null when out of
// memory (recorded).
BYTE **MapperNewTable();
void MapperFreeTable(BYTE **links);
// Links `right` to `left`: the item keeps this one link only. False, with
// the array as it was, when memory runs out or an index is out of range.
bool MapperAddLink(BYTE **links, DWORD left, DWORD right);
// Leaves `left` with no links (whatever `right` is).
void MapperRemoveLinks(BYTE **links, DWORD left);
// The rule of `style` for linking `left` to `right`; `left` below 100.
MapperRule MapperRuleFor(BYTE *const *links, DWORD style, DWORD left, DWORD right);
// FMM_LINK, FMM_GETLINKCOUNT, FMM_GETLINKS.
LRESULT MapperLinkMessage(HWND window, FieldMapperRecord *r, WPARAM add, LPARAM indexes);
LRESULT MapperLinkCount(const FieldMapperRecord *r, WPARAM left);
LRESULT MapperGetLinks(const FieldMapperRecord *r, WPARAM left, BYTE *buffer);
// The gap and its lines. Answers false when the window is gone (the parent
// destroyed it while asked for the brush).
void MapperPaint(HWND window, FieldMapperRecord *r);

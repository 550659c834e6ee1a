// TimeTracker's drag step repaint: only the parts of the frame and of the
// own column of the strip that changed since the last composition are
// composed again and shown. Within them every layer is drawn as a whole
// composition draws it, clipped, so that the pixels are those of a full
// repaint; outside them nothing changed.
#include <initializer_list>
#include "time_tracker.h"

namespace {

const LONG kBarWidth = 5;

bool SameTime(const DateTimeValue &a, const DateTimeValue &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second && a.hourBias == b.hourBias;
}

LONG BarLeft(const TimeTrackerRecord *r) { return r->rcScale.left + ((r->rcScale.right - r->rcScale.left) - 5) / 2; }

// The parts to draw again, in client coordinates, within the frame.
struct Parts {
    RECT rects[16];
    int count;
};

void Add(Parts *parts, const TimeTrackerRecord *r, const RECT &rect)
{
    RECT part;
    if (!IntersectRect(&part, &rect, &r->rcFrame))
        return;
    if (parts->count == 16) {
        // More than a step makes: the frame's width over all of them.
        UnionRect(&parts->rects[15], &parts->rects[15], &part);
        return;
    }
    parts->rects[parts->count++] = part;
}

void AddBar(Parts *parts, const TimeTrackerRecord *r, LONG top, LONG bottom)
{
    if (bottom > top)
        Add(parts, r, RECT{BarLeft(r), top, BarLeft(r) + kBarWidth, bottom});
}

void ChangedParts(const TimeTrackerRecord *r, const TrackerFigures &was, const TrackerFigures &now, Parts *parts)
{
    const bool sameValue[3] = {SameTime(was.start, now.start), SameTime(was.end, now.end),
                               was.durationHours == now.durationHours && was.durationMinutes == now.durationMinutes};
    for (int i = 0; i < 3; ++i) {
        if (!sameValue[i] || !EqualRect(&was.labels[i], &now.labels[i])) {
            for (const RECT *label : {&was.labels[i], &now.labels[i]})
                Add(parts, r, TrackerLabelReach(r, *label));
        }
    }
    for (int i = 0; i < 2; ++i) {
        if (!sameValue[i] || !EqualRect(&was.clocks[i], &now.clocks[i])) {
            for (const RECT *clock : {&was.clocks[i], &now.clocks[i]})
                Add(parts, r, TrackerClockReach(*clock));
        }
    }
    // The bar's pattern is laid from its top: a new top moves all of it.
    const bool wasDrawn = was.barBottom > was.barTop, nowDrawn = now.barBottom > now.barTop;
    if (was.barTop != now.barTop || !wasDrawn || !nowDrawn) {
        AddBar(parts, r, was.barTop, was.barBottom);
        AddBar(parts, r, now.barTop, now.barBottom);
    } else if (was.barBottom != now.barBottom) {
        AddBar(parts, r, was.barBottom < now.barBottom ? was.barBottom : now.barBottom,
               was.barBottom > now.barBottom ? was.barBottom : now.barBottom);
    }
}

// The rows of the own column that differ between the block drawn and the
// block to draw. A block's row depends on its colour and on the distance to
// its top and bottom up to two rows (outline, half tone, colour); small or
// recoloured blocks are drawn again whole, two rows wider each way, as the
// inner fills of a block under five rows are turned over by the platform.
int ChangedRows(LONG wasTop, LONG wasBottom, COLORREF wasColour, LONG top, LONG bottom, COLORREF colour,
                LONG height, LONG rows[2][2])
{
    const bool wasDrawn = wasBottom > wasTop, drawn = bottom > top;
    if (!wasDrawn && !drawn)
        return 0;
    if (!wasDrawn || !drawn || wasColour != colour || wasBottom - wasTop < 6 || bottom - top < 6) {
        LONG from = drawn ? top : wasTop, to = drawn ? bottom : wasBottom;
        if (wasDrawn && wasTop < from)
            from = wasTop;
        if (wasDrawn && wasBottom > to)
            to = wasBottom;
        rows[0][0] = from - 2 > 0 ? from - 2 : 0;
        rows[0][1] = to + 2 < height ? to + 2 : height;
        return 1;
    }
    int n = 0;
    if (wasTop != top) {
        rows[n][0] = wasTop < top ? wasTop : top;
        rows[n][1] = (wasTop > top ? wasTop : top) + 2;
        ++n;
    }
    if (wasBottom != bottom) {
        rows[n][0] = (wasBottom < bottom ? wasBottom : bottom) - 2;
        rows[n][1] = wasBottom > bottom ? wasBottom : bottom;
        ++n;
    }
    return n;
}

// The own column of the strip, drawn again and shown in the rows changed.
void RepaintOwnColumn(TimeTrackerRecord *r, HDC dc)
{
    LONG top, bottom;
    TrackerOwnRows(r, &top, &bottom);
    const COLORREF colour = TrackerOwnBarColour(r);
    LONG rows[2][2];
    const LONG height = r->rcScale.bottom - r->rcScale.top + 1;
    const int n =
        ChangedRows(r->ownShownTop, r->ownShownBottom, r->ownShownColour, top, bottom, colour, height, rows);
    r->ownBarColour = colour;
    const LONG x = static_cast<LONG>(r->laneCount * kLaneWidth);
    for (int i = 0; i < n; ++i) {
        IntersectClipRect(r->dcLanes, x, rows[i][0], x + static_cast<LONG>(kLaneWidth), rows[i][1]);
        TrackerRenderOwnStrip(r);
        SelectClipRgn(r->dcLanes, nullptr);
    }
    r->ownShownTop = top;
    r->ownShownBottom = bottom;
    r->ownShownColour = colour;
    for (int i = 0; i < n; ++i)
        BitBlt(dc, x, r->rcScale.top + rows[i][0], static_cast<int>(kLaneWidth), rows[i][1] - rows[i][0], r->dcLanes,
               x, rows[i][0], SRCCOPY);
}

}  // namespace

// A label's text is centred on its line and drawn unclipped, so its glyphs
// may stand out of the label: its rows are taken a label's height wider
// each way, the frame's width across.
RECT TrackerLabelReach(const TimeTrackerRecord *r, const RECT &label)
{
    const LONG line = static_cast<LONG>(r->labelHeight);
    return RECT{r->rcFrame.left, label.top - line, r->rcFrame.right, label.bottom + line};
}

// A clock's dial and hands, a clock's size wider each way.
RECT TrackerClockReach(const RECT &clock)
{
    RECT wide = clock;
    InflateRect(&wide, clock.right - clock.left, clock.bottom - clock.top);
    return wide;
}

void TrackerTakeFigures(const TimeTrackerRecord *r, TrackerFigures *f)
{
    f->labels[0] = r->rcStartLabel;
    f->labels[1] = r->rcEndLabel;
    f->labels[2] = r->rcDurationLabel;
    f->clocks[0] = r->rcStartClock;
    f->clocks[1] = r->rcEndClock;
    f->start = r->start;
    f->end = r->end;
    f->durationHours = r->durationHours;
    f->durationMinutes = r->durationMinutes;
    // As the bar is painted: from below the start label to above the end
    // label, within the scale.
    LONG top = r->rcScale.top > r->rcStartLabel.bottom ? r->rcScale.top : r->rcStartLabel.bottom;
    LONG bottom = r->rcScale.bottom < r->rcEndLabel.top ? r->rcScale.bottom : r->rcEndLabel.top;
    if (bottom <= top || !r->barBrush)
        top = bottom = 0;
    f->barTop = top;
    f->barBottom = bottom;
}

void TrackerOwnRows(const TimeTrackerRecord *r, LONG *top, LONG *bottom)
{
    const LONG height = r->rcScale.bottom - r->rcScale.top + 1;
    *top = r->startY - r->rcScale.top;
    *bottom = r->endY - r->rcScale.top + 1;
    if (*top < 1)
        *top = 1;
    if (*bottom > height - 2)
        *bottom = height - 2;
}

bool TrackerRepaintChanged(TimeTrackerRecord *r, HDC dc)
{
    if (!r->figuresShown || !r->dcWork || !r->dcLanes || !dc)
        return false;
    TrackerFigures now;
    TrackerTakeFigures(r, &now);
    Parts parts = {};
    ChangedParts(r, r->shown, now, &parts);
    // The work surface's clip is in its device units, from the frame's corner.
    struct {
        RGNDATAHEADER header;
        RECT rects[16];
    } data = {};
    RECT bounds = {};
    for (int i = 0; i < parts.count; ++i) {
        const RECT &p = parts.rects[i];
        UnionRect(&bounds, &bounds, &p);
        data.rects[i] = RECT{p.left - r->rcFrame.left, p.top - r->rcFrame.top, p.right - r->rcFrame.left,
                             p.bottom - r->rcFrame.top};
    }
    if (parts.count) {
        data.header = RGNDATAHEADER{sizeof(RGNDATAHEADER), RDH_RECTANGLES, static_cast<DWORD>(parts.count),
                                    static_cast<DWORD>(parts.count * sizeof(RECT)), bounds};
        OffsetRect(&data.header.rcBound, -r->rcFrame.left, -r->rcFrame.top);
        HRGN clip = ExtCreateRegion(nullptr, sizeof data.header + data.header.nRgnSize,
                                    reinterpret_cast<const RGNDATA *>(&data));
        if (!clip)
            return false;
        SelectClipRgn(r->dcWork, clip);
        DeleteObject(clip);
        TrackerComposeWork(r, bounds.top, bounds.bottom, parts.rects, parts.count);
        SelectClipRgn(r->dcWork, nullptr);
        // The window shows the work surface everywhere but where it changed:
        // one copy of the changed parts' bounds shows them all.
        BitBlt(dc, bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top, r->dcWork,
               bounds.left, bounds.top, SRCCOPY);
    }
    RepaintOwnColumn(r, dc);
    r->shown = now;
    return true;
}

#include "search/spanmovement.h"

#include <QStyle>

#include <utility>

Span boundSpan(const Span &span, int minimum, int maximum)
{
    Span bounded{qBound(minimum, span.lower, maximum), qBound(minimum, span.upper, maximum)};
    if (bounded.lower > bounded.upper)
        std::swap(bounded.lower, bounded.upper);
    return bounded;
}

SpanMove moveHandle(const Span &span, SpanHandle handle, int value, int minimum, int maximum, int step,
                    HandleMovementMode mode)
{
    const bool isLower = handle == SpanHandle::Lower;
    const int other = isLower ? span.upper : span.lower;
    const int distance = mode == HandleMovementMode::NoOverlapping ? step : 0;
    if (mode != HandleMovementMode::FreeMovement)
        value = isLower ? qMin(value, other - distance) : qMax(value, other + distance);
    value = qBound(minimum, value, maximum);
    const bool crossed = isLower ? value > other : value < other;
    if (crossed)
        handle = isLower ? SpanHandle::Upper : SpanHandle::Lower;
    return {boundSpan({value, other}, minimum, maximum), handle};
}

int valueAtPixel(const SpanTrack &track, int pixel)
{
    const int room = track.length - track.handle;
    if (room <= 0)
        return track.minimum;
    return QStyle::sliderValueFromPosition(track.minimum, track.maximum, pixel - track.start, room,
                                           track.upsideDown);
}

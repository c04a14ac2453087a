#pragma once

#include <QRect>

/// What happens when one handle of a span is moved against the other.
enum class HandleMovementMode {
    FreeMovement,  ///< they change places
    NoCrossing,    ///< it stops at the other
    NoOverlapping, ///< it stops one step before the other
};

enum class SpanHandle { None, Lower, Upper };

/// Two values, lower <= upper in all that the functions here return.
struct Span
{
    int lower = 0;
    int upper = 0;

    int value(SpanHandle handle) const { return handle == SpanHandle::Upper ? upper : lower; }
    bool operator==(const Span &other) const { return lower == other.lower && upper == other.upper; }
    bool operator!=(const Span &other) const { return !(*this == other); }
};

/// The span within a range, its ends swapped if they stand the wrong way round.
Span boundSpan(const Span &span, int minimum, int maximum);

struct SpanMove
{
    Span span;
    SpanHandle handle; ///< the one in hand afterwards: the other one when they have changed places
};

/// What a user gets who moves a handle to a value. step: the distance that NoOverlapping keeps.
SpanMove moveHandle(const Span &span, SpanHandle handle, int value, int minimum, int maximum, int step,
                    HandleMovementMode mode);

/// Where the handles of a slider run, along its one axis, in pixels.
struct SpanTrack
{
    int start = 0;  ///< first pixel of the groove
    int length = 0; ///< of the groove
    int handle = 0; ///< length of a handle
    int minimum = 0;
    int maximum = 0;
    bool upsideDown = false; ///< the maximum is at the start
};

/// The value of a handle whose first pixel is put there; the nearest end for a place beside the groove. A
/// range or groove without room gives its minimum.
int valueAtPixel(const SpanTrack &track, int pixel);

#pragma once

#include "search/qxtspanslider.h"

#include <QStyleOptionSlider>

class QStylePainter;

/// What a QxtSpanSlider knows and draws; only the slider includes it.
class QxtSpanSliderPrivate final : public QObject
{
    Q_OBJECT

public:
    explicit QxtSpanSliderPrivate(QxtSpanSlider *slider);

    QStyleOptionSlider option(SpanHandle handle) const;
    QRect handleRect(SpanHandle handle) const;
    /// Along the slider's axis.
    int pick(const QPoint &point) const;
    int pixelPosToRangeValue(int pixel) const;
    /// Takes the handle in hand if it lies under the point.
    bool pressHandle(SpanHandle handle, const QPoint &point);
    /// Moves a handle as a user does, by the movement mode.
    void movePosition(SpanHandle handle, int value);
    /// Moves the main control by a step, or to an end of the range.
    void triggerAction(QAbstractSlider::SliderAction action);
    /// The other handle is in hand from now on.
    void swapControls();
    void setPositions(const Span &positions);
    void drawSpan(QStylePainter &painter) const;
    void drawHandle(QStylePainter &painter, SpanHandle handle) const;

    Span values{0, 99};
    Span positions{0, 99};
    SpanHandle pressed = SpanHandle::None;
    SpanHandle lastPressed = SpanHandle::None; ///< drawn on top
    SpanHandle mainControl =
        SpanHandle::Lower; ///< the one that keys move: pressed last, or none yet the lower
    int pressOffset = 0;   ///< from the handle's first pixel to the pointer
    HandleMovementMode movement = HandleMovementMode::FreeMovement;

public slots:
    void updateRange(int minimum, int maximum);

private:
    QxtSpanSlider *const q;
};

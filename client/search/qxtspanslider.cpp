#include "search/qxtspanslider.h"

#include "search/qxtspanslider_p.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStylePainter>

QxtSpanSliderPrivate::QxtSpanSliderPrivate(QxtSpanSlider *slider) : q(slider) {}

QStyleOptionSlider QxtSpanSliderPrivate::option(SpanHandle handle) const
{
    QStyleOptionSlider option;
    q->initStyleOption(&option);
    option.sliderPosition = positions.value(handle);
    option.sliderValue = values.value(handle);
    option.subControls = QStyle::SC_SliderHandle;
    option.activeSubControls = QStyle::SC_None;
    if (handle != SpanHandle::None && pressed == handle) {
        option.activeSubControls = QStyle::SC_SliderHandle;
        option.state |= QStyle::State_Sunken;
    }
    if (mainControl != handle)
        option.state &= ~QStyle::State_HasFocus;
    return option;
}

QRect QxtSpanSliderPrivate::handleRect(SpanHandle handle) const
{
    const QStyleOptionSlider handleOption = option(handle);
    return q->style()->subControlRect(QStyle::CC_Slider, &handleOption, QStyle::SC_SliderHandle, q);
}

int QxtSpanSliderPrivate::pick(const QPoint &point) const
{
    return q->orientation() == Qt::Horizontal ? point.x() : point.y();
}

int QxtSpanSliderPrivate::pixelPosToRangeValue(int pixel) const
{
    const QStyleOptionSlider handleOption = option(mainControl);
    const QRect groove =
        q->style()->subControlRect(QStyle::CC_Slider, &handleOption, QStyle::SC_SliderGroove, q);
    const QSize handle = handleRect(mainControl).size();
    const bool horizontal = q->orientation() == Qt::Horizontal;
    SpanTrack track;
    track.start = pick(groove.topLeft());
    track.length = horizontal ? groove.width() : groove.height();
    track.handle = horizontal ? handle.width() : handle.height();
    track.minimum = q->minimum();
    track.maximum = q->maximum();
    track.upsideDown = handleOption.upsideDown;
    return valueAtPixel(track, pixel);
}

bool QxtSpanSliderPrivate::pressHandle(SpanHandle handle, const QPoint &point)
{
    const QStyleOptionSlider handleOption = option(handle);
    if (q->style()->hitTestComplexControl(QStyle::CC_Slider, &handleOption, point, q) !=
        QStyle::SC_SliderHandle)
        return false;
    pressed = lastPressed = mainControl = handle;
    pressOffset = pick(point - handleRect(handle).topLeft());
    setPositions(positions); // the slider's own value is that of this handle now
    return true;
}

void QxtSpanSliderPrivate::movePosition(SpanHandle handle, int value)
{
    const SpanMove move =
        moveHandle(positions, handle, value, q->minimum(), q->maximum(), q->singleStep(), movement);
    if (move.handle != handle)
        swapControls();
    setPositions(move.span);
    if (q->hasTracking() || pressed == SpanHandle::None)
        q->setSpan(positions.lower, positions.upper);
}

void QxtSpanSliderPrivate::triggerAction(QAbstractSlider::SliderAction action)
{
    const int position = positions.value(mainControl);
    int target = position;
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
        target += q->singleStep();
        break;
    case QAbstractSlider::SliderSingleStepSub:
        target -= q->singleStep();
        break;
    case QAbstractSlider::SliderPageStepAdd:
        target += q->pageStep();
        break;
    case QAbstractSlider::SliderPageStepSub:
        target -= q->pageStep();
        break;
    case QAbstractSlider::SliderToMinimum:
        target = q->minimum();
        break;
    case QAbstractSlider::SliderToMaximum:
        target = q->maximum();
        break;
    default:
        return;
    }
    movePosition(mainControl, target);
}

void QxtSpanSliderPrivate::swapControls()
{
    const auto other = [](SpanHandle handle) {
        return handle == SpanHandle::Lower ? SpanHandle::Upper : SpanHandle::Lower;
    };
    mainControl = other(mainControl);
    if (pressed != SpanHandle::None)
        pressed = other(pressed);
    if (lastPressed != SpanHandle::None)
        lastPressed = other(lastPressed);
}

void QxtSpanSliderPrivate::setPositions(const Span &span)
{
    positions = span;
    q->setSliderPosition(positions.value(mainControl));
    q->update();
}

void QxtSpanSliderPrivate::updateRange(int minimum, int maximum)
{
    Q_UNUSED(minimum)
    Q_UNUSED(maximum)
    q->setSpan(values.lower, values.upper);
}

void QxtSpanSliderPrivate::drawSpan(QStylePainter &painter) const
{
    constexpr int thickness = 4;
    const QPoint first = handleRect(SpanHandle::Lower).center();
    const QPoint last = handleRect(SpanHandle::Upper).center();
    QRect span = QRect(first, last).normalized();
    if (q->orientation() == Qt::Horizontal)
        span = QRect(span.left(), span.center().y() - thickness / 2, span.width(), thickness);
    else
        span = QRect(span.center().x() - thickness / 2, span.top(), thickness, span.height());
    painter.fillRect(span, q->palette().color(q->isEnabled() ? QPalette::Highlight : QPalette::Mid));
}

void QxtSpanSliderPrivate::drawHandle(QStylePainter &painter, SpanHandle handle) const
{
    painter.drawComplexControl(QStyle::CC_Slider, option(handle));
}

QxtSpanSlider::QxtSpanSlider(QWidget *parent) : QxtSpanSlider(Qt::Horizontal, parent) {}

QxtSpanSlider::QxtSpanSlider(Qt::Orientation orientation, QWidget *parent)
    : QSlider(orientation, parent),
      d(std::make_unique<QxtSpanSliderPrivate>(this))
{
    connect(this, SIGNAL(rangeChanged(int, int)), d.get(), SLOT(updateRange(int, int)));
}

QxtSpanSlider::~QxtSpanSlider() = default;

HandleMovementMode QxtSpanSlider::handleMovementMode() const
{
    return d->movement;
}

void QxtSpanSlider::setHandleMovementMode(HandleMovementMode mode)
{
    d->movement = mode;
}

int QxtSpanSlider::lowerValue() const
{
    return d->values.lower;
}

int QxtSpanSlider::upperValue() const
{
    return d->values.upper;
}

int QxtSpanSlider::lowerPosition() const
{
    return d->positions.lower;
}

int QxtSpanSlider::upperPosition() const
{
    return d->positions.upper;
}

void QxtSpanSlider::setLowerValue(int lower)
{
    setSpan(lower, d->values.upper);
}

void QxtSpanSlider::setUpperValue(int upper)
{
    setSpan(d->values.lower, upper);
}

void QxtSpanSlider::setSpan(int lower, int upper)
{
    const Span former = d->values;
    const Span span = boundSpan({lower, upper}, minimum(), maximum());
    d->values = span;
    d->setPositions(span);
    if (span.lower != former.lower)
        emit lowerValueChanged(span.lower);
    if (span.upper != former.upper)
        emit upperValueChanged(span.upper);
    if (span != former)
        emit spanChanged(span.lower, span.upper);
}

void QxtSpanSlider::setLowerPosition(int lower)
{
    d->setPositions(boundSpan({lower, d->positions.upper}, minimum(), maximum()));
    if (hasTracking())
        setSpan(d->positions.lower, d->positions.upper);
}

void QxtSpanSlider::setUpperPosition(int upper)
{
    d->setPositions(boundSpan({d->positions.lower, upper}, minimum(), maximum()));
    if (hasTracking())
        setSpan(d->positions.lower, d->positions.upper);
}

void QxtSpanSlider::mousePressEvent(QMouseEvent *event)
{
    const bool held = event->button() == Qt::LeftButton && (d->pressHandle(SpanHandle::Upper, event->pos()) ||
                                                            d->pressHandle(SpanHandle::Lower, event->pos()));
    event->setAccepted(held);
}

void QxtSpanSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (d->pressed == SpanHandle::None) {
        event->ignore();
        return;
    }
    d->movePosition(d->pressed, d->pixelPosToRangeValue(d->pick(event->pos()) - d->pressOffset));
}

void QxtSpanSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (d->pressed == SpanHandle::None || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    d->pressed = SpanHandle::None;
    setSpan(d->positions.lower, d->positions.upper);
}

void QxtSpanSlider::keyPressEvent(QKeyEvent *event)
{
    const bool controlsAdd = !invertedControls();
    const bool rightAdds = isRightToLeft() != controlsAdd;
    const auto step = [](bool add) { return add ? SliderSingleStepAdd : SliderSingleStepSub; };
    const auto page = [](bool add) { return add ? SliderPageStepAdd : SliderPageStepSub; };
    switch (event->key()) {
    case Qt::Key_Left:
        d->triggerAction(step(!rightAdds));
        break;
    case Qt::Key_Right:
        d->triggerAction(step(rightAdds));
        break;
    case Qt::Key_Up:
        d->triggerAction(step(controlsAdd));
        break;
    case Qt::Key_Down:
        d->triggerAction(step(!controlsAdd));
        break;
    case Qt::Key_PageUp:
        d->triggerAction(page(controlsAdd));
        break;
    case Qt::Key_PageDown:
        d->triggerAction(page(!controlsAdd));
        break;
    case Qt::Key_Home:
        d->triggerAction(SliderToMinimum);
        break;
    case Qt::Key_End:
        d->triggerAction(SliderToMaximum);
        break;
    default:
        event->ignore();
    }
}

void QxtSpanSlider::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void QxtSpanSlider::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionSlider groove = d->option(SpanHandle::None);
    groove.subControls = QStyle::SC_SliderGroove;
    if (tickPosition() != NoTicks)
        groove.subControls |= QStyle::SC_SliderTickmarks;
    groove.sliderPosition = minimum(); // styles colour the groove from its start up to the handle
    painter.drawComplexControl(QStyle::CC_Slider, groove);
    d->drawSpan(painter);
    const SpanHandle top = d->lastPressed == SpanHandle::Lower ? SpanHandle::Lower : SpanHandle::Upper;
    d->drawHandle(painter, top == SpanHandle::Lower ? SpanHandle::Upper : SpanHandle::Lower);
    d->drawHandle(painter, top);
}

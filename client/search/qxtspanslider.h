#pragma once

#include "search/spanmovement.h"

#include <QSlider>

#include <memory>

class QxtSpanSliderPrivate;

/// A slider with two handles, for a span within its range. The slider's own value follows the handle that
/// keys move, so that assistive technology reads it.
class QxtSpanSlider final : public QSlider
{
    Q_OBJECT

public:
    explicit QxtSpanSlider(QWidget *parent = nullptr);
    explicit QxtSpanSlider(Qt::Orientation orientation, QWidget *parent = nullptr);
    ~QxtSpanSlider() override;

    /// FreeMovement at first.
    HandleMovementMode handleMovementMode() const;
    void setHandleMovementMode(HandleMovementMode mode);

    int lowerValue() const;
    int upperValue() const;
    /// Where the handles are drawn; without tracking they run ahead of the values until the handle is let go.
    int lowerPosition() const;
    int upperPosition() const;

public slots:
    void setLowerValue(int lower);
    void setUpperValue(int upper);
    /// Brings both within the range, and into order.
    void setSpan(int lower, int upper);
    void setLowerPosition(int lower);
    void setUpperPosition(int upper);

signals:
    void lowerValueChanged(int lower);
    void upperValueChanged(int upper);
    /// After the other two, once for each change.
    void spanChanged(int lower, int upper);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    /// Leaves the wheel to the parent: scrolling past must not change the span.
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    friend class QxtSpanSliderPrivate;
    const std::unique_ptr<QxtSpanSliderPrivate> d;
};

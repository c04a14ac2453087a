#include "support/kelvatest.h"

#include "search/qxtspanslider.h"

#include <QSignalSpy>
#include <QStyleOptionSlider>

using Mode = HandleMovementMode;
Q_DECLARE_METATYPE(HandleMovementMode)

/// Where the style draws a handle with this value, the handle's centre.
static QPoint placeOf(const QSlider &slider, int value)
{
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.orientation = slider.orientation();
    if (option.orientation == Qt::Horizontal)
        option.state |= QStyle::State_Horizontal;
    option.upsideDown = slider.orientation() == Qt::Horizontal ? slider.isRightToLeft() : true;
    option.direction = Qt::LeftToRight; // upsideDown says it
    option.minimum = slider.minimum();
    option.maximum = slider.maximum();
    option.sliderPosition = value;
    return slider.style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider)
        .center();
}

/// Moves the mouse with the button held; QTest::mouseMove() would hold none.
static void dragTo(QWidget &widget, const QPoint &place)
{
    QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &move);
}

static QString spanText(const QxtSpanSlider &slider)
{
    return QString("%1-%2").arg(slider.lowerValue()).arg(slider.upperValue());
}

class TestQxtSpanSlider : public QObject
{
    Q_OBJECT

    static void showSlider(QxtSpanSlider &slider)
    {
        slider.resize(slider.orientation() == Qt::Horizontal ? QSize(450, 30) : QSize(30, 450));
        slider.setRange(0, 100);
        slider.setSpan(20, 60);
        slider.show();
    }

private slots:
    void places()
    {
        const std::tuple<SpanTrack, int, int> table[] = {
            {{10, 220, 20, 0, 100, false}, 10, 0},
            {{10, 220, 20, 0, 100, false}, 210, 100},
            {{10, 220, 20, 0, 100, false}, 60, 25},
            {{10, 220, 20, 0, 100, false}, -500, 0},
            {{10, 220, 20, 0, 100, false}, 5000, 100},
            {{10, 220, 20, 0, 100, true}, 60, 75}, // from right to left
            {{0, 220, 20, -1000, 3000000, false}, 100, 1499500},
            {{10, 220, 20, 7, 7, false}, 60, 7},  // one value
            {{10, 15, 20, 3, 100, false}, 60, 3}, // narrower than a handle
        };
        for (const auto &[track, pixel, value] : table)
            QCOMPARE(valueAtPixel(track, pixel), value);
    }

    void moves()
    {
        // Of 20-60 within 0 and 100 with step 5; L or U is in hand afterwards.
        const std::tuple<Mode, SpanHandle, int, QString> table[] = {
            {Mode::FreeMovement, SpanHandle::Lower, 30, "30-60L"},
            {Mode::NoCrossing, SpanHandle::Upper, 500, "20-100U"},
            {Mode::NoOverlapping, SpanHandle::Lower, -500, "0-60L"},
            {Mode::FreeMovement, SpanHandle::Lower, 60, "60-60L"},
            {Mode::FreeMovement, SpanHandle::Lower, 75, "60-75U"},
            {Mode::FreeMovement, SpanHandle::Upper, 5, "5-20L"},
            {Mode::NoCrossing, SpanHandle::Lower, 75, "60-60L"},
            {Mode::NoCrossing, SpanHandle::Upper, 5, "20-20U"},
            {Mode::NoOverlapping, SpanHandle::Lower, 75, "55-60L"},
            {Mode::NoOverlapping, SpanHandle::Upper, 5, "20-25U"},
        };
        for (const auto &[mode, handle, value, outcome] : table) {
            const SpanMove move = moveHandle({20, 60}, handle, value, 0, 100, 5, mode);
            QCOMPARE(QString("%1-%2").arg(move.span.lower).arg(move.span.upper) +
                         (move.handle == SpanHandle::Lower ? "L" : "U"),
                     outcome);
        }
        for (const SpanHandle handle : {SpanHandle::Lower, SpanHandle::Upper}) // no room at all
            QVERIFY(moveHandle({7, 7}, handle, 9, 7, 7, 1, Mode::NoOverlapping).span == (Span{7, 7}));
    }

    void theMouseMovesHandles_data()
    {
        kelvatest::columns<HandleMovementMode, int, int, QString>("mode", "from", "to", "span");
        kelvatest::row("lower across", Mode::FreeMovement, 20, 90, "60-90");
        kelvatest::row("upper short of lower", Mode::NoOverlapping, 60, 0, "20-21");
        kelvatest::row("beside the handles", Mode::FreeMovement, 40, 90, "20-60");
    }

    void theMouseMovesHandles()
    {
        QFETCH(HandleMovementMode, mode);
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QString, span);
        const auto drag = [&](QxtSpanSlider &slider) {
            showSlider(slider);
            slider.setHandleMovementMode(mode);
            // Held off its centre, a handle must not jump there.
            const QPoint hold(3, 3);
            QTest::mousePress(&slider, Qt::LeftButton, {}, placeOf(slider, from) + hold);
            dragTo(slider, placeOf(slider, from) + hold);
            const QString held = spanText(slider);
            dragTo(slider, placeOf(slider, to) + hold);
            const QString dragged = spanText(slider);
            QTest::mouseRelease(&slider, Qt::LeftButton, {}, placeOf(slider, to) + hold);
            dragTo(slider, placeOf(slider, 50));
            return held + ' ' + dragged + ' ' + spanText(slider);
        };
        const QString expected = "20-60 " + span + ' ' + span;
        QxtSpanSlider horizontal, mirrored;
        mirrored.setLayoutDirection(Qt::RightToLeft);
        QxtSpanSlider vertical(Qt::Vertical);
        for (QxtSpanSlider *slider : {&horizontal, &mirrored, &vertical})
            QCOMPARE(drag(*slider), expected);
    }

    void withoutTrackingTheValueComesAtTheEnd()
    {
        QxtSpanSlider slider;
        showSlider(slider);
        slider.setTracking(false);
        QSignalSpy changes(&slider, SIGNAL(spanChanged(int, int)));
        QTest::mousePress(&slider, Qt::LeftButton, {}, placeOf(slider, 60));
        dragTo(slider, placeOf(slider, 80));
        QCOMPARE(spanText(slider) + QString::number(slider.upperPosition()), QString("20-6080"));
        QCOMPARE(changes.size(), 0);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, placeOf(slider, 80));
        QCOMPARE(spanText(slider), QString("20-80"));
        QCOMPARE(changes.size(), 1);
    }

    void keysMoveTheHandlePressedLast()
    {
        // -1: no handle was pressed
        const std::tuple<Mode, int, QList<int>, QString> table[] = {
            {Mode::FreeMovement, -1, {Qt::Key_Right}, "21-60"},
            {Mode::FreeMovement, 20, {Qt::Key_Left}, "19-60"},
            {Mode::FreeMovement, 60, {Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_Tab}, "20-61"},
            {Mode::FreeMovement, 60, {Qt::Key_PageUp}, "20-70"},
            {Mode::FreeMovement, 60, {Qt::Key_Home, Qt::Key_Right}, "1-20"}, // on as the lower one
            {Mode::NoCrossing, 20, {Qt::Key_End}, "60-60"},
        };
        for (const auto &[mode, press, keys, span] : table) {
            QxtSpanSlider slider;
            showSlider(slider);
            slider.setHandleMovementMode(mode);
            if (press >= 0)
                QTest::mouseClick(&slider, Qt::LeftButton, {}, placeOf(slider, press));
            for (const int key : keys)
                QTest::keyClick(&slider, Qt::Key(key));
            QCOMPARE(spanText(slider), span);
        }
        QxtSpanSlider mirrored;
        mirrored.setLayoutDirection(Qt::RightToLeft);
        showSlider(mirrored);
        QTest::keyClick(&mirrored, Qt::Key_Left);
        QTest::keyClick(&mirrored, Qt::Key_Up);
        QCOMPARE(spanText(mirrored), QString("22-60"));
    }

    void signalsTellWhatChanged()
    {
        QxtSpanSlider slider;
        showSlider(slider);
        QStringList told;
        const auto tell = [&](const char *what) {
            return [&told, what](int v) { told << what + QString::number(v); };
        };
        connect(&slider, &QxtSpanSlider::lowerValueChanged, this, tell("l"));
        connect(&slider, &QxtSpanSlider::upperValueChanged, this, tell("u"));
        connect(&slider, &QxtSpanSlider::spanChanged, this, [&] { told << 's' + spanText(slider); });
        slider.setSpan(20, 60);
        slider.setSpan(70, 20); // the wrong way round
        slider.setLowerPosition(10);
        slider.setRange(0, 50);
        slider.setRange(30, 30);
        QCOMPARE(told.join(' '), QString("u70 s20-70 l10 s10-70 u50 s10-50 l30 u30 s30-30"));
        slider.repaint(); // a range of one value
    }

    void theSpanIsColouredBetweenTheHandles()
    {
        QxtSpanSlider slider;
        showSlider(slider);
        const QRgb highlight = slider.palette().color(QPalette::Highlight).rgb();
        const auto coloured = [&](int value) {
            const QPoint place = placeOf(slider, value);
            return slider.grab().toImage().pixel(place) == highlight;
        };
        QVERIFY(coloured(40) && !coloured(5) && !coloured(90));
        slider.setSpan(0, 30);
        QVERIFY(coloured(10) && !coloured(40));
        slider.setDisabled(true);
        QVERIFY(!coloured(10));
    }
};

KELVA_TEST(TestQxtSpanSlider)
#include "testqxtspanslider.moc"

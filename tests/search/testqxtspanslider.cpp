#include "support/kelvatest.h"

#include "search/qxtspanslider.h"

#include <QSignalSpy>
#include <QStyleOptionSlider>

using Mode = HandleMovementMode;
Q_DECLARE_METATYPE(HandleMovementMode)
Q_DECLARE_METATYPE(SpanTrack)

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
    void places_data()
    {
        QTest::addColumn<SpanTrack>("track");
        QTest::addColumn<int>("pixel");
        QTest::addColumn<int>("value");
        const SpanTrack plain{10, 220, 20, 0, 100, false};
        kelvatest::row("the start", plain, 10, 0);
        kelvatest::row("the end", plain, 210, 100);
        kelvatest::row("in between", plain, 60, 25);
        kelvatest::row("left of the groove", plain, -500, 0);
        kelvatest::row("right of the groove", plain, 5000, 100);
        kelvatest::row("from right to left", SpanTrack{10, 220, 20, 0, 100, true}, 60, 75);
        kelvatest::row("more values than pixels", SpanTrack{0, 220, 20, -1000, 3000000, false}, 100, 1499500);
        kelvatest::row("a range of one value", SpanTrack{10, 220, 20, 7, 7, false}, 60, 7);
        kelvatest::row("narrower than a handle", SpanTrack{10, 15, 20, 3, 100, false}, 60, 3);
        kelvatest::row("no groove at all", SpanTrack{0, 0, 0, 3, 100, true}, 60, 3);
    }

    void places()
    {
        QFETCH(SpanTrack, track);
        QFETCH(int, pixel);
        QTEST(valueAtPixel(track, pixel), "value");
    }

    void moves_data()
    {
        QTest::addColumn<HandleMovementMode>("mode");
        QTest::addColumn<int>("handle"); // -1 lower, 1 upper
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("outcome"); // of 20-60 within 0 and 100 with step 5; L or U is in hand
        kelvatest::row("lower within the span", Mode::FreeMovement, -1, 30, "30-60L");
        kelvatest::row("upper beyond the range", Mode::NoCrossing, 1, 500, "20-100U");
        kelvatest::row("lower beyond the range", Mode::NoOverlapping, -1, -500, "0-60L");
        kelvatest::row("lower onto the other", Mode::FreeMovement, -1, 60, "60-60L");
        kelvatest::row("lower across changes places", Mode::FreeMovement, -1, 75, "60-75U");
        kelvatest::row("upper across changes places", Mode::FreeMovement, 1, 5, "5-20L");
        kelvatest::row("lower stops at the other", Mode::NoCrossing, -1, 75, "60-60L");
        kelvatest::row("upper stops at the other", Mode::NoCrossing, 1, 5, "20-20U");
        kelvatest::row("lower stops a step before", Mode::NoOverlapping, -1, 75, "55-60L");
        kelvatest::row("upper stops a step before", Mode::NoOverlapping, 1, 5, "20-25U");
    }

    void moves()
    {
        QFETCH(HandleMovementMode, mode);
        QFETCH(int, handle);
        QFETCH(int, value);
        const SpanMove move =
            moveHandle({20, 60}, handle < 0 ? SpanHandle::Lower : SpanHandle::Upper, value, 0, 100, 5, mode);
        const QString hand = move.handle == SpanHandle::Lower ? "L" : "U";
        QTEST(QString("%1-%2").arg(move.span.lower).arg(move.span.upper) + hand, "outcome");
    }

    void aRangeWithoutRoomKeepsTheHandlesTogether()
    {
        for (const SpanHandle handle : {SpanHandle::Lower, SpanHandle::Upper})
            QVERIFY(moveHandle({7, 7}, handle, 9, 7, 7, 1, Mode::NoOverlapping).span == (Span{7, 7}));
    }

    void theMouseMovesHandles_data()
    {
        QTest::addColumn<HandleMovementMode>("mode");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("span");
        kelvatest::row("lower", Mode::FreeMovement, 20, 35, "35-60");
        kelvatest::row("upper", Mode::FreeMovement, 60, 100, "20-100");
        kelvatest::row("lower across", Mode::FreeMovement, 20, 90, "60-90");
        kelvatest::row("upper across", Mode::FreeMovement, 60, 0, "0-20");
        kelvatest::row("lower against upper", Mode::NoCrossing, 20, 90, "60-60");
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
        QxtSpanSlider horizontal;
        QCOMPARE(drag(horizontal), expected);
        QxtSpanSlider vertical(Qt::Vertical);
        QCOMPARE(drag(vertical), expected);
        QxtSpanSlider mirrored;
        mirrored.setLayoutDirection(Qt::RightToLeft);
        QCOMPARE(drag(mirrored), expected);
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

    void keysMoveTheHandlePressedLast_data()
    {
        QTest::addColumn<HandleMovementMode>("mode");
        QTest::addColumn<int>("press"); // -1: no handle was pressed
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("span");
        const QList<int> right{Qt::Key_Right}, left{Qt::Key_Left}, end{Qt::Key_End}, home{Qt::Key_Home};
        kelvatest::row("lower at first", Mode::FreeMovement, -1, right, "21-60");
        kelvatest::row("lower", Mode::FreeMovement, 20, left, "19-60");
        kelvatest::row("upper", Mode::FreeMovement, 60, right, "20-61");
        kelvatest::row("up and down", Mode::FreeMovement, 60,
                       QList<int>{Qt::Key_Up, Qt::Key_Up, Qt::Key_Down}, "20-61");
        kelvatest::row("a page", Mode::FreeMovement, 60, QList<int>{Qt::Key_PageUp}, "20-70");
        kelvatest::row("upper home, and on as the lower", Mode::FreeMovement, 60,
                       QList<int>{Qt::Key_Home, Qt::Key_Right}, "1-20");
        kelvatest::row("lower to the end stops", Mode::NoCrossing, 20, end, "60-60");
        kelvatest::row("upper home stops a step before", Mode::NoOverlapping, 60, home, "20-21");
        kelvatest::row("a key of somebody else", Mode::FreeMovement, 60, QList<int>{Qt::Key_Tab}, "20-60");
    }

    void keysMoveTheHandlePressedLast()
    {
        QFETCH(HandleMovementMode, mode);
        QFETCH(int, press);
        QFETCH(QList<int>, keys);
        QxtSpanSlider slider;
        showSlider(slider);
        slider.setHandleMovementMode(mode);
        if (press >= 0)
            QTest::mouseClick(&slider, Qt::LeftButton, {}, placeOf(slider, press));
        for (const int key : qAsConst(keys))
            QTest::keyClick(&slider, Qt::Key(key));
        QTEST(spanText(slider), "span");
    }

    void aMirroredSliderMirrorsItsKeys()
    {
        QxtSpanSlider slider;
        slider.setLayoutDirection(Qt::RightToLeft);
        showSlider(slider);
        QTest::keyClick(&slider, Qt::Key_Left);
        QTest::keyClick(&slider, Qt::Key_Up);
        QCOMPARE(spanText(slider), QString("22-60"));
    }

    void signalsTellWhatChanged()
    {
        QxtSpanSlider slider;
        showSlider(slider);
        QStringList told;
        connect(&slider, &QxtSpanSlider::lowerValueChanged, this,
                [&](int v) { told << QString("l%1").arg(v); });
        connect(&slider, &QxtSpanSlider::upperValueChanged, this,
                [&](int v) { told << QString("u%1").arg(v); });
        connect(&slider, &QxtSpanSlider::spanChanged, this,
                [&](int l, int u) { told << QString("s%1-%2").arg(l).arg(u); });
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

#pragma once

#include <QObject>
#include <QRect>

/// Keeps the program's windows within their screen: whatever is about to be shown larger than that, or beside
/// it, is made smaller and moved in. To be installed on the application.
class ScreenFitter final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Where a window of this geometry goes on a screen with so much room.
    static QRect fitted(const QRect &window, const QRect &room);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

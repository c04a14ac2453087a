#pragma once

#include <QCursor>
#include <QGuiApplication>
#include <QList>

/// The wait cursor, for as long as it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY(WaitCursor)
};

/// Takes the wait cursors of all operations within each other off while the user is asked something.
class SuspendedWaitCursor
{
public:
    SuspendedWaitCursor()
    {
        while (const QCursor *cursor = QGuiApplication::overrideCursor()) {
            m_working.prepend(*cursor);
            QGuiApplication::restoreOverrideCursor();
        }
    }
    ~SuspendedWaitCursor()
    {
        for (const QCursor &cursor : qAsConst(m_working))
            QGuiApplication::setOverrideCursor(cursor);
    }
    Q_DISABLE_COPY(SuspendedWaitCursor)

private:
    QList<QCursor> m_working;
};

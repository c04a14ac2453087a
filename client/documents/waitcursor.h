#pragma once

#include <QGuiApplication>

/// The wait cursor, for as long as it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY(WaitCursor)
};

/// Takes a wait cursor off while the user is asked something.
class SuspendedWaitCursor
{
public:
    SuspendedWaitCursor() : m_waited(QGuiApplication::overrideCursor() != nullptr)
    {
        if (m_waited)
            QGuiApplication::restoreOverrideCursor();
    }
    ~SuspendedWaitCursor()
    {
        if (m_waited)
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
    Q_DISABLE_COPY(SuspendedWaitCursor)

private:
    const bool m_waited;
};

#include "documents/refreshgate.h"

#include <utility>

void RefreshGate::enter(const CellEdit &edit)
{
    m_edits.enqueue(edit);
    schedule();
}

void RefreshGate::missRefresh(const QStringList &docIds, bool resetPlugins)
{
    if (!m_refresh)
        m_refresh = Refresh();
    if (!docIds.isEmpty())
        m_refresh->docIds = docIds;
    m_refresh->resetPlugins = m_refresh->resetPlugins || resetPlugins;
    schedule();
}

void RefreshGate::missReload()
{
    m_reload = true;
    schedule();
}

std::optional<CellEdit> RefreshGate::takeEdit()
{
    if (m_edits.isEmpty())
        return {};
    return m_edits.dequeue();
}

std::optional<RefreshGate::Refresh> RefreshGate::takeRefresh()
{
    return std::exchange(m_refresh, {});
}

bool RefreshGate::takeReload()
{
    if (!std::exchange(m_reload, false))
        return false;
    if (m_refresh && m_refresh->docIds.isEmpty())
        m_refresh.reset();
    return true;
}

void RefreshGate::release()
{
    --m_holds;
    schedule();
}

void RefreshGate::schedule()
{
    // While somebody holds the gate, the event loop would only spin; the last one to leave asks again.
    if (m_holds > 0 || m_scheduled || !isWaited())
        return;
    m_scheduled = true;
    QMetaObject::invokeMethod(this, "announce", Qt::QueuedConnection);
}

void RefreshGate::announce()
{
    m_scheduled = false;
    if (m_holds == 0 && isWaited())
        emit opened();
}

#include "extensions/qtfulltoolbarmanager.h"

#include "contract/boundedread.h"

#include <QAction>
#include <QBuffer>
#include <QMainWindow>
#include <QToolBar>
#include <QWidgetAction>

namespace {

constexpr int stateMarker = 255;
constexpr uchar defaultBarMarker = 254;
constexpr uchar customBarMarker = 253;
const char customNamePrefix[] = "_Custom_Toolbar_";

void writeActions(QDataStream &stream, const QList<QAction *> &actions)
{
    stream << actions.size();
    for (const QAction *action : actions)
        stream << (action ? action->objectName().toLocal8Bit() : QByteArray());
}

} // namespace

/// One bar as a state describes it.
struct QtFullToolBarManager::StoredBar
{
    bool custom = false;
    QString name;
    QString title;
    QList<QByteArray> actions;
};

QtFullToolBarManager::QtFullToolBarManager(QObject *parent) : QObject(parent) {}

void QtFullToolBarManager::addCategory(const QString &name)
{
    if (hasCategory(name))
        return;
    m_categoryOrder << name;
    m_categories.insert(name, {});
}

QString QtFullToolBarManager::actionCategory(QAction *action) const
{
    for (auto category = m_categories.cbegin(); category != m_categories.cend(); ++category)
        if (category->contains(action))
            return category.key();
    return QString();
}

void QtFullToolBarManager::addAction(QAction *action, const QString &category)
{
    if (!action || action->isSeparator() || !actionCategory(action).isEmpty())
        return;
    addCategory(category);
    m_categories[category].append(action);
}

void QtFullToolBarManager::removeAction(QAction *action)
{
    for (QList<QAction *> &list : m_categories)
        list.removeAll(action);
    for (QList<QAction *> &list : m_defaultLists)
        list.removeAll(action);
    const QList<QToolBar *> bars = m_lists.keys();
    for (QToolBar *bar : bars) {
        QList<QAction *> list = m_lists.value(bar);
        if (list.removeAll(action) > 0)
            setToolBar(bar, list);
    }
}

bool QtFullToolBarManager::isWidgetAction(QAction *action)
{
    return qobject_cast<QWidgetAction *>(action) != nullptr;
}

void QtFullToolBarManager::addDefaultToolBar(QToolBar *toolBar, const QString &category)
{
    if (!toolBar || m_lists.contains(toolBar))
        return;
    QList<QAction *> list;
    const QList<QAction *> actions = toolBar->actions();
    for (QAction *action : actions) {
        list << (action->isSeparator() ? nullptr : action);
        addAction(action, category);
    }
    m_defaultLists.insert(toolBar, list);
    m_lists.insert(toolBar, list);
    m_order << toolBar;
}

void QtFullToolBarManager::removeDefaultToolBar(QToolBar *toolBar)
{
    if (m_defaultLists.remove(toolBar) == 0)
        return;
    m_lists.remove(toolBar);
    m_order.removeAll(toolBar);
    emit toolBarRemoved(toolBar);
}

bool QtFullToolBarManager::isCustomToolBar(QToolBar *toolBar) const
{
    return m_lists.contains(toolBar) && !isDefaultToolBar(toolBar);
}

QToolBar *QtFullToolBarManager::createToolBar(const QString &title)
{
    if (!m_window)
        return nullptr;
    int number = 1;
    while (findToolBar(customNamePrefix + QString::number(number)))
        ++number;
    auto *bar = new QToolBar(title, m_window);
    bar->setObjectName(customNamePrefix + QString::number(number));
    m_window->addToolBar(bar);
    m_lists.insert(bar, {});
    m_order << bar;
    emit toolBarCreated(bar);
    return bar;
}

void QtFullToolBarManager::deleteToolBar(QToolBar *toolBar)
{
    if (!isCustomToolBar(toolBar))
        return;
    m_lists.remove(toolBar);
    m_order.removeAll(toolBar);
    emit toolBarRemoved(toolBar);
    delete toolBar;
}

void QtFullToolBarManager::setToolBar(QToolBar *toolBar, const QList<QAction *> &actions)
{
    if (!m_lists.contains(toolBar) || m_lists.value(toolBar) == actions)
        return;
    toolBar->clear();
    for (QAction *action : actions) {
        if (action)
            toolBar->addAction(action);
        else
            toolBar->addSeparator();
    }
    m_lists.insert(toolBar, actions);
    emit toolBarChanged(toolBar, actions);
}

void QtFullToolBarManager::setToolBars(const QMap<QToolBar *, QList<QAction *>> &lists)
{
    for (auto list = lists.cbegin(); list != lists.cend(); ++list)
        setToolBar(list.key(), list.value());
}

void QtFullToolBarManager::resetToolBar(QToolBar *toolBar)
{
    if (isDefaultToolBar(toolBar))
        setToolBar(toolBar, m_defaultLists.value(toolBar));
}

void QtFullToolBarManager::resetAllToolBars()
{
    setToolBars(m_defaultLists);
    const QList<QToolBar *> bars = m_order;
    for (QToolBar *bar : bars)
        deleteToolBar(bar);
}

QAction *QtFullToolBarManager::findAction(const QString &name) const
{
    for (const QList<QAction *> &list : m_categories)
        for (QAction *action : list)
            if (action->objectName() == name)
                return action;
    return nullptr;
}

QToolBar *QtFullToolBarManager::findToolBar(const QString &name) const
{
    for (QToolBar *bar : m_order)
        if (bar->objectName() == name)
            return bar;
    return nullptr;
}

QByteArray QtFullToolBarManager::saveState(int version) const
{
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream << stateMarker << version;
    for (const bool custom : {false, true}) {
        QList<QToolBar *> bars;
        for (QToolBar *bar : m_order)
            if (isCustomToolBar(bar) == custom)
                bars << bar;
        stream << (custom ? customBarMarker : defaultBarMarker) << bars.size();
        for (QToolBar *bar : qAsConst(bars)) {
            stream << bar->objectName().toLocal8Bit();
            if (custom)
                stream << bar->windowTitle().toLocal8Bit();
            writeActions(stream, m_lists.value(bar));
        }
    }
    return state;
}

bool QtFullToolBarManager::restoreState(const QByteArray &state, int version)
{
    QBuffer buffer;
    buffer.setData(state);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    int marker = 0;
    int storedVersion = 0;
    stream >> marker >> storedVersion;
    if (stream.status() != QDataStream::Ok || marker != stateMarker || storedVersion != version)
        return false;

    // Everything is read before anything is changed, so that half a state changes nothing.
    QList<StoredBar> stored;
    for (const bool custom : {false, true}) {
        uchar barMarker = 0;
        stream >> barMarker;
        if (stream.status() != QDataStream::Ok || barMarker != (custom ? customBarMarker : defaultBarMarker))
            return false;
        QList<StoredBar> bars;
        readBounded(stream, bars, [custom](QDataStream &from, StoredBar &bar) {
            QByteArray name;
            QByteArray title;
            from >> name;
            if (custom)
                from >> title;
            readBounded(from, bar.actions);
            bar.custom = custom;
            bar.name = QString::fromLocal8Bit(name);
            bar.title = QString::fromLocal8Bit(title);
        });
        stored += bars;
    }
    if (stream.status() != QDataStream::Ok)
        return false;

    for (const StoredBar &entry : qAsConst(stored)) {
        QToolBar *bar = findToolBar(entry.name);
        if (entry.custom && bar)
            bar->setWindowTitle(entry.title);
        else if (entry.custom)
            bar = createToolBar(entry.title);
        if (!bar)
            continue; // a default bar that this version does not have
        QList<QAction *> actions;
        for (const QByteArray &name : entry.actions) {
            QAction *action = name.isEmpty() ? nullptr : findAction(QString::fromLocal8Bit(name));
            if (action || name.isEmpty())
                actions << action;
        }
        setToolBar(bar, actions);
    }
    return true;
}

#include "extensions/qttoolbarmanager.h"

#include "extensions/qtfulltoolbarmanager.h"

QtToolBarManager::QtToolBarManager(QObject *parent)
    : QObject(parent),
      m_manager(new QtFullToolBarManager(this))
{
}

void QtToolBarManager::setMainWindow(QMainWindow *window)
{
    m_manager->setMainWindow(window);
}

QMainWindow *QtToolBarManager::mainWindow() const
{
    return m_manager->mainWindow();
}

void QtToolBarManager::addAction(QAction *action, const QString &category)
{
    m_manager->addAction(action, category);
}

void QtToolBarManager::removeAction(QAction *action)
{
    m_manager->removeAction(action);
}

void QtToolBarManager::addToolBar(QToolBar *toolBar, const QString &category)
{
    m_manager->addDefaultToolBar(toolBar, category);
}

void QtToolBarManager::removeToolBar(QToolBar *toolBar)
{
    m_manager->removeDefaultToolBar(toolBar);
}

QList<QToolBar *> QtToolBarManager::toolBars() const
{
    return m_manager->toolBars();
}

QMap<QToolBar *, QList<QAction *>> QtToolBarManager::toolBarActions() const
{
    return m_manager->toolBarsActions();
}

QByteArray QtToolBarManager::saveState(int version) const
{
    return m_manager->saveState(version);
}

bool QtToolBarManager::restoreState(const QByteArray &state, int version)
{
    return m_manager->restoreState(state, version);
}

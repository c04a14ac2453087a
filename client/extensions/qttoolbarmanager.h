#pragma once

#include <QMap>
#include <QObject>

class QAction;
class QMainWindow;
class QToolBar;
class QtFullToolBarManager;

/// What the main window holds of the tool bar manager; everything goes on to the full manager.
class QtToolBarManager final : public QObject
{
    Q_OBJECT

public:
    explicit QtToolBarManager(QObject *parent = nullptr);

    void setMainWindow(QMainWindow *window);
    QMainWindow *mainWindow() const;
    void addAction(QAction *action, const QString &category);
    void removeAction(QAction *action);
    void addToolBar(QToolBar *toolBar, const QString &category);
    void removeToolBar(QToolBar *toolBar);
    QList<QToolBar *> toolBars() const;
    QMap<QToolBar *, QList<QAction *>> toolBarActions() const;
    QByteArray saveState(int version = 0) const;
    bool restoreState(const QByteArray &state, int version = 0);

private:
    QtFullToolBarManager *m_manager;
};

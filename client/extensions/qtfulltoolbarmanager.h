#pragma once

#include <QList>
#include <QMap>
#include <QObject>

class QAction;
class QMainWindow;
class QToolBar;

/// The tool bars of a main window as the user may arrange them: default bars with their own lists of actions,
/// and bars that the user made. A null action in a list is a separator. Actions and bars are not owned; every
/// action needs an object name, by which its place is stored.
class QtFullToolBarManager final : public QObject
{
    Q_OBJECT

public:
    explicit QtFullToolBarManager(QObject *parent = nullptr);

    void setMainWindow(QMainWindow *window) { m_window = window; }
    QMainWindow *mainWindow() const { return m_window; }

    void addCategory(const QString &name);
    bool hasCategory(const QString &name) const { return m_categories.contains(name); }
    QStringList categories() const { return m_categoryOrder; }
    QList<QAction *> categoryActions(const QString &name) const { return m_categories.value(name); }
    /// Empty for an unknown action.
    QString actionCategory(QAction *action) const;

    void addAction(QAction *action, const QString &category);
    /// Takes the action out of all lists.
    void removeAction(QAction *action);
    static bool isWidgetAction(QAction *action);

    /// The bar's present actions become its default list; they join the category.
    void addDefaultToolBar(QToolBar *toolBar, const QString &category);
    void removeDefaultToolBar(QToolBar *toolBar);
    bool isDefaultToolBar(QToolBar *toolBar) const { return m_defaultLists.contains(toolBar); }
    QMap<QToolBar *, QList<QAction *>> defaultToolBars() const { return m_defaultLists; }

    /// A new, empty bar in the top area of the main window.
    QToolBar *createToolBar(const QString &title);
    /// Default bars stay.
    void deleteToolBar(QToolBar *toolBar);

    QList<QToolBar *> toolBars() const { return m_order; }
    QList<QAction *> actions(QToolBar *toolBar) const { return m_lists.value(toolBar); }
    QMap<QToolBar *, QList<QAction *>> toolBarsActions() const { return m_lists; }
    void setToolBar(QToolBar *toolBar, const QList<QAction *> &actions);
    void setToolBars(const QMap<QToolBar *, QList<QAction *>> &lists);

    QByteArray saveState(int version) const;
    /// False, with nothing changed, when the state is damaged or of another version.
    bool restoreState(const QByteArray &state, int version);

public slots:
    void resetToolBar(QToolBar *toolBar);
    void resetAllToolBars();

signals:
    void toolBarCreated(QToolBar *toolBar);
    void toolBarRemoved(QToolBar *toolBar);
    void toolBarChanged(QToolBar *toolBar, QList<QAction *> actions);

private:
    struct StoredBar;

    QAction *findAction(const QString &name) const;
    QToolBar *findToolBar(const QString &name) const;
    bool isCustomToolBar(QToolBar *toolBar) const;

    QMainWindow *m_window = nullptr;
    QStringList m_categoryOrder;
    QMap<QString, QList<QAction *>> m_categories;
    QMap<QToolBar *, QList<QAction *>> m_defaultLists;
    QMap<QToolBar *, QList<QAction *>> m_lists;
    QList<QToolBar *> m_order; ///< default and custom bars as they came
};

#include "documents/kelvainfoview.h"

#include <QAction>
#include <QCoreApplication>
#include <QCursor>
#include <QDebug>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QSettings>

namespace {

const char stateKey[] = "InfoViewState";
/// Until the user has set the widths: long texts must not push the other columns out of sight.
constexpr int widestFirstColumn = 280;

} // namespace

QString KelvaInfoView::settingsApplication() const
{
    const QString application = QCoreApplication::applicationName();
    return profileIdentifier.isEmpty() ? application : application + '_' + profileIdentifier;
}

void KelvaInfoView::saveHeaderState()
{
    const QByteArray state = horizontalHeader()->saveState();
    if (state.isEmpty() || horizontalHeader()->count() <= 0)
        return;
    qDebug() << "SAVE HEADER" << horizontalHeader()->count();
    QSettings settings("Norbant GmbH", settingsApplication());
    settings.setValue(stateKey, state);
    settings.sync();
}

bool KelvaInfoView::restoreHeader()
{
    qDebug("RESTORE HEADER");
    const QSettings settings("Norbant GmbH", settingsApplication());
    return horizontalHeader()->restoreState(settings.value(stateKey).toByteArray());
}

void KelvaInfoView::loadActionMenu()
{
    m_hideAction = new QAction(tr("Show/Hide column(s)"), this);
    m_resizeAction = new QAction(tr("Resize columns to content"), this);
    m_autoResizeAction = new QAction(tr("Resize columns to content (automatic)"), this);
    m_autoResizeAction->setCheckable(true);
    m_showAllAction = new QAction(tr("Show all columns"), this);
    connect(m_hideAction, SIGNAL(triggered()), this, SLOT(hideColumn()));
    connect(m_resizeAction, SIGNAL(triggered()), this, SLOT(resizeColumnsToContents()));
    connect(m_autoResizeAction, SIGNAL(toggled(bool)), this, SLOT(resizeColumnToContentsFlag(bool)));
    connect(m_showAllAction, SIGNAL(triggered()), this, SLOT(reloadAll()));
    horizontalHeader()->addActions({m_hideAction, m_resizeAction, m_autoResizeAction, m_showAllAction});
}

int KelvaInfoView::visibleColumns() const
{
    return horizontalHeader()->count() - horizontalHeader()->hiddenSectionCount();
}

void KelvaInfoView::hideColumn()
{
    QMenu menu("Ein-/Ausblenden", this); // fixed German text
    for (int column = 0; column < horizontalHeader()->count(); ++column) {
        QAction *action = menu.addAction(model()->headerData(column, Qt::Horizontal).toString());
        action->setCheckable(true);
        action->setData(column);
        action->setChecked(!isColumnHidden(column));
    }
    while (const auto *chosen = menu.exec(QCursor::pos())) {
        auto *action = const_cast<QAction *>(chosen);
        const int column = action->data().toInt();
        if (!action->isChecked() && visibleColumns() <= 1) {
            QMessageBox::information(this, tr("Warning"), tr("All columns can not be hidden."));
            action->setChecked(true);
            continue;
        }
        setColumnHidden(column, !action->isChecked());
        if (action->isChecked())
            resizeColumnToContents(column);
    }
    saveHeaderState();
}

void KelvaInfoView::setAutoResize(bool automatic)
{
    m_autoResizeAction->setChecked(automatic);
    resizeColumnToContentsFlag(automatic);
}

void KelvaInfoView::resizeColumnToContentsFlag(bool automatic)
{
    autoResize = automatic;
    if (automatic)
        resizeColumnsToContents();
    horizontalHeader()->setStretchLastSection(automatic);
}

void KelvaInfoView::doResizeColumnsToContents()
{
    if (autoResize)
        resizeColumnsToContents();
    if (m_headerKnown)
        return;
    resizeColumnsToContents();
    for (int column = 0; column < horizontalHeader()->count(); ++column)
        if (columnWidth(column) > widestFirstColumn)
            setColumnWidth(column, widestFirstColumn);
    m_headerKnown = true;
    saveHeaderState(); // measured once, not at every load
}

void KelvaInfoView::reloadAll()
{
    for (int column = 0; column < horizontalHeader()->count(); ++column)
        showColumn(column);
    resizeColumnsToContents();
    resizeColumnsToContents(); // now against the widths of the first pass
}

void KelvaInfoView::resetHeaders()
{
    resizeColumnsToContents();
    resizeColumnsToContents();
    saveHeaderState();
}

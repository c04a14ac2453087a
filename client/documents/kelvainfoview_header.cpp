#include "documents/kelvainfoview.h"

#include "documents/documentcolumns.h"
#include "documents/qinfoviewmodel.h"
#include "widgets/plainbox.h"

#include <QAction>
#include <QCoreApplication>
#include <QCursor>
#include <QDebug>
#include <QHeaderView>
#include <QMenu>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalBlocker>

namespace {

const char stateKey[] = "InfoViewState";
/// Until the user has set the widths: long texts must not push the other columns out of sight.
constexpr int widestFirstColumn = 280;

} // namespace

QString KelvaInfoView::settingsApplication() const
{
    const QString application = QCoreApplication::applicationName();
    if (profileIdentifier.isEmpty())
        return application;
    // The identifier holds a host name of somebody's choosing and becomes part of a file's name.
    QString identifier = profileIdentifier;
    static const QRegularExpression unsafe("[/\\\\\\x00-\\x1f]");
    return application + '_' + identifier.replace(unsafe, "_");
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
    const bool restored = horizontalHeader()->restoreState(settings.value(stateKey).toByteArray());
    // A state of more columns than there are would make up empty ones.
    if (horizontalHeader()->count() != model()->columnCount())
        horizontalHeader()->reset();
    return restored;
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
    // The resubmission column comes and goes with the contents; it cannot be the last one.
    int visible = 0;
    for (int column = 0; column < horizontalHeader()->count(); ++column)
        visible += column != documentcolumn::resubmission && !isColumnHidden(column) ? 1 : 0;
    return visible;
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
    const QPoint place = QCursor::pos(); // it stays there while columns are ticked
    while (const auto *chosen = menu.exec(place)) {
        auto *action = const_cast<QAction *>(chosen);
        menu.setActiveAction(action);
        const int column = action->data().toInt();
        if (!action->isChecked() && column != documentcolumn::resubmission && visibleColumns() <= 1) {
            plainbox::information(this, tr("Warning"), tr("All columns can not be hidden."));
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
    const bool first = !m_headerKnown && m_model->rowCount() > 0;
    if (!autoResize && !first)
        return;
    {
        // Each changed width would be written to the settings file on its own.
        const QSignalBlocker blocker(horizontalHeader());
        resizeColumnsToContents();
        for (int column = 0; first && column < horizontalHeader()->count(); ++column)
            if (columnWidth(column) > widestFirstColumn)
                setColumnWidth(column, widestFirstColumn);
    }
    updateGeometries();
    m_headerKnown = true;
    saveHeaderState();
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

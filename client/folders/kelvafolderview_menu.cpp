#include "folders/kelvafolderview.h"

#include "folders/folderlink.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "widgets/mysortfilterproxymodel.h"
#include "widgets/plainbox.h"

#include <QAction>
#include <QClipboard>
#include <QCursor>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHostInfo>
#include <QMenu>
#include <QSet>
#include <QSignalBlocker>
#include <QUrl>

void KelvaFolderView::makeActions()
{
    const auto add = [this](const QString &text, const char *icon, const char *slot) {
        auto *action =
            new QAction(QIcon(QStringLiteral(":/icons/%1.png").arg(QLatin1String(icon))), text, this);
        if (slot)
            connect(action, SIGNAL(triggered()), this, slot);
        return action;
    };
    m_createAction = add(tr("Create a new folder..."), "order_anlegen", SLOT(doEmitNewFolder()));
    m_createAction->setVisible(false);
    m_linkAction = add(tr("Link..."), "computer_link", nullptr);
    auto *linkMenu = new QMenu(this);
    linkMenu->addAction(add(tr("... send per E-Mail"), "email_link", SLOT(doSendFolderLinkMail())));
    linkMenu->addAction(
        add(tr("... send to clipboard"), "zwischenablage_link", SLOT(doSendFolderLinkClipboard())));
    m_linkAction->setMenu(linkMenu);
    addActions({m_createAction, m_linkAction, add(tr("Expand"), "order_ausklappen", SLOT(expandItems())),
                add(tr("Collapse"), "order_einklappen", SLOT(collapseItems())),
                add(tr("Expand all"), "order_alle_ausklappen", SLOT(expandAll())),
                add(tr("Collapse all"), "order_alle_einklappen", SLOT(collapseAll()))});

    auto *columns = new QAction(tr("Show/Hide column(s)"), this);
    connect(columns, SIGNAL(triggered()), this, SLOT(hideColumn()));
    header()->addAction(columns);
    header()->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void KelvaFolderView::hideColumn()
{
    if (!m_tree)
        return;
    QMenu menu(tr("Show / Hide"), this);
    for (int column = 0; column < header()->count(); ++column) {
        QAction *action = menu.addAction(m_tree->headerData(column, Qt::Horizontal).toString());
        action->setCheckable(true);
        action->setData(column);
        action->setChecked(!isColumnHidden(column));
    }
    while (QAction *action = menu.exec(QCursor::pos())) {
        if (!action->isChecked() && header()->count() - header()->hiddenSectionCount() <= 1) {
            plainbox::information(this, tr("Warning"), tr("All columns can not be hidden."));
            action->setChecked(true);
            continue;
        }
        setColumnHidden(action->data().toInt(), !action->isChecked());
        resizeColumnToContents(0);
    }
    doSaveState();
}

void KelvaFolderView::setExpandedBelowCurrent(bool expand)
{
    const KelvaDocItem *current = currentItem();
    if (!current)
        return;
    QSet<QString> oids;
    {
        const QSignalBlocker blocker(this); // each folder would write the kept state on its own
        scheduleDelayedItemsLayout();
        QList<const KelvaDocItem *> open{current};
        while (!open.isEmpty()) {
            const KelvaDocItem *node = open.takeLast();
            oids.insert(node->getOid());
            setExpanded(m_proxy->mapFromSource(m_tree->indexFromItem(node)), expand);
            for (int i = 0; i < node->childCount(); ++i)
                open.append(node->child(i));
        }
    }
    QStringList expanded;
    for (const QString &oid : qAsConst(m_expandedOids))
        if (!oids.contains(oid))
            expanded << oid;
    m_expandedOids = expand ? expanded + oids.values() : expanded;
    doSaveState();
}

void KelvaFolderView::expandItems()
{
    setExpandedBelowCurrent(true);
}

void KelvaFolderView::collapseItems()
{
    setExpandedBelowCurrent(false);
}

void KelvaFolderView::expandAll()
{
    // Blocked: each folder would enter the list that is kept for the next start.
    const QSignalBlocker blocker(this);
    QTreeView::expandAll();
}

void KelvaFolderView::collapseAll()
{
    const QSignalBlocker blocker(this);
    QTreeView::collapseAll();
}

void KelvaFolderView::doEmitNewFolder()
{
    if (m_tree && currentItem())
        m_tree->createNewFolder(currentOid());
}

QString KelvaFolderView::folderLink()
{
    // The link is to work on another computer; the name is replaced for good.
    if (m_host.compare("localhost", Qt::CaseInsensitive) == 0)
        m_host = QHostInfo::localHostName();
    return folderLinkText({m_htmlMode, m_host, m_port, m_archive, currentOid()});
}

void KelvaFolderView::doSendFolderLinkClipboard()
{
    if (!currentOid().isEmpty())
        QGuiApplication::clipboard()->setText(folderLink());
}

void KelvaFolderView::doSendFolderLinkMail()
{
    if (!currentOid().isEmpty())
        QDesktopServices::openUrl(
            QUrl::fromEncoded("mailto:?subject=Kelva&body=" + QUrl::toPercentEncoding(folderLink())));
}

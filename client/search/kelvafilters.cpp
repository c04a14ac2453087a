#include "search/kelvafilters.h"

#include "widgets/itemroles.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QSettings>
#include <QStandardItem>

namespace {

constexpr char expandedKey[] = "kelvaExpandedFilters";

} // namespace

KelvaFilters::KelvaFilters(QWidget *parent) : QTreeView(parent)
{
    setHeaderHidden(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_expanded =
        QSettings("Norbant GmbH", QCoreApplication::applicationName()).value(expandedKey).toStringList();
    connect(this, SIGNAL(expanded(QModelIndex)), this, SLOT(handleExpand(QModelIndex)));
    connect(this, SIGNAL(collapsed(QModelIndex)), this, SLOT(handleCollapse(QModelIndex)));
}

void KelvaFilters::setActive(QStandardItem *item)
{
    clearActive();
    QFont font;
    font.setWeight(QFont::Bold);
    item->setData(font, Qt::FontRole);
    item->setData(QBrush(QColor(255, 0, 0)), Qt::ForegroundRole);
    m_active = item;
}

void KelvaFilters::clearActive()
{
    if (m_active) {
        m_active->setData(QVariant(), Qt::FontRole);
        m_active->setData(QVariant(), Qt::ForegroundRole);
    }
    m_active = nullptr;
}

void KelvaFilters::selectActive(QStandardItem *item)
{
    item ? setActive(item) : clearActive();
}

void KelvaFilters::modelIsResetted()
{
    m_active = nullptr;
}

void KelvaFilters::updateExpanded()
{
    if (!model())
        return;
    for (int row = 0; row < model()->rowCount(); ++row) {
        const QModelIndex group = model()->index(row, 0);
        if (m_expanded.contains(group.data(itemrole::filterGroup).toString()))
            expand(group);
    }
}

void KelvaFilters::mouseDoubleClickEvent(QMouseEvent *)
{
    // Nothing else: a group must not fold.
    emit doubleClicked(currentIndex());
}

void KelvaFilters::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        emit doubleClicked(currentIndex());
    QTreeView::keyPressEvent(event);
}

void KelvaFilters::handleExpand(const QModelIndex &index)
{
    const QString group = index.data(itemrole::filterGroup).toString();
    if (!m_expanded.contains(group))
        m_expanded << group;
    writeExpanded();
}

void KelvaFilters::handleCollapse(const QModelIndex &index)
{
    m_expanded.removeAll(index.data(itemrole::filterGroup).toString());
    writeExpanded();
}

void KelvaFilters::writeExpanded() const
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    settings.setValue(expandedKey, m_expanded);
    settings.sync();
}

#include "support/onecelltable.h"

#include "documents/kelvadelegate.h"
#include "widgets/itemroles.h"

OneCellTable::OneCellTable(KelvaDelegate *delegate) : m_model(1, 1)
{
    m_model.setItem(0, 0, new QStandardItem);
    m_proxy.setSourceModel(&m_model);
    m_proxy.sort(0);
    m_view.setModel(&m_proxy);
    delegate->setParent(&m_view);
    m_view.setItemDelegate(delegate);
    m_view.resize(300, 200);
    m_view.show();
    connect(&m_model, SIGNAL(dataChanged(QModelIndex, QModelIndex)), this, SLOT(countChange()));
}

void OneCellTable::setCell(const QString &text, const QString &rawValue)
{
    cell()->setText(text);
    if (!rawValue.isNull())
        cell()->setData(rawValue, itemrole::rawValue);
}

QWidget *OneCellTable::edit()
{
    m_changes = 0;
    m_view.setCurrentIndex(index());
    m_view.edit(index());
    return m_view.indexWidget(index());
}

void OneCellTable::commit()
{
    QWidget *editor = m_view.indexWidget(index());
    auto *delegate = m_view.itemDelegate();
    emit delegate->commitData(editor);
    emit delegate->closeEditor(editor);
}

QString OneCellTable::outcome() const
{
    return cell()->text() + '|' + cell()->data(itemrole::rawValue).toString() + '|' +
           QString::number(m_changes);
}

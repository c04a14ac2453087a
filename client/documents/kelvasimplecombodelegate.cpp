#include "documents/kelvasimplecombodelegate.h"

#include "documents/valuecombobox.h"

#include <QSortFilterProxyModel>
#include <QStringListModel>

KelvaSimpleComboDelegate::KelvaSimpleComboDelegate(QStringList values, QObject *parent, bool commitOnActivate,
                                                   bool closeOnChange, bool sorted, bool showPopup)
    : KelvaDelegate(parent),
      m_values(std::move(values)),
      m_commitOnActivate(commitOnActivate),
      m_closeOnChange(closeOnChange),
      m_sorted(sorted),
      m_showPopup(showPopup)
{
}

KelvaDelegate *KelvaSimpleComboDelegate::clone(QWidget *parent) const
{
    auto *copy = new KelvaSimpleComboDelegate(m_values, parent, m_commitOnActivate, m_closeOnChange, m_sorted,
                                              m_showPopup);
    copy->setDelegateColumn(delegateColumn);
    return copy;
}

QWidget *KelvaSimpleComboDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                                const QModelIndex &index) const
{
    if (!serves(index))
        return KelvaDelegate::createEditor(parent, option, index);
    auto *box = new ValueComboBox(parent, m_showPopup);
    auto *sorter = new QSortFilterProxyModel(box);
    sorter->setSourceModel(new QStringListModel(m_values, sorter));
    sorter->setSortLocaleAware(true);
    if (m_sorted)
        sorter->sort(0, Qt::AscendingOrder);
    box->setModel(sorter);
    box->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    box->setCurrentIndex(-1);
    connect(box, SIGNAL(givenUp()), this, SLOT(doGiveUp()));
    if (m_commitOnActivate)
        connect(box, SIGNAL(activated(int)), this, SLOT(emitCommitData()));
    if (m_closeOnChange)
        connect(box, SIGNAL(currentIndexChanged(int)), this, SLOT(doCloseEditor()));
    return box;
}

void KelvaSimpleComboDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *box = qobject_cast<ValueComboBox *>(editor);
    if (!box) {
        KelvaDelegate::setEditorData(editor, index);
        return;
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    box->startWith(box->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive), text);
}

void KelvaSimpleComboDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                            const QModelIndex &index) const
{
    const auto *box = qobject_cast<ValueComboBox *>(editor);
    if (!box)
        KelvaDelegate::setModelData(editor, model, index);
    else if (box->isChosen())
        model->setData(index, box->currentText(), Qt::EditRole);
}

#include "folders/kelvaviewdelegate.h"

#include "documents/celldata.h"
#include "folders/kelvadocitem.h"
#include "folders/kelvadoctree.h"
#include "folders/kelvafolderview.h"
#include "folders/kelvafolderviewdlg.h"
#include "widgets/itemroles.h"

#include <QCoreApplication>
#include <QDebug>
#include <QSettings>

KelvaViewDelegate::KelvaViewDelegate(KelvaDocTree *tree, QWidget *parent)
    : KelvaDelegate(parent),
      m_tree(tree)
{
}

KelvaDelegate *KelvaViewDelegate::clone(QWidget *parent) const
{
    auto *copy = new KelvaViewDelegate(m_tree, parent);
    copy->setDelegateColumn(delegateColumn);
    copy->setSearchText(m_searchText);
    return copy;
}

KelvaDocTree *KelvaViewDelegate::getTree() const
{
    return m_tree;
}

QString KelvaViewDelegate::getValue(const QString &name) const
{
    const QList<KelvaDocItem *> folders = m_tree ? m_tree->getAllItems() : QList<KelvaDocItem *>();
    for (const KelvaDocItem *folder : folders)
        if (folder->getName() == name)
            return folder->getOid();
    return QString();
}

QWidget *KelvaViewDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                         const QModelIndex &index) const
{
    if (!serves(index))
        return KelvaDelegate::createEditor(parent, option, index);
    if (!m_tree)
        return nullptr;
    auto *dialog = new KelvaFolderViewDlg(parent);
    KelvaFolderView *view = dialog->getView();
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setAnimated(false);
    view->setModel(m_tree);
    const QList<KelvaDocItem *> hidden = m_tree->getHiddenRows();
    for (const KelvaDocItem *folder : hidden)
        view->setRowHidden(m_tree->indexFromItem(folder), true);
    connect(dialog, SIGNAL(finished(int)), this, SLOT(emitCloseEditor(int)));
    dialog->open();
    return dialog;
}

void KelvaViewDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *dialog = qobject_cast<KelvaFolderViewDlg *>(editor);
    if (!dialog) {
        KelvaDelegate::setEditorData(editor, index);
        return;
    }
    // The header comes first: restoring it folds the tree, and a folder must be in sight to be found.
    dialog->updateHeader();
    const QString oid = index.data(itemrole::rawValue).toString();
    const KelvaDocItem *folder = m_tree ? m_tree->findItem(oid) : nullptr;
    if (folder && folder->getFlags().testFlag(Qt::ItemIsSelectable))
        dialog->getView()->setCurrentIndex(m_tree->indexFromItem(folder));
    // The search goes on to its first hit, which is what Return chooses; its cancel button leads back.
    if (!m_searchText.isEmpty())
        dialog->getView()->showSearchDlg(m_searchText);
}

void KelvaViewDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                     const QModelIndex &index) const
{
    auto *dialog = qobject_cast<KelvaFolderViewDlg *>(editor);
    if (!dialog) {
        KelvaDelegate::setModelData(editor, model, index);
        return;
    }
    if (dialog->wasAccepted())
        QSettings("Norbant GmbH", QCoreApplication::applicationName())
            .setValue("FolderDelegateSize", dialog->geometry());
    const KelvaDocItem *folder = dialog->getView()->currentItem();
    if (dialog->getView()->getSaved() && folder && folder->getFlags().testFlag(Qt::ItemIsSelectable))
        setCellValue(model, index, folder->getName(), folder->icon(), folder->getOid());
}

void KelvaViewDelegate::emitCloseEditor(int result)
{
    auto *dialog = qobject_cast<KelvaFolderViewDlg *>(sender());
    if (!dialog) {
        qDebug() << "UNABLE TO CAST";
        return;
    }
    dialog->getView()->hideSearchDlg();
    m_searchText = dialog->getView()->searchText();
    dialog->blockSignals(false);
    if (result == QDialog::Accepted) {
        qDebug() << "SUBMIT MODEL CACHE";
        emit commitData(dialog);
        emit closeEditor(dialog, QAbstractItemDelegate::SubmitModelCache);
    } else {
        qDebug() << "REVERT MODEL CACHE";
        emit closeEditor(dialog, QAbstractItemDelegate::RevertModelCache);
    }
}

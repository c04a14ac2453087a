#include "documents/kelvadelegate.h"

#include <QDialog>

bool KelvaDelegate::isWindow(QObject *editor)
{
    return qobject_cast<QDialog *>(editor) != nullptr;
}

void KelvaDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                         const QModelIndex &index) const
{
    if (!isWindow(editor))
        QStyledItemDelegate::updateEditorGeometry(editor, option, index);
}

bool KelvaDelegate::eventFilter(QObject *editor, QEvent *event)
{
    return !isWindow(editor) && QStyledItemDelegate::eventFilter(editor, event);
}

void KelvaDelegate::emitCommitData()
{
    if (auto *editor = qobject_cast<QWidget *>(sender()))
        emit commitData(editor);
}

void KelvaDelegate::doCloseEditor()
{
    auto *editor = qobject_cast<QWidget *>(sender());
    if (!editor)
        return;
    // Closing comes before the box says that a choice was made; what was chosen must not be lost.
    emit commitData(editor);
    emit closeEditor(editor);
}

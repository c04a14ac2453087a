#include "documents/kelvadelegatewrapper.h"

#include "documents/kelvadelegate.h"

#include <QWidget>

void KelvaDelegateWrapper::addDelegate(int row, int column, QStyledItemDelegate *delegate)
{
    delete m_delegates.take({row, column});
    delegate->setParent(this);
    connect(delegate, SIGNAL(commitData(QWidget *)), this, SLOT(emitCommitData(QWidget *)));
    connect(delegate, SIGNAL(closeEditor(QWidget *, QAbstractItemDelegate::EndEditHint)), this,
            SLOT(emitCloseEditor(QWidget *, QAbstractItemDelegate::EndEditHint)));
    m_delegates.insert({row, column}, delegate);
}

void KelvaDelegateWrapper::shiftRows(int firstRow, int by)
{
    QMap<Cell, QStyledItemDelegate *> shifted;
    for (auto cell = m_delegates.cbegin(); cell != m_delegates.cend(); ++cell) {
        const int row = cell.key().first;
        shifted.insert({row >= firstRow ? row + by : row, cell.key().second}, cell.value());
    }
    m_delegates = shifted;
}

void KelvaDelegateWrapper::insertDelegate(int row, int column, QStyledItemDelegate *delegate)
{
    shiftRows(row, 1);
    addDelegate(row, column, delegate);
}

void KelvaDelegateWrapper::removeDelegate(int row, int column)
{
    delete m_delegates.take({row, column});
}

void KelvaDelegateWrapper::removeAllRowDelegates(int row)
{
    const QList<Cell> cells = m_delegates.keys();
    for (const Cell &cell : cells)
        if (cell.first == row)
            delete m_delegates.take(cell);
    shiftRows(row + 1, -1);
}

QStyledItemDelegate *KelvaDelegateWrapper::getDelegate(int row, int column) const
{
    return m_delegates.value({row, column});
}

KelvaDelegateWrapper *KelvaDelegateWrapper::clone(QWidget *parent) const
{
    auto *copy = new KelvaDelegateWrapper(parent);
    for (auto cell = m_delegates.cbegin(); cell != m_delegates.cend(); ++cell)
        if (const auto *delegate = qobject_cast<KelvaDelegate *>(cell.value()))
            copy->addDelegate(cell.key().first, cell.key().second, delegate->clone(parent));
    return copy;
}

QWidget *KelvaDelegateWrapper::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                            const QModelIndex &index) const
{
    const QStyledItemDelegate *delegate = getDelegate(index.row(), index.column());
    QWidget *editor = delegate ? delegate->createEditor(parent, option, index)
                               : QStyledItemDelegate::createEditor(parent, option, index);
    // Nothing else beside an editor in a table names it.
    if (editor && editor->accessibleName().isEmpty())
        editor->setAccessibleName(index.model()->headerData(index.column(), Qt::Horizontal).toString());
    return editor;
}

void KelvaDelegateWrapper::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QStyledItemDelegate *delegate = getDelegate(index.row(), index.column());
    delegate ? delegate->setEditorData(editor, index) : QStyledItemDelegate::setEditorData(editor, index);
}

void KelvaDelegateWrapper::setModelData(QWidget *editor, QAbstractItemModel *model,
                                        const QModelIndex &index) const
{
    const QStyledItemDelegate *delegate = getDelegate(index.row(), index.column());
    delegate ? delegate->setModelData(editor, model, index)
             : QStyledItemDelegate::setModelData(editor, model, index);
}

void KelvaDelegateWrapper::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                                const QModelIndex &index) const
{
    const QStyledItemDelegate *delegate = getDelegate(index.row(), index.column());
    delegate ? delegate->updateEditorGeometry(editor, option, index)
             : QStyledItemDelegate::updateEditorGeometry(editor, option, index);
}

bool KelvaDelegateWrapper::editorEvent(QEvent *event, QAbstractItemModel *model,
                                       const QStyleOptionViewItem &option, const QModelIndex &index)
{
    // The item view calls this one through the base class, where it is public.
    QAbstractItemDelegate *delegate = getDelegate(index.row(), index.column());
    return delegate ? delegate->editorEvent(event, model, option, index)
                    : QStyledItemDelegate::editorEvent(event, model, option, index);
}

void KelvaDelegateWrapper::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    const QStyledItemDelegate *delegate = getDelegate(index.row(), index.column());
    delegate ? delegate->paint(painter, option, index) : QStyledItemDelegate::paint(painter, option, index);
}

QSize KelvaDelegateWrapper::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QStyledItemDelegate *delegate = getDelegate(index.row(), index.column());
    return delegate ? delegate->sizeHint(option, index) : QStyledItemDelegate::sizeHint(option, index);
}

bool KelvaDelegateWrapper::eventFilter(QObject *editor, QEvent *event)
{
    // The view filters through the wrapper, never through the delegate of the cell.
    return !KelvaDelegate::isWindow(editor) && QStyledItemDelegate::eventFilter(editor, event);
}

void KelvaDelegateWrapper::emitCommitData(QWidget *editor)
{
    emit commitData(editor);
}

void KelvaDelegateWrapper::emitCloseEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    emit closeEditor(editor, hint);
}

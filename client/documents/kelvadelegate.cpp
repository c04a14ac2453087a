#include "documents/kelvadelegate.h"

#include "widgets/itemroles.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

/// More could not be read in a cell anyway, and would take long to lay out.
constexpr int longestShown = 1000;

/// Without the tint that an icon gets in a selected row: its colours mean something.
QIcon untinted(const QIcon &icon, const QSize &size)
{
    const QPixmap picture = icon.pixmap(size);
    QIcon same(picture);
    same.addPixmap(picture, QIcon::Selected);
    return same;
}

} // namespace

void KelvaDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->text.size() > longestShown)
        option->text = option->text.left(longestShown) + QChar(0x2026);
    if (index.data(itemrole::numeric).toBool())
        option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
    if (option->state.testFlag(QStyle::State_Selected) && !option->icon.isNull())
        option->icon = untinted(option->icon, option->decorationSize);
    option->state &= ~QStyle::State_HasFocus;
}

void KelvaDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    paintFocus(painter, option);
}

void KelvaDelegate::paintFocus(QPainter *painter, const QStyleOptionViewItem &option)
{
    if (!option.state.testFlag(QStyle::State_HasFocus))
        return;
    painter->save();
    painter->setPen(QPen(option.palette.color(QPalette::WindowText), 1, Qt::DotLine));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

bool KelvaDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                              const QModelIndex &index)
{
    const QString text = index.data(Qt::DisplayRole).toString();
    if (!event || event->type() != QEvent::ToolTip || text.isEmpty() ||
        !index.data(Qt::ToolTipRole).toString().isEmpty() ||
        sizeHint(option, index).width() <= option.rect.width())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    // Escaped: a text that looks like markup would be taken for it.
    QToolTip::showText(event->globalPos(), "<p>" + text.left(longestShown).toHtmlEscaped() + "</p>", view);
    return true;
}

bool KelvaDelegate::isWindow(QObject *editor)
{
    return qobject_cast<QDialog *>(editor) != nullptr;
}

void KelvaDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                         const QModelIndex &index) const
{
    if (isWindow(editor))
        return;
    if (qobject_cast<QComboBox *>(editor))
        editor->setGeometry(option.rect); // over the picture, too, since it shows its own
    else
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

void KelvaDelegate::doGiveUp()
{
    if (auto *editor = qobject_cast<QWidget *>(sender()))
        emit closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

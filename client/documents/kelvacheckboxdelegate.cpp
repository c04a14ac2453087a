#include "documents/kelvacheckboxdelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

/// Ticking needs no editor, so that the edit triggers, which decide on editors, must be asked here.
bool takesEdits(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const auto *view = qobject_cast<const QAbstractItemView *>(option.widget);
    return index.flags().testFlag(Qt::ItemIsEditable) &&
           !(view && view->editTriggers() == QAbstractItemView::NoEditTriggers);
}

} // namespace

KelvaCheckBoxDelegate::KelvaCheckBoxDelegate(bool, QObject *parent) : KelvaDelegate(parent) {}

KelvaDelegate *KelvaCheckBoxDelegate::clone(QWidget *parent) const
{
    auto *copy = new KelvaCheckBoxDelegate(false, parent);
    copy->setDelegateColumn(delegateColumn);
    return copy;
}

QRect KelvaCheckBoxDelegate::CheckBoxRect(const QStyleOptionViewItem &option)
{
    QStyleOptionButton box;
    const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    const QSize size = style->subElementRect(QStyle::SE_CheckBoxIndicator, &box, option.widget).size();
    return QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, option.rect);
}

QWidget *KelvaCheckBoxDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                             const QModelIndex &index) const
{
    return serves(index) ? nullptr : KelvaDelegate::createEditor(parent, option, index);
}

void KelvaCheckBoxDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                  const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.text.clear();
    const QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);

    QStyleOptionButton box;
    box.rect = CheckBoxRect(option);
    box.palette = cell.palette;
    box.state = index.data(Qt::DisplayRole).toBool() ? QStyle::State_On : QStyle::State_Off;
    if (index.flags() & Qt::ItemIsEnabled)
        box.state |= QStyle::State_Enabled;
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, cell.widget);

    paintFocus(painter, option);
}

bool KelvaCheckBoxDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                        const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (!takesEdits(option, index))
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() != Qt::LeftButton || !CheckBoxRect(option).contains(mouse->pos()))
            return false;
        if (event->type() != QEvent::MouseButtonRelease)
            return true;
        break;
    }
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key != Qt::Key_Space && key != Qt::Key_Select)
            return false;
        break;
    }
    default:
        return false;
    }
    const QString turned = index.data(Qt::DisplayRole).toBool() ? "0" : "2";
    return model->setData(index, turned, Qt::EditRole);
}

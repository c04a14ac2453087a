#include "documents/kelvacalendardelegate.h"

#include "documents/kelvacalendar.h"
#include "widgets/itemroles.h"

namespace {

constexpr char dateFormat[] = "yyyy-MM-dd";

QString storedDate(const QModelIndex &index)
{
    const QString raw = index.data(itemrole::rawValue).toString();
    return raw.isEmpty() ? index.data(Qt::DisplayRole).toString() : raw;
}

} // namespace

KelvaCalendarDelegate::KelvaCalendarDelegate(QWidget *parent, bool minToday, bool extended, bool withNull)
    : KelvaDelegate(parent),
      m_minToday(minToday),
      m_extended(extended),
      m_withNull(withNull)
{
}

KelvaDelegate *KelvaCalendarDelegate::clone(QWidget *parent) const
{
    auto *copy = new KelvaCalendarDelegate(parent, m_minToday, m_extended, m_withNull);
    copy->setDelegateColumn(delegateColumn);
    return copy;
}

QWidget *KelvaCalendarDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                             const QModelIndex &index) const
{
    if (!serves(index))
        return KelvaDelegate::createEditor(parent, option, index);
    auto *dialog = new KelvaCalendar(parent, m_minToday, m_withNull);
    dialog->setExtended(m_extended);
    connect(dialog, SIGNAL(accepted()), this, SLOT(emitCommitted()));
    connect(dialog, SIGNAL(rejected()), this, SLOT(emitCloseEditor()));
    dialog->open();
    return dialog;
}

void KelvaCalendarDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *dialog = qobject_cast<KelvaCalendar *>(editor);
    if (!dialog) {
        KelvaDelegate::setEditorData(editor, index);
        return;
    }
    const QString stored = storedDate(index);
    dialog->setSelectedDate(QDate::fromString(stored, dateFormat));
    dialog->setExtendedString(stored);
}

void KelvaCalendarDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                         const QModelIndex &index) const
{
    const auto *dialog = qobject_cast<KelvaCalendar *>(editor);
    if (!dialog) {
        KelvaDelegate::setModelData(editor, model, index);
        return;
    }
    if (!dialog->getIsOk())
        return;
    QString chosen;
    if (!(m_withNull && dialog->isNULL())) {
        chosen = m_extended ? dialog->getExtendedString() : QString();
        if (chosen.isEmpty())
            chosen = dialog->selectedDate().toString(dateFormat);
    }
    if (chosen != storedDate(index))
        model->setData(index, chosen, Qt::EditRole);
}

void KelvaCalendarDelegate::emitCommitted()
{
    auto *dialog = qobject_cast<QWidget *>(sender());
    emit commitData(dialog);
    emit closeEditor(dialog);
}

void KelvaCalendarDelegate::emitCloseEditor()
{
    emit closeEditor(qobject_cast<QWidget *>(sender()), QAbstractItemDelegate::RevertModelCache);
}

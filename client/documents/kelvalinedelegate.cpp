#include "documents/kelvalinedelegate.h"

#include "documents/mydoublevalidator.h"

#include <QApplication>
#include <QCompleter>
#include <QDateTime>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QStandardItemModel>
#include <QToolTip>
#include <QUrl>
#include <QValidator>

KelvaLineDelegate::KelvaLineDelegate(const QStringList &completions, QObject *parent, int maxLength,
                                     bool numeric)
    : KelvaDelegate(parent),
      m_completions(new QStandardItemModel(this)),
      m_maxLength(maxLength),
      m_numeric(numeric)
{
    setCompletor(completions);
}

KelvaDelegate *KelvaLineDelegate::clone(QWidget *parent) const
{
    QStringList completions;
    for (int row = 0; row < m_completions->rowCount(); ++row)
        completions << m_completions->item(row)->text();
    auto *copy = new KelvaLineDelegate(completions, parent, m_maxLength, m_numeric);
    copy->setDelegateColumn(delegateColumn);
    return copy;
}

void KelvaLineDelegate::setCompletor(const QStringList &completions)
{
    m_completions->clear();
    for (const QString &completion : completions)
        if (completion != numericMark)
            m_completions->appendRow(new QStandardItem(completion));
}

bool KelvaLineDelegate::isURL(const QString &text)
{
    return text.contains("://") && QUrl(text).isValid();
}

QWidget *KelvaLineDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                         const QModelIndex &index) const
{
    if (!serves(index))
        return KelvaDelegate::createEditor(parent, option, index);
    auto *line = new QLineEdit(parent);
    line->setFrame(false);
    line->setMaxLength(m_maxLength);
    auto *completer = new QCompleter(m_completions, line);
    completer->setWrapAround(true);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    line->setCompleter(completer);
    if (m_numeric)
        line->setValidator(new MyDoubleValidator(line));
    return line;
}

void KelvaLineDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *line = qobject_cast<QLineEdit *>(editor);
    if (!line || !serves(index)) {
        KelvaDelegate::setEditorData(editor, index);
        return;
    }
    QString text = index.data(Qt::DisplayRole).toString().trimmed().left(m_maxLength);
    // Stored with a ".", which would be a group separator elsewhere: 12.345 must not become 12345.
    if (m_numeric && text.count('.') == 1)
        text.replace('.', QLocale().decimalPoint());
    line->setText(text);
}

void KelvaLineDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                     const QModelIndex &index) const
{
    const auto *line = qobject_cast<QLineEdit *>(editor);
    if (!line || !serves(index)) {
        KelvaDelegate::setModelData(editor, model, index);
        return;
    }
    QString text = line->text().trimmed();
    if (line->validator() && !line->hasAcceptableInput()) {
        line->validator()->fixup(text);
        int position = 0;
        if (line->validator()->validate(text, position) != QValidator::Acceptable)
            return; // half a number, when something else than leaving the cell asks for it
    }
    if (m_numeric)
        text.remove(QLocale().groupSeparator());
    if (m_numeric &&
        QString(text).replace(QLocale().decimalPoint(), '.') == index.data().toString().trimmed())
        return; // only written in another way
    text.truncate(m_maxLength);
    if (!text.isEmpty() && m_completions->findItems(text).isEmpty())
        m_completions->appendRow(new QStandardItem(text));
    model->setData(index, text, Qt::EditRole);
}

void KelvaLineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    const QString text = index.data(Qt::DisplayRole).toString();
    if (!isURL(text)) {
        KelvaDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.text.clear();
    const QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    const QRect place = style->subElementRect(QStyle::SE_ItemViewItemText, &cell, cell.widget);
    painter->save();
    QFont font = cell.font;
    font.setUnderline(true);
    painter->setFont(font);
    const bool selected = cell.state & QStyle::State_Selected;
    painter->setPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Link));
    painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                      cell.fontMetrics.elidedText(text, cell.textElideMode, place.width()));
    painter->restore();
    paintFocus(painter, option);
}

QString KelvaLineDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    const QDateTime moment =
        m_showsLocalTime ? QDateTime::fromString(value.toString(), Qt::ISODate) : QDateTime();
    return moment.isValid() ? locale.toString(moment, QLocale::ShortFormat)
                            : KelvaDelegate::displayText(value, locale);
}

bool KelvaLineDelegate::eventFilter(QObject *editor, QEvent *event)
{
    const auto *key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event) : nullptr;
    auto *line = qobject_cast<QLineEdit *>(editor);
    // The editor stays open on half a number; it must not do so in silence.
    if (line && key && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
        !line->hasAcceptableInput())
        QToolTip::showText(line->mapToGlobal(line->rect().bottomLeft()),
                           tr("This is not a whole number or a "
                              "decimal number with up to 4 decimals."),
                           line);
    return KelvaDelegate::eventFilter(editor, event);
}

bool KelvaLineDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                    const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QString text = index.data(Qt::DisplayRole).toString();
    const bool mouse = event->type() == QEvent::MouseButtonPress ||
                       event->type() == QEvent::MouseButtonRelease ||
                       event->type() == QEvent::MouseButtonDblClick;
    if (mouse && (static_cast<QMouseEvent *>(event)->modifiers() & Qt::ControlModifier) && isURL(text)) {
        if (event->type() == QEvent::MouseButtonDblClick)
            QDesktopServices::openUrl(QUrl::fromUserInput(text));
        return true;
    }
    return KelvaDelegate::editorEvent(event, model, option, index);
}

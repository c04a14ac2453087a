#include "documents/valuecombobox.h"

#include <QKeyEvent>
#include <QListView>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStylePainter>
#include <QTimer>

ValueComboBox::ValueComboBox(QWidget *parent, bool openList)
    : QComboBox(parent),
      m_openList(openList),
      m_listIsTheEditor(openList)
{
    setView(new QListView(this));
    view()->installEventFilter(this); // asked before the list's own
}

bool ValueComboBox::eventFilter(QObject *watched, QEvent *event)
{
    const bool escape =
        event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
    if (!m_listIsTheEditor || watched != view() || !escape)
        return QComboBox::eventFilter(watched, event);
    hidePopup();
    emit givenUp();
    return true;
}

void ValueComboBox::startWith(int index, const QString &text)
{
    const QSignalBlocker blocker(this);
    m_start = index;
    m_startText = text;
    setCurrentIndex(index);
}

void ValueComboBox::showEvent(QShowEvent *event)
{
    QComboBox::showEvent(event);
    openListOnce();
}

void ValueComboBox::focusInEvent(QFocusEvent *event)
{
    QComboBox::focusInEvent(event);
    openListOnce();
}

void ValueComboBox::paintEvent(QPaintEvent *)
{
    // Not every style draws the text that a box has for no choice.
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (currentIndex() < 0)
        option.currentText = m_startText;
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void ValueComboBox::openListOnce()
{
    if (!m_openList)
        return;
    m_openList = false;
    // The box is on its way to the screen; its list opens where it will be.
    QTimer::singleShot(0, this, SLOT(doShowPopup()));
}

void ValueComboBox::doShowPopup()
{
    if (!isVisible())
        return;
    // A narrow column must not cut the values off.
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + view()->verticalScrollBar()->sizeHint().width());
    showPopup();
}

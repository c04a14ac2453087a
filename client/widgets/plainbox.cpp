#include "widgets/plainbox.h"

#include "widgets/waitcursor.h"

#include <QApplication>
#include <QPushButton>

namespace {

constexpr int mostLines = 8;
constexpr int mostCharacters = 600;

/// Before the window is there the box stands over what is: the splash, or else in the middle of the screen.
QWidget *visibleParent(QWidget *parent)
{
    if (!parent || parent->window()->isVisible())
        return parent;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows)
        if (window->isVisible() && window->windowType() != Qt::ToolTip && window->windowType() != Qt::Popup)
            return window;
    return nullptr;
}

QMessageBox::StandardButton ask(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                const QString &text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton preset = QMessageBox::NoButton)
{
    const SuspendedWaitCursor pointer;
    const QString beginning = plainbox::beginningOf(text);
    QMessageBox box(icon, title, beginning, buttons, visibleParent(parent));
    box.setTextFormat(Qt::PlainText);
    if (beginning != text)
        box.setDetailedText(text);
    box.setDefaultButton(preset);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

QString plainbox::beginningOf(const QString &text)
{
    const QString lines = text.section('\n', 0, mostLines - 1).left(mostCharacters);
    return lines.size() == text.size() ? text : lines.trimmed() + QChar(0x2026);
}

QMessageBox::StandardButton plainbox::information(QWidget *parent, const QString &title, const QString &text)
{
    return ask(QMessageBox::Information, parent, title, text, QMessageBox::Ok);
}

QMessageBox::StandardButton plainbox::warning(QWidget *parent, const QString &title, const QString &text)
{
    return ask(QMessageBox::Warning, parent, title, text, QMessageBox::Ok);
}

QMessageBox::StandardButton plainbox::critical(QWidget *parent, const QString &title, const QString &text)
{
    return ask(QMessageBox::Critical, parent, title, text, QMessageBox::Ok);
}

QMessageBox::StandardButton plainbox::question(QWidget *parent, const QString &title, const QString &text,
                                               QMessageBox::StandardButtons buttons,
                                               QMessageBox::StandardButton preset)
{
    return ask(QMessageBox::Question, parent, title, text, buttons, preset);
}

bool plainbox::failureWithOffer(QWidget *parent, const QString &title, const QString &text,
                                const QString &hint, const QString &offer)
{
    const SuspendedWaitCursor pointer;
    QMessageBox box(QMessageBox::Critical, title, beginningOf(text), QMessageBox::Ok, visibleParent(parent));
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(hint);
    const QPushButton *way = box.addButton(offer, QMessageBox::AcceptRole);
    box.exec();
    return box.clickedButton() == way;
}

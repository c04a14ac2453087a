#include "server/plainbox.h"

#include "server/waitcursor.h"

namespace {

QMessageBox::StandardButton ask(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                const QString &text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton preset = QMessageBox::NoButton)
{
    const SuspendedWaitCursor pointer;
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(preset);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

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

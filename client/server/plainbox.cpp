#include "server/plainbox.h"

#include <QCursor>
#include <QGuiApplication>
#include <QList>

namespace {

QMessageBox::StandardButton ask(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                const QString &text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton preset = QMessageBox::NoButton)
{
    QList<QCursor> working; // one for each operation within another
    while (const QCursor *cursor = QGuiApplication::overrideCursor()) {
        working.prepend(*cursor);
        QGuiApplication::restoreOverrideCursor();
    }
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(preset);
    const int answer = box.exec();
    for (const QCursor &cursor : qAsConst(working))
        QGuiApplication::setOverrideCursor(cursor);
    return static_cast<QMessageBox::StandardButton>(answer);
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

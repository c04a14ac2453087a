#pragma once

#include <QMessageBox>

/// Message boxes whose texts may hold what a user, a file name or the service says: nothing in them is taken
/// as HTML. They show the plain pointer also while the program works.
namespace plainbox {

/// What of a text a box shows: all of it, or some lines and an ellipsis; the whole is behind its button then.
QString beginningOf(const QString &text);

QMessageBox::StandardButton information(QWidget *parent, const QString &title, const QString &text);
QMessageBox::StandardButton warning(QWidget *parent, const QString &title, const QString &text);
QMessageBox::StandardButton critical(QWidget *parent, const QString &title, const QString &text);
/// The answer, that of the escape key included.
QMessageBox::StandardButton question(QWidget *parent, const QString &title, const QString &text,
                                     QMessageBox::StandardButtons buttons = QMessageBox::Yes |
                                                                            QMessageBox::No,
                                     QMessageBox::StandardButton preset = QMessageBox::NoButton);

/// A failure with a hint at the way out below it. True when the user takes the offer.
bool failureWithOffer(QWidget *parent, const QString &title, const QString &text, const QString &hint,
                      const QString &offer);

} // namespace plainbox

#pragma once

#include <QMessageBox>

/// A question that the user can silence for good.
class kelvaMessageBoxWithCheckBox final
{
public:
    /// The pressed button, or defaultButton without asking when the user has ticked "Do not show this dialog
    /// next time." before; the tick is kept under key.
    static int question(QWidget *parent, const QString &title, const QString &text, const QString &key,
                        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton);
};

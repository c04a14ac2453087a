#include "widgets/kelvamessageboxwithcheckbox.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QSettings>

int kelvaMessageBoxWithCheckBox::question(QWidget *parent, const QString &title, const QString &text,
                                          const QString &key, QMessageBox::StandardButtons buttons,
                                          QMessageBox::StandardButton defaultButton)
{
    QSettings settings(QCoreApplication::organizationName(), "CheckBoxMessageBox");
    if (settings.value(key, false).toBool())
        return defaultButton;
    QMessageBox box(QMessageBox::Question, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(defaultButton);
    auto *silence = new QCheckBox(
        QCoreApplication::translate("kelvaMessageBoxWithCheckBox", "Do not show this dialog next time."),
        &box);
    auto *grid = qobject_cast<QGridLayout *>(box.layout());
    if (grid)
        grid->addWidget(silence, grid->rowCount(), 0, 1, grid->columnCount());
    const int answer = box.exec();
    settings.setValue(key, silence->isChecked());
    settings.sync();
    return answer;
}

#include "documents/mydoublevalidator.h"

MyDoubleValidator::MyDoubleValidator(QObject *parent) : QDoubleValidator(-1e53, 1e53, 4, parent)
{
    setNotation(QDoubleValidator::StandardNotation);
}

QValidator::State MyDoubleValidator::validate(QString &text, int &position) const
{
    return text.isEmpty() ? Acceptable : QDoubleValidator::validate(text, position);
}

void MyDoubleValidator::fixup(QString &text) const
{
    const QChar point = locale().decimalPoint();
    const QChar other = point == '.' ? ',' : '.';
    if (text.count(other) != 1 || text.contains(point))
        return;
    QString fixed = QString(text).replace(other, point);
    int position = 0;
    if (validate(fixed, position) == Acceptable)
        text = fixed;
}

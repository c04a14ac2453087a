#include "documents/mydoublevalidator.h"

MyDoubleValidator::MyDoubleValidator(QObject *parent) : QDoubleValidator(-1e53, 1e53, 4, parent)
{
    setNotation(QDoubleValidator::StandardNotation);
}

QValidator::State MyDoubleValidator::validate(QString &text, int &position) const
{
    if (text.isEmpty())
        return Acceptable;
    // Nothing that is typed is dropped: "1e3" would become 13, and "-" vanish. It is refused as a whole.
    const State state = qMax(Intermediate, QDoubleValidator::validate(text, position));
    // No thousands begin with a nought: "0.123" is meant as a decimal where the point separates thousands.
    const int separator = text.indexOf(locale().groupSeparator());
    const QString first = text.left(separator).remove('-');
    return state == Acceptable && separator >= 0 && first == QLatin1String("0") ? Intermediate : state;
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

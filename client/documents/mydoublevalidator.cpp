#include "documents/mydoublevalidator.h"

MyDoubleValidator::MyDoubleValidator(QObject *parent) : QDoubleValidator(-1e53, 1e53, 4, parent)
{
    setNotation(QDoubleValidator::StandardNotation);
}

QValidator::State MyDoubleValidator::validate(QString &text, int &position) const
{
    return text.isEmpty() ? Acceptable : QDoubleValidator::validate(text, position);
}

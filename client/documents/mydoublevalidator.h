#pragma once

#include <QDoubleValidator>

/// Numbers with up to four decimals, and nothing at all, so that a number can be taken away again.
class MyDoubleValidator final : public QDoubleValidator
{
    Q_OBJECT

public:
    explicit MyDoubleValidator(QObject *parent);

    State validate(QString &text, int &position) const override;
};

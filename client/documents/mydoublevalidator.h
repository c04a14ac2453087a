#pragma once

#include <QDoubleValidator>

/// Numbers with up to four decimals, and nothing at all, so that a number can be taken away again.
class MyDoubleValidator final : public QDoubleValidator
{
    Q_OBJECT

public:
    explicit MyDoubleValidator(QObject *parent);

    State validate(QString &text, int &position) const override;
    /// "12,5" where the decimal point is ".", and the other way round.
    void fixup(QString &text) const override;
};

#pragma once

#include <QObject>

namespace kelva {

/// Turns the signals that ask a program to end into a Qt signal. One object per process.
class TerminationSignals final : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

signals:
    void requested();
};

} // namespace kelva

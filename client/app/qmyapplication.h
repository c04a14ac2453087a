#pragma once

#include <QApplication>

/// The application object. An exception that leaves an event handler is dropped, and the event loop goes on.
class QMyApplication final : public QApplication
{
    Q_OBJECT

public:
    QMyApplication(int &argc, char **argv);
    ~QMyApplication() override;

    bool notify(QObject *receiver, QEvent *event) override;
};

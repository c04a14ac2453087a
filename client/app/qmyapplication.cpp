#include "app/qmyapplication.h"

QMyApplication::QMyApplication(int &argc, char **argv) : QApplication(argc, argv) {}

QMyApplication::~QMyApplication() = default;

bool QMyApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        return true;
    }
}

#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QtConcurrent>

namespace kelva {

/// Does the work in another thread and then calls done with its result in this one, the main thread, unless
/// the receiver is gone.
template<typename Work, typename Done>
void runAside(QObject *receiver, Work work, Done done)
{
    QtConcurrent::run([guard = QPointer<QObject>(receiver), work, done] {
        const auto result = work();
        const auto deliver = [guard, result, done] {
            if (guard)
                done(result);
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), deliver, Qt::QueuedConnection);
    });
}

} // namespace kelva

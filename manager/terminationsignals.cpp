#include "manager/terminationsignals.h"

#include <QSocketNotifier>

#include <csignal>

#include <sys/eventfd.h>
#include <unistd.h>

namespace kelva {
namespace {

int wakeUp = -1;

void noteSignal(int)
{
    const int before = errno;
    const quint64 one = 1;
    const auto written = ::write(wakeUp, &one, sizeof one);
    Q_UNUSED(written)
    errno = before;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent)
{
    wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    auto *notifier = new QSocketNotifier(wakeUp, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        quint64 count = 0;
        if (::read(wakeUp, &count, sizeof count) == sizeof count)
            emit requested();
    });
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction present = {};
        ::sigaction(number, nullptr, &present);
        // Whoever starts it so that it outlives a terminal has the signal ignored.
        if (present.sa_handler == SIG_IGN)
            continue;
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        ::sigaction(number, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals()
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        ::signal(number, SIG_IGN);
    ::close(wakeUp);
    wakeUp = -1;
}

} // namespace kelva

#include "bench/measure.h"

#include <QElapsedTimer>
#include <QTextStream>
#include <QVector>

#include <algorithm>

namespace {

double medianMs(QVector<qint64> times)
{
    std::sort(times.begin(), times.end());
    return double(times.at(times.size() / 2)) / 1e6;
}

qint64 timed(const std::function<void()> &before, const std::function<void()> &work)
{
    if (before)
        before();
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.nsecsElapsed();
}

} // namespace

void compare(const Comparison &comparison, int runs)
{
    // Both once without counting, so that neither pays for the cold cache.
    timed(comparison.before, comparison.product);
    timed(comparison.before, comparison.floor);
    QVector<qint64> products;
    QVector<qint64> floors;
    for (int i = 0; i < runs; ++i) {
        products << timed(comparison.before, comparison.product);
        floors << timed(comparison.before, comparison.floor);
    }
    const double product = medianMs(products);
    const double floor = medianMs(floors);
    QTextStream(stdout) << QString("%1 product %2 ms, floor %3 ms, ratio %4 (aim %5)\n")
                               .arg(comparison.what, -58)
                               .arg(product, 8, 'f', 2)
                               .arg(floor, 8, 'f', 2)
                               .arg(product / floor, 5, 'f', 2)
                               .arg(comparison.aim, 0, 'f', 1);
}

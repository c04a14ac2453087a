#include "server/transferprogress.h"

namespace {

QString twoDigits(qint64 number)
{
    return QString("%1").arg(number, 2, 10, QChar('0'));
}

/// Hours, minutes and seconds.
QString clockText(qint64 seconds)
{
    return twoDigits(seconds / 3600) + ':' + twoDigits(seconds / 60 % 60) + ':' + twoDigits(seconds % 60);
}

} // namespace

TransferProgress transferProgress(qint64 current, qint64 total, qint64 elapsedMs)
{
    TransferProgress progress;
    progress.percent = int(float(current) / float(total) * 100);
    const double kilobytes = double(current) / (double(elapsedMs) / 1000.0) / 1024;
    const double megabytes = kilobytes / 1024;
    const bool large = megabytes > 0.0;
    qint64 elapsed = 0;
    qint64 remaining = 0;
    if (progress.percent > 0) {
        elapsed = elapsedMs / 1000;
        remaining = elapsed * 100 / progress.percent - elapsed;
    }
    progress.text = QString("%1 %2 / sec\r\nVerstrichen: %3 noch %4 ")
                        .arg(QString::number(large ? megabytes : kilobytes, 'g', 2),
                             large ? "MBytes" : "Kbytes", clockText(elapsed), clockText(remaining));
    return progress;
}

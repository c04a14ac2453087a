#pragma once

#include <QString>

/// How a transfer goes, for the progress dialog.
struct TransferProgress
{
    int percent = 0;
    /// Speed, and elapsed and remaining time, in two lines. Not translated.
    QString text;
};

/// Sizes in bytes; total is above 0, elapsedMs is.
TransferProgress transferProgress(qint64 current, qint64 total, qint64 elapsedMs);

#pragma once

#include <QIcon>
#include <QString>

/// What a cell shows in place of the key that it holds.
struct CellFace
{
    QString text;
    QIcon icon;
};

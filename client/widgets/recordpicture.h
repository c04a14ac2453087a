#pragma once

#include <QByteArray>
#include <QPixmap>

/// The picture of a folder, status or type as it travels with its record. Null for what is no picture and for
/// one of more than 1024 pixels a side: a few bytes can claim any size.
QPixmap recordPicture(const QByteArray &bytes);

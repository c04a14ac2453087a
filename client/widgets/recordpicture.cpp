#include "widgets/recordpicture.h"

#include <QBuffer>
#include <QImageReader>

QPixmap recordPicture(const QByteArray &bytes)
{
    constexpr int longestSide = 1024;
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > longestSide || size.height() > longestSide)
        return QPixmap();
    return QPixmap::fromImageReader(&reader);
}

#include "documents/rowicons.h"

#include "documents/documentrow.h"
#include "documents/kelvaiconprovider.h"

#include <QPainter>

namespace {

constexpr int iconSize = 32;
/// A file without a suffix has a key of its own; this many are enough.
constexpr int mostIcons = 1000;

/// Files of one type share an icon; the suffix stands for the type.
QString fileKey(const QString &fileName)
{
    if (fileName.isEmpty())
        return QStringLiteral("green");
    const int dot = fileName.lastIndexOf('.');
    return QStringLiteral("file:") + (dot > 0 ? fileName.mid(dot).toLower() : fileName);
}

void drawMark(QPainter &painter, const char *path, const QPoint &position, int size)
{
    QIcon(path).paint(&painter, QRect(position, QSize(size, size)));
}

} // namespace

const QIcon &RowIcons::icon(const DocumentRowLook &look, const QString &fileName)
{
    const QString page = look.redPage ? QStringLiteral("red") : fileKey(fileName);
    const QString key =
        page + '/' + QString::number(int(look.clock)) + (look.note ? "N" : "") + (look.key ? "K" : "");
    const auto known = m_composed.constFind(key);
    if (known != m_composed.constEnd())
        return *known;
    if (m_composed.size() >= mostIcons)
        m_composed.clear();
    return *m_composed.insert(key, compose(look, basePicture(look, page, fileName)));
}

QIcon RowIcons::basePicture(const DocumentRowLook &look, const QString &page, const QString &fileName) const
{
    if (look.redPage)
        return QIcon(":/icons/page_red.png");
    if (page != "green") {
        const QIcon file = kelvaIconProvider::instance()->fileIcon(fileName);
        if (!file.isNull())
            return file;
    }
    return QIcon(":/icons/page_green.png");
}

QIcon RowIcons::compose(const DocumentRowLook &look, const QIcon &base) const
{
    using Clock = DocumentRowLook::Clock;
    QPixmap picture(QSize(iconSize, iconSize) * m_ratio);
    picture.setDevicePixelRatio(m_ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    base.paint(&painter, QRect(0, 0, iconSize, iconSize));
    static const QHash<int, const char *> clocks{{int(Clock::Red), ":/icons/clock_red.png"},
                                                 {int(Clock::Yellow), ":/icons/clock_yellow.png"},
                                                 {int(Clock::Green), ":/icons/clock_green.png"},
                                                 {int(Clock::Plain), ":/icons/clock.png"}};
    if (look.clock != Clock::None)
        drawMark(painter, clocks.value(int(look.clock)), QPoint(0, 0), iconSize);
    if (look.note)
        drawMark(painter, ":/icons/notizen_icon_24x24.png", QPoint(10, -8), 24);
    if (look.key)
        drawMark(painter, ":/icons/my_page_key.png", QPoint(0, 0), iconSize);
    painter.end();
    return QIcon(picture);
}

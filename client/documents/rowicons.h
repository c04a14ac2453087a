#pragma once

#include <QHash>
#include <QIcon>

struct DocumentRowLook;

/// The pictures of document rows. Each combination of page, clock, note and key is painted once.
class RowIcons
{
public:
    explicit RowIcons(qreal devicePixelRatio) : m_ratio(devicePixelRatio) {}

    qreal devicePixelRatio() const { return m_ratio; }
    const QIcon &icon(const DocumentRowLook &look, const QString &fileName);

private:
    QIcon basePicture(const DocumentRowLook &look, const QString &page, const QString &fileName) const;
    QIcon compose(const DocumentRowLook &look, const QIcon &base) const;

    const qreal m_ratio;
    QHash<QString, QIcon> m_composed;
};

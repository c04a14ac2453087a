#pragma once

#include <QHash>
#include <QVector>

#include <optional>

namespace kelva {

/// The attributes, by id, behind the fields of the records that a session has handed out. A record that comes
/// back is read by the layout it went out with, whatever columns were added or taken away in between.
class RecordLayouts
{
public:
    using Layout = QVector<qint64>;

    void noteList(const QVector<qint64> &classificationIds, const Layout &layout)
    {
        // Only what was handed out lately comes back; the list at hand is kept whatever its length.
        if (m_byRecord.size() + classificationIds.size() > longMemory)
            m_byRecord.clear();
        m_byRecord.reserve(m_byRecord.size() + classificationIds.size());
        for (const qint64 id : classificationIds)
            m_byRecord.insert(id, layout);
        m_list = layout;
    }
    void noteRecord(qint64 classificationId, const Layout &layout)
    {
        m_byRecord.insert(classificationId, layout);
    }

    /// Of the last list; none before the first one.
    const std::optional<Layout> &ofList() const { return m_list; }
    std::optional<Layout> ofRecord(qint64 classificationId) const
    {
        const auto found = m_byRecord.constFind(classificationId);
        return found == m_byRecord.cend() ? std::nullopt : std::optional<Layout>(*found);
    }

private:
    static constexpr int longMemory = 200'000;

    QHash<qint64, Layout> m_byRecord;
    std::optional<Layout> m_list;
};

} // namespace kelva

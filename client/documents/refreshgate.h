#pragma once

#include <QObject>
#include <QQueue>
#include <QString>
#include <QStringList>

#include <optional>

/// What was entered into a cell of the document table. Everything that its way to the archive needs stands
/// here: the cell itself may be gone by then.
struct CellEdit
{
    int column = -1;
    QString docId; ///< classification id
    QString text;
    QString rawValue;
    bool fromTable = false; ///< the table itself reported it, so that it gets the focus back
};

/// Keeps refreshes, reloads and edits of the document list apart. Each holds the gate while it runs and may
/// let events run meanwhile; what is asked for in between waits, and opened() says when its turn has come.
/// Edits always wait: when they are reported, the table's own code is still on the stack and must not see its
/// rows replaced.
class RefreshGate : public QObject
{
    Q_OBJECT

public:
    struct Refresh
    {
        QStringList docIds; ///< to select; of the last one that named some
        bool resetPlugins = false;
    };

    /// Closes the gate for as long as it lives.
    class Hold
    {
    public:
        explicit Hold(RefreshGate &gate) : m_gate(gate) { ++m_gate.m_holds; }
        ~Hold() { m_gate.release(); }
        Q_DISABLE_COPY(Hold)

    private:
        RefreshGate &m_gate;
    };

    using QObject::QObject;

    bool isHeld() const { return m_holds > 0; }
    /// A refresh or a reload may run now.
    bool isFree() const { return m_holds == 0 && m_edits.isEmpty(); }

    void enter(const CellEdit &edit);
    void missRefresh(const QStringList &docIds, bool resetPlugins);
    /// Its own refresh makes up for a missed one, too, unless that has documents to select.
    void missReload();

    /// In the order in which they were entered; nothing when there is none.
    std::optional<CellEdit> takeEdit();
    std::optional<Refresh> takeRefresh();
    bool takeReload();

signals:
    /// Something waits and nothing holds the gate. Only ever emitted straight from the event loop.
    void opened();

private slots:
    void announce();

private:
    bool isWaited() const { return !m_edits.isEmpty() || m_refresh || m_reload; }
    void release();
    void schedule();

    int m_holds = 0;
    bool m_scheduled = false;
    QQueue<CellEdit> m_edits;
    std::optional<Refresh> m_refresh;
    bool m_reload = false;
};

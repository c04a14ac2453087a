#pragma once

#include "documents/cellface.h"

#include <QMap>
#include <QPointer>

#include <memory>

class KelvaComboDelegate;
class KelvaDelegate;
class KelvaDocTree;
class KelvaInfoView;
struct WorkbenchData;

/// The delegates of the document table's columns, made from the session's vocabulary: their only owner. They
/// are lent to the search line and the extended search, which clone them, and say how a stored key is shown.
class ColumnEditors
{
public:
    /// The table is lent; it may be gone before this is.
    explicit ColumnEditors(KelvaInfoView *table);
    ~ColumnEditors();
    Q_DISABLE_COPY(ColumnEditors)

    /// completions: the descriptions in use. A text column that stays one keeps its delegate.
    void rebuild(const WorkbenchData &workbench, const QStringList &completions);
    /// Takes every delegate but those of text attributes off the table and gives it up.
    void release();

    /// Null for a column without one, and for the numbers below 0.
    KelvaDelegate *forColumn(int column) const;
    /// Name and picture of the entry behind a key of a main folder, status, type or folder column.
    CellFace display(int column, const QString &key) const;

    /// The table shows attributes that the vocabulary does not know yet: it paints them as plain text.
    void setAttributesDetached(bool detached);

private:
    void makeFixed(const WorkbenchData &workbench, const QStringList &completions);
    void makeFolders(const WorkbenchData &workbench);
    void makeAttributes(const WorkbenchData &workbench);
    void makeLine(int column, QStringList values);
    void install(int column, KelvaDelegate *delegate);
    void drop(int column);
    void attach(int column, KelvaDelegate *delegate);

    QPointer<KelvaInfoView> m_table;
    QMap<int, KelvaDelegate *> m_delegates;
    QMap<int, const KelvaComboDelegate *> m_choices; ///< those of m_delegates that know names
    KelvaDocTree *m_folders = nullptr;               ///< behind the folder column
    bool m_detached = false;
};

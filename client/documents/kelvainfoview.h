#pragma once

#include "documents/cellface.h"

#include <QHash>
#include <QMap>
#include <QStringList>
#include <QTableView>
#include <QVector>

#include <functional>
#include <memory>

class ClassifyInterface;
class KelvaArchiveWorker;
class MySortFilterProxyModel;
class QInfoViewModel;
class QStandardItem;
class RowIcons;

/// The document table. Rows and columns of its operations are the model's unless they say proxy; the
/// selection model and what Qt emits stay in terms of the proxy.
class KelvaInfoView final : public QTableView
{
    Q_OBJECT

public:
    explicit KelvaInfoView(QWidget *parent = nullptr);
    ~KelvaInfoView() override;

    /// Lent, not owned.
    void setArchiveClient(KelvaArchiveWorker *worker, ClassifyInterface *client);
    /// Prefix of the settings file that keeps the header, one for each profile.
    void setProfileIdentifier(const QString &identifier) { profileIdentifier = identifier; }
    /// A read-only session: no cell is editable and every row shows it.
    void setNoEdit(bool readOnly) { noEdit = readOnly; }
    /// The same for the archive's own attributes alone, at the next load.
    void setAttributesReadOnly(bool readOnly) { m_attributesReadOnly = readOnly; }
    bool areAttributesReadOnly() const { return m_attributesReadOnly; }

    /// How the key in a cell of a main folder, status, type or folder is shown. Without it keys show
    /// themselves.
    using CellFaces = std::function<CellFace(int column, const QString &key)>;
    void setCellFaces(CellFaces faces) { m_faces = std::move(faces); }

    /// Fills the table. docs: header and rows of getDocuments(). infos: entries of getDocumentInfo(), for the
    /// icons. retention: document type to "years;months;days". readDocs: archive ids that the user has
    /// opened, or null for no unread marks.
    void loadDocuments(QStringList docs, const QStringList &infos, bool trash,
                       QMap<QString, QString> retention, QStringList *readDocs);

    /// What is painted in the middle of the table while it has no rows.
    void setEmptyText(const QString &text) { m_emptyText = text; }

    QInfoViewModel *getModel() const { return m_model; }
    MySortFilterProxyModel *getProxyModel() const { return m_proxy; }
    int rowCount() const;
    /// Item behind a proxy row.
    QStandardItem *item(int proxyRow, int column) const;
    QStandardItem *itemFromSource(int row, int column) const;
    /// Hides the base function, which is not virtual: the model's index, not the proxy's.
    QModelIndex currentIndex() const;
    QModelIndexList selectedIndexes() const override;
    QItemSelection getSelection() const;
    void setSelection(const QItemSelection &selection);
    using QTableView::edit;
    using QTableView::hideColumn;
    using QTableView::setSelection;

    /// Folder oid of the first selected row, or an empty text.
    QString getCurrentFolder() const;
    /// Classification ids of the selected rows.
    QStringList getCurrentDocIds(bool onlyWritable, bool notDeleted) const;
    /// Archive ids of the selected rows.
    QStringList getCurrentRealDocIds(bool onlyWritable) const;
    /// Descriptions of the selected rows by archive id.
    QMap<QString, QString> getCurrentBemerkungen(bool onlyWritable) const;

    /// Look-ups by classification id; an unknown one gives an empty answer.
    QList<QStandardItem *> findItemsByData(const QString &value, int role, Qt::MatchFlags flags,
                                           int column) const;
    bool isReadOnly(const QString &docId) const;
    QString getVersion(const QString &docId) const;
    /// Proxy rows. Called from several threads at once while the main thread waits: reads only, and needs the
    /// proxy's mapping to exist (ask rowCount() of the proxy first).
    QList<int> getItemRows(const QString &docId) const;

    /// Hands an open editor's value on, as leaving the cell does, so that a refresh does not throw it away.
    void finishEditing();

    bool getAutoResize() const { return autoResize; }
    void setAutoResize(bool automatic);
    /// After each load, when the cells have their final texts.
    void doResizeColumnsToContents();
    void resetHeaders();
    /// False when this profile has no stored header yet.
    bool restoreHeader();

public slots:
    /// The column menu of the header.
    void hideColumn();
    void resizeColumnToContentsFlag(bool automatic);
    /// Shows all columns.
    void reloadAll();
    void saveHeaderState();

signals:
    void redrawMain();
    void gotDragEnterEvent(QDragEnterEvent *event);
    void gotDragMoveEvent(QDragMoveEvent *event);
    void gotDropEvent(QDropEvent *event);

protected:
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void commitData(QWidget *editor) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void loadActionMenu();
    void startEditing(const QKeyEvent &key);
    void fillRows(const QStringList &docs, int columns, const QMap<QString, QString> &fileNames, bool trash,
                  const QMap<QString, QString> &retention, const QStringList *readDocs);
    QString settingsApplication() const;
    int visibleColumns() const;

    QHash<QString, QVector<int>> m_rowsOfDocument; ///< by classification id, in the order of the rows
    QInfoViewModel *m_model;
    MySortFilterProxyModel *m_proxy;
    bool autoResize = false;
    bool noEdit = true;
    bool m_attributesReadOnly = false;
    CellFaces m_faces;
    QString m_emptyText;
    bool m_committing = false;
    bool m_headerKnown =
        true; ///< the profile's header was stored; otherwise widths follow the first contents
    QAction *m_hideAction = nullptr;
    QAction *m_resizeAction = nullptr;
    QAction *m_autoResizeAction = nullptr;
    QAction *m_showAllAction = nullptr;
    KelvaArchiveWorker *archiveClient = nullptr;
    ClassifyInterface *classifyClient = nullptr;
    QString profileIdentifier;
    std::unique_ptr<RowIcons> m_icons;
};

#pragma once

#include <QListWidget>

/// The status values; the current one restricts the document list. itemrole::rawValue holds the status id,
/// "-1" for all.
class KelvaStatusListWidget final : public QListWidget
{
    Q_OBJECT

public:
    explicit KelvaStatusListWidget(QWidget *parent = nullptr);

    /// Fills the list with "All" and one entry for each record of id and name; pictures are PNG data,
    /// parallel to the records. Emits nothing.
    void setStatusList(const QStringList &records, const QList<QByteArray> &pictures);
    /// Id of the current entry; empty when there is none.
    QString currentStatus() const;
    QStringList mimeTypes() const override;

signals:
    /// Documents were dropped on a status; the second argument is "0." and its id, which lets it go the way
    /// of a folder.
    void updateStatus(QStringList docIds, QString status);

protected:
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QListWidgetItem *dropTarget(const QDropEvent *event) const;
};

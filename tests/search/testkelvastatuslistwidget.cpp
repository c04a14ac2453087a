#include "support/kelvatest.h"

#include "contract/recordformat.h"
#include "documents/documentmime.h"
#include "folders/kelvadoctree.h"
#include "search/kelvastatuslistwidget.h"

#include <QDataStream>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QSignalSpy>

static QByteArray stream(const QStringList &ids)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    for (const QString &id : ids)
        out << id;
    return bytes;
}

class TestKelvaStatusListWidget : public QObject
{
    Q_OBJECT

private slots:
    void drops()
    {
        const QString own = QString("x-norbant-kelvadocument%1").arg(QCoreApplication::applicationPid());
        const QByteArray two = stream({"17", "4"});
        QStringList many;
        for (int i = 0; i <= 10000; ++i)
            many << QString::number(i);
        // "status ids"; empty when the drop is refused
        const std::tuple<QString, QByteArray, int, QString> table[] = {
            {own, two, 1, "0.1 17,4"},
            {own, two, 2, "0.42 17,4"},
            {own, stream({"4", "17", "4"}), 1, "0.1 4,17"},
            {own, two, 0, ""},
            {own, two, -1, ""},
            {QString("x-norbant-kelvadocument%1").arg(QCoreApplication::applicationPid() + 1), two, 1, ""},
            {"x-norbant-kelvadocument", two, 1, ""},
            {"text/plain", "17", 1, ""},
            {own, QByteArray(), 1, ""},
            {own, two.chopped(1), 1, ""},
            {own, two + 'x', 1, ""},
            {own, QByteArray::fromHex("7ffffffe003100320033"), 1, ""}, // a length of 2 GB
            {own, QByteArray::fromHex("ffffffff"), 1, ""},             // a null text
            {own, stream({""}), 1, ""},
            {own, stream({"17", "4) OR (1=1"}), 1, ""},
            {own, stream({QString(QChar(0x0661))}), 1, ""}, // a digit of another script
            {own, stream({"1/"}), 1, ""},                   // before "0" and behind "9"
            {own, stream({":1"}), 1, ""},
            {own, stream({QString(18, '9')}), 1, "0.1 " + QString(18, '9')},
            {own, stream({QString(19, '1')}), 1, ""},
            {own, stream(many), 1, ""},
        };
        for (const auto &[format, bytes, row, outcome] : table)
            drop(format, bytes, row, outcome);
    }

private:
    void drop(const QString &format, const QByteArray &bytes, int row, const QString &outcome)
    {
        KelvaStatusListWidget list;
        list.setStatusList({QString("1") + recordformat::fieldSeparator + "Open",
                            QString("42") + recordformat::fieldSeparator + "Done"},
                           {});
        list.resize(200, 300);
        list.show();
        QStringList told;
        connect(&list, &KelvaStatusListWidget::updateStatus, this,
                [&](const QStringList &ids, const QString &status) { told << status + ' ' + ids.join(','); });
        QMimeData data;
        data.setData(format, bytes);
        const QPoint place = row < 0 ? QPoint(50, 290) : list.visualItemRect(list.item(row)).center();
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list.viewport(), &enter);
        QDragMoveEvent move(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list.viewport(), &move);
        // While dragging only the format is known.
        QCOMPARE(move.isAccepted(), row > 0 && format == documentmime::type());
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list.viewport(), &drop);
        QCOMPARE(told.join('|'), outcome);
        QCOMPARE(drop.isAccepted(), !outcome.isEmpty());

        // A folder takes the same.
        KelvaDocTree tree("Folders", true, QString(), QString(), nullptr);
        QSignalSpy folders(&tree, SIGNAL(newDocumentFolders(QStringList, QString)));
        tree.dropMimeData(&data, Qt::CopyAction, -1, -1, tree.index(0, 0));
        const QString ids = folders.isEmpty() ? QString() : folders.first().first().toStringList().join(',');
        if (row > 0)
            QCOMPARE(ids, outcome.section(' ', 1));
    }
};

KELVA_TEST(TestKelvaStatusListWidget)
#include "testkelvastatuslistwidget.moc"

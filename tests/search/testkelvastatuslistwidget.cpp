#include "support/kelvatest.h"

#include "documents/documentmime.h"
#include "folders/kelvadoctree.h"
#include "search/kelvastatuslistwidget.h"
#include "contract/recordformat.h"

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
    void drops_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("outcome"); // "status ids"; empty when the drop is refused
        const QString own = QString("x-norbant-kelvadocument%1").arg(QCoreApplication::applicationPid());
        const QByteArray two = stream({"17", "4"});
        kelvatest::row("on a status", own, two, 1, "0.1 17,4");
        kelvatest::row("on another", own, two, 2, "0.42 17,4");
        kelvatest::row("a document twice", own, stream({"4", "17", "4"}), 1, "0.1 4,17");
        kelvatest::row("on all statuses", own, two, 0, "");
        kelvatest::row("below the entries", own, two, -1, "");
        const QString foreign =
            QString("x-norbant-kelvadocument%1").arg(QCoreApplication::applicationPid() + 1);
        kelvatest::row("from another process", foreign, two, 1, "");
        kelvatest::row("of no process", QString("x-norbant-kelvadocument"), two, 1, "");
        kelvatest::row("a text", QString("text/plain"), QByteArray("17"), 1, "");
        kelvatest::row("no documents", own, QByteArray(), 1, "");
        kelvatest::row("cut off", own, two.chopped(1), 1, "");
        kelvatest::row("a rest of one byte", own, two + 'x', 1, "");
        kelvatest::row("a length of 2 GB", own, QByteArray::fromHex("7ffffffe003100320033"), 1, "");
        kelvatest::row("a null text", own, QByteArray::fromHex("ffffffff"), 1, "");
        kelvatest::row("a condition for an id", own, stream({"17", "4) OR (1=1"}), 1, "");
        kelvatest::row("digits of another script", own, stream({QString(QChar(0x0661))}), 1, "");
        kelvatest::row("a number too long", own, stream({QString(19, '1')}), 1, "");
        QStringList many;
        for (int i = 0; i <= 10000; ++i)
            many << QString::number(i);
        kelvatest::row("more documents than a list shows", own, stream(many), 1, "");
    }

    void drops()
    {
        QFETCH(QString, format);
        QFETCH(QByteArray, bytes);
        QFETCH(int, row);
        QFETCH(QString, outcome);
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

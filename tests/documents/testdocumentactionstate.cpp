#include "support/kelvatest.h"

#include "documents/documentactionstate.h"

class TestDocumentActionState : public QObject
{
    Q_OBJECT

private slots:
    void states_data()
    {
        QTest::addColumn<QString>("facts"); // l live, d any document, t trash, o offline, c may classify
        QTest::addColumn<QString>("enabled");
        kelvatest::row("nothing selected", "c", "");
        kelvatest::row("nothing selected in the trash", "tc", "history");
        kelvatest::row("only deleted ones selected in the trash", "dtc", "archive history");
        kelvatest::row("selected", "ldc", "resubmit trash archive export link show print folder history");
        kelvatest::row("selected without the right to classify", "ld",
                       "trash archive export link show print folder history");
        kelvatest::row("selected in the trash", "ldtc",
                       "trash archive export link show print folder history erase");
        kelvatest::row("selected offline", "ldoc", "resubmit trash archive export show print folder history");
    }

    void states()
    {
        QFETCH(QString, facts);
        SelectionFacts selection;
        selection.hasLiveDocuments = facts.contains('l');
        selection.hasDocuments = facts.contains('d');
        selection.trash = facts.contains('t');
        selection.offline = facts.contains('o');
        selection.mayClassify = facts.contains('c');
        const DocumentActionState state = documentActionState(selection);
        const QList<QPair<bool, QString>> actions{
            {state.resubmit, "resubmit"},    {state.trash, "trash"},         {state.moveToArchive, "archive"},
            {state.exportAndMail, "export"}, {state.link, "link"},           {state.show, "show"},
            {state.print, "print"},          {state.moveToFolder, "folder"}, {state.history, "history"},
            {state.erase, "erase"}};
        QStringList enabled;
        for (const auto &[on, name] : actions)
            if (on)
                enabled << name;
        QTEST(enabled.join(' '), "enabled");
        QCOMPARE(state.hideResubmit, !selection.mayClassify);
        QCOMPARE(state.eraseUnchanged, !selection.hasLiveDocuments);
    }
};

KELVA_TEST(TestDocumentActionState)
#include "testdocumentactionstate.moc"

#include "support/kelvatest.h"

#include "documents/documentactionstate.h"

class TestDocumentActionState : public QObject
{
    Q_OBJECT

private slots:
    void states()
    {
        // l live, d any document, t trash, o offline, c may classify
        const QPair<QString, QString> table[] = {
            {"c", ""},
            {"tc", "history"},
            {"dtc", "archive history"}, // only deleted ones in the trash
            {"ldc", "resubmit trash archive export link show print folder history"},
            {"ld", "trash archive export link show print folder history"},
            {"ldtc", "trash archive export link show print folder history erase"},
            {"ldoc", "resubmit trash archive export show print folder history"},
        };
        for (const auto &[facts, enabled] : table)
            check(facts, enabled);
    }

private:
    static void check(const QString &facts, const QString &expected)
    {
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
        QCOMPARE(facts + ": " + enabled.join(' '), facts + ": " + expected);
        QCOMPARE(state.hideResubmit, !selection.mayClassify);
        QCOMPARE(state.eraseUnchanged, !selection.hasLiveDocuments);
    }
};

KELVA_TEST(TestDocumentActionState)
#include "testdocumentactionstate.moc"

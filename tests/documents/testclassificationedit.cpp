#include "support/kelvatest.h"

#include "documents/classificationedit.h"

#include <functional>

using Change = std::function<void(QStringList &)>;
Q_DECLARE_METATYPE(Change)

namespace edit = classificationedit;

class TestClassificationEdit : public QObject
{
    Q_OBJECT

private slots:
    void changes_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("after");
        QTest::newRow("folder under the same main folder")
            << Change([](QStringList &f) { edit::moveToFolder(f, "1.3.9"); })
            << "1.3 text 1 1_4 1.3.9 5 anna 2024-03-05 time 2024-04-01 a b";
        QTest::newRow("another status empties the resubmission")
            << Change([](QStringList &f) { edit::setStatus(f, "3", "2024-05-01"); })
            << "1.3 text 3 1_4 1.3.7 5 anna 2024-03-05 time  a b";
        QTest::newRow("resubmission takes its date")
            << Change([](QStringList &f) { edit::setStatus(f, "2", "2024-05-01"); })
            << "1.3 text 2 1_4 1.3.7 5 anna 2024-03-05 time 2024-05-01 a b";
        QTest::newRow("attribute") << Change([](QStringList &f) { edit::setColumn(f, 12, "new"); })
                                   << "1.3 text 1 1_4 1.3.7 5 anna 2024-03-05 time 2024-04-01 a new";
        QTest::newRow("behind the end") << Change([](QStringList &f) { edit::setColumn(f, 40, "new"); })
                                        << "1.3 text 1 1_4 1.3.7 5 anna 2024-03-05 time 2024-04-01 a b new";
    }

    void changes()
    {
        QFETCH(Change, change);
        QStringList fields{"1.3",  "text",       "1",    "1_4",        "1.3.7", "5",
                           "anna", "2024-03-05", "time", "2024-04-01", "a",     "b"};
        change(fields);
        QTEST(fields.join(' '), "after");
    }

    void mainFolders_data()
    {
        QTest::addColumn<QString>("main");
        QTest::newRow("1.3.7") << "1.3";
        QTest::newRow("3") << "3";
        QTest::newRow("12.3.7") << "2.3"; // one digit is what the rule counts on
        QTest::newRow("0") << "0";
    }

    void mainFolders() { QTEST(edit::derivedMainFolder(QTest::currentDataTag()), "main"); }
};

KELVA_TEST(TestClassificationEdit)
#include "testclassificationedit.moc"

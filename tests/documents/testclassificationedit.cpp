#include "support/kelvatest.h"

#include "documents/classificationedit.h"

#include <functional>

using Change = std::function<void(QStringList &)>;

namespace edit = classificationedit;

class TestClassificationEdit : public QObject
{
    Q_OBJECT

private slots:
    void changes()
    {
        const QPair<Change, QString> table[] = {
            {[](QStringList &f) { edit::moveToFolder(f, "1.3.9"); },
             "1.3 text 1 1_4 1.3.9 5 anna 2024-03-05 time 2024-04-01 a b"},
            // Another status empties the resubmission, resubmission takes its date.
            {[](QStringList &f) { edit::setStatus(f, "3", "2024-05-01"); },
             "1.3 text 3 1_4 1.3.7 5 anna 2024-03-05 time  a b"},
            {[](QStringList &f) { edit::setStatus(f, "2", "2024-05-01"); },
             "1.3 text 2 1_4 1.3.7 5 anna 2024-03-05 time 2024-05-01 a b"},
            {[](QStringList &f) { edit::setColumn(f, 12, "new"); },
             "1.3 text 1 1_4 1.3.7 5 anna 2024-03-05 time 2024-04-01 a new"},
            {[](QStringList &f) { edit::setColumn(f, 40, "new"); }, // behind the end
             "1.3 text 1 1_4 1.3.7 5 anna 2024-03-05 time 2024-04-01 a b new"},
        };
        for (const auto &[change, after] : table) {
            QStringList fields{"1.3",  "text",       "1",    "1_4",        "1.3.7", "5",
                               "anna", "2024-03-05", "time", "2024-04-01", "a",     "b"};
            change(fields);
            QCOMPARE(fields.join(' '), after);
        }
        // One digit is what the rule counts on.
        for (const auto &[oid, main] : {std::pair("1.3.7", "1.3"), {"3", "3"}, {"12.3.7", "2.3"}, {"0", "0"}})
            QCOMPARE(edit::derivedMainFolder(oid), QString(main));
    }
};

KELVA_TEST(TestClassificationEdit)
#include "testclassificationedit.moc"

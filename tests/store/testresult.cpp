#include "support/kelvatest.h"

#include "store/result.h"

class TestResult : public QObject
{
    Q_OBJECT

private slots:
    void anErrorIsNotMistakenForAValueOfItsType()
    {
        const kelva::Result<QString> value(QStringLiteral("text"));
        const kelva::Result<QString> error(kelva::Error{kelva::ErrorCode::Busy, QStringLiteral("text")});
        QVERIFY(value.ok());
        QVERIFY(!error.ok());
        QCOMPARE(error.error().code, kelva::ErrorCode::Busy);
    }
};

KELVA_TEST(TestResult)
#include "testresult.moc"

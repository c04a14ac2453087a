#include "support/kelvatest.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMap>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

namespace {

QMap<QString, std::function<QObject *()>> &registry()
{
    static QMap<QString, std::function<QObject *()>> tests;
    return tests;
}

/// A connection by name that finds nothing is a fault that no assertion would see.
int countBrokenConnections(const QString &logFile)
{
    QFile log(logFile);
    if (!log.open(QIODevice::ReadOnly))
        return 0;
    int broken = 0;
    for (const QByteArray &line : log.readAll().split('\n'))
        if (line.contains("QObject::connect: No such") ||
            line.contains("QObject::connect: Parentheses expected")) {
            std::fprintf(stderr, "Broken connection: %s\n", line.constData());
            ++broken;
        }
    return broken;
}

} // namespace

bool kelvatest::add(const char *name, std::function<QObject *()> make)
{
    registry().insert(QString::fromLatin1(name), std::move(make));
    return true;
}

int main(int argc, char *argv[])
{
    const QTemporaryDir home;
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                 "XDG_RUNTIME_DIR", "KELVA_HOME", "TMPDIR"}) {
        const QString directory = home.filePath(QString::fromLatin1(variable).toLower());
        QDir().mkpath(directory);
        QFile::setPermissions(directory, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, QFile::encodeName(directory));
    }
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       home.filePath(QStringLiteral("settings")));
    QLocale::setDefault(QLocale::c());

    if (argc < 2 || !registry().contains(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "usage: %s CLASS [QtTest options], CLASS one of: %s\n", argv[0],
                     qPrintable(QStringList(registry().keys()).join(QLatin1Char(' '))));
        return 2;
    }
    const QString name = QString::fromLocal8Bit(argv[1]);
    int applicationArguments = 1;
    QApplication application(applicationArguments, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);

    QStringList arguments{QString::fromLocal8Bit(argv[0])};
    for (int i = 2; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const QString logFile = home.filePath(QStringLiteral("log.txt"));
    arguments << QStringLiteral("-o") << logFile + QStringLiteral(",txt") << QStringLiteral("-o")
              << QStringLiteral("-,txt");
    const std::unique_ptr<QObject> test(registry().value(name)());
    const int failures = QTest::qExec(test.get(), arguments);
    return failures + countBrokenConnections(logFile);
}

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Files and programs that a test has to do with. What cannot be done ends the test program.
namespace outside {

/// Returns the path.
QString write(const QString &path, const QByteArray &bytes);
QByteArray read(const QString &path);

/// What a program left behind; the code is -1 when it crashed.
struct Outcome
{
    int code;
    QString output;
    QString errors;
};

/// Runs a program to its end with this on its standard input.
Outcome run(const QString &program, const QStringList &arguments, const QByteArray &input = {});

} // namespace outside

#include "indexer/extractor.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <dlfcn.h>

namespace kelva {
namespace {

constexpr int lookIntervalMs = 100;

/// One line without control characters: nothing but words counts in the full-text index.
QString wordsOf(const QByteArray &output, int longest)
{
    QString text = QString::fromUtf8(output).left(longest);
    for (QChar &c : text)
        if (c.category() == QChar::Other_Control)
            c = QLatin1Char(' ');
    return text.simplified();
}

void end(QProcess *child)
{
    child->kill();
    child->waitForFinished(-1);
}

} // namespace

QString Extractor::installedProgram()
{
    const QString name = QStringLiteral("/kelvatextract");
    Dl_info here = {};
    static const char anchor = 0;
    if (::dladdr(&anchor, &here) != 0 && here.dli_fname) {
        const QString path = QFileInfo(QFile::decodeName(here.dli_fname)).absolutePath() + name;
        if (QFileInfo(path).isExecutable())
            return path;
    }
    return QCoreApplication::applicationDirPath() + name;
}

Extractor::Extractor(QString program, ExtractorLimits limits)
    : m_program(std::move(program)),
      m_limits(limits)
{
}

bool Extractor::isInstalled() const
{
    const QFileInfo program(m_program);
    return program.isFile() && program.isExecutable();
}

Extractor::Outcome Extractor::extract(const QString &path, FileKind kind,
                                      const std::function<bool()> &cancelled, QString *text) const
{
    text->clear();
    constexpr int second = 1000;
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    child.setProcessEnvironment(environment);
    child.setStandardInputFile(QProcess::nullDevice());
    child.setStandardErrorFile(QProcess::nullDevice());
    child.start(m_program,
                {QStringLiteral("--seconds"), QString::number(m_limits.timeoutMs / second + 1),
                 QStringLiteral("--memory"), QString::number(m_limits.memoryMiB),
                 QStringLiteral("--unpacked"), QString::number(m_limits.unpackedBytes),
                 QStringLiteral("--characters"), QString::number(m_limits.characters), kindName(kind), path});
    if (!child.waitForStarted())
        return Outcome::NoProgram;
    constexpr int longestCharacter = 4;
    QElapsedTimer since;
    since.start();
    QByteArray output;
    bool ended = false;
    while (!ended) {
        ended = child.waitForFinished(lookIntervalMs) || child.state() == QProcess::NotRunning;
        output += child.readAllStandardOutput();
        const bool isEnough = output.size() > qint64(m_limits.characters) * longestCharacter;
        const bool isCancelled = cancelled && cancelled();
        if (!ended && (isEnough || isCancelled || since.elapsed() > m_limits.timeoutMs)) {
            end(&child);
            if (!isEnough)
                return isCancelled ? Outcome::Cancelled : Outcome::Failed;
            *text = wordsOf(output, m_limits.characters);
            return Outcome::Done;
        }
    }
    if (child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return Outcome::Failed;
    *text = wordsOf(output, m_limits.characters);
    return Outcome::Done;
}

} // namespace kelva

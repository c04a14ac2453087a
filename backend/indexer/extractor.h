#pragma once

#include "extract/filekind.h"

#include <QString>

#include <functional>

namespace kelva {

/// What one file may cost. What an office file unpacks to and the memory are the child's to watch.
struct ExtractorLimits
{
    int timeoutMs = 20000;
    int memoryMiB = 768;
    qint64 unpackedBytes = 64 * 1024 * 1024;
    int characters = 4 * 1024 * 1024;
};

/// Takes the text of files in a child process, kelvatextract, as files may be made to harm their reader.
class Extractor
{
public:
    enum class Outcome {
        Done,
        Failed,    ///< the file is damaged, or costs too much
        Cancelled, ///< broken off by the caller
        NoProgram, ///< the child could not be started; that says nothing about the file
    };

    /// The program that lies beside the plug-in or program that this code is part of.
    static QString installedProgram();

    explicit Extractor(QString program = installedProgram(), ExtractorLimits limits = {});

    bool isInstalled() const;
    /// Returns when the child has ended, after a little more than the time limit at the latest. Works in any
    /// thread and needs no event loop. cancelled is asked a few times a second. The text is one line of
    /// words.
    Outcome extract(const QString &path, FileKind kind, const std::function<bool()> &cancelled,
                    QString *text) const;

private:
    QString m_program;
    ExtractorLimits m_limits;
};

} // namespace kelva

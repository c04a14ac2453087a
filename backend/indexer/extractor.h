#pragma once

#include "extract/filekind.h"

#include <QString>

#include <functional>

#include <sys/types.h>

namespace kelva {

/// What one file may cost. What an office file unpacks to and the memory are the child's to watch.
struct ExtractorLimits
{
    int timeoutMs = 20000;
    int memoryMiB = 768;
    qint64 unpackedBytes = 64 * 1024 * 1024;
    int characters = 4 * 1024 * 1024;
};

/// Takes the text of files in a child process, kelvatextract, as files may be made to harm their reader. The
/// child is handed open files and can reach nothing else. It is kept for many files; after one that it did
/// not get over there is a new one. For one thread at a time.
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
    ~Extractor();
    /// A copy has a child of its own.
    Extractor(const Extractor &other);
    Extractor &operator=(const Extractor &other);

    bool isInstalled() const;
    /// Returns after a little more than the time limit at the latest. Needs no event loop. cancelled is asked
    /// a few times a second. The text is one line of words.
    Outcome extract(const QString &path, FileKind kind, const std::function<bool()> &cancelled,
                    QString *text);

    /// Lets go of the child until the next file comes.
    void end();

private:
    enum class Answer { Text, NoText, Gone, TooSlow, Cancelled };
    bool start();
    bool send(int file, FileKind kind) const;
    Answer receive(const std::function<bool()> &cancelled, QByteArray *text) const;
    Answer receiveBytes(char *bytes, qint64 size, qint64 deadline,
                        const std::function<bool()> &cancelled) const;

    QString m_program;
    ExtractorLimits m_limits;
    pid_t m_child = -1;
    int m_socket = -1;
    int m_files = 0; ///< that this child has read
};

} // namespace kelva

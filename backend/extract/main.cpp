#include "extract/filekind.h"
#include "extract/htmltext.h"
#include "extract/plaintext.h"
#include "extract/xmltext.h"
#include "extract/ziptext.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace kelva;

namespace {

constexpr int noText = 1;
constexpr int wrongUsage = 2;

const char helpText[] =
    R"(Usage: kelvatextract KIND FILE [OPTION...]

Writes the text of a file to standard output, as UTF-8. Files are not trusted: the program limits itself.

KIND is one of pdf, plain, html, opendocument, flat-opendocument, office-open-xml.

  --seconds N       time to take (20)
  --memory MIB      memory to use (768)
  --unpacked BYTES  size of the XML of an office file (67108864)
  --characters N    length of the text; what is behind it is left out (4194304)
  --help            this text
  --version         the version
)";

struct Limits
{
    unsigned seconds = 20;
    rlim_t memoryMiB = 768;
    TextLimits text;
};

void limit(int resource, rlim_t value)
{
    const rlimit both{value, value};
    ::setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

/// Whatever a file makes a reader do, it ends soon, writes no file, starts nothing and dies with its parent.
void confine(const Limits &limits)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::signal(SIGALRM, SIG_DFL);
    ::alarm(limits.seconds);
    limit(RLIMIT_CPU, limits.seconds);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_NPROC, 0);
    limit(RLIMIT_NOFILE, 64);
    constexpr int politely = 10;
    (void)!::nice(politely);
#ifndef __SANITIZE_ADDRESS__
    limit(RLIMIT_AS, limits.memoryMiB * 1024 * 1024);
#endif
}

ExtractedText textOf(FileKind kind, const QString &path, const TextLimits &limits)
{
    switch (kind) {
    case FileKind::Plain:
        return plainText(path, limits);
    case FileKind::Html:
        return htmlText(path, limits);
    case FileKind::FlatOpenDocument:
        return flatOpenDocumentText(path, limits);
    case FileKind::OpenDocument:
        return zippedText(path, XmlText::Format::OpenDocument, limits);
    case FileKind::OfficeOpenXml:
        return zippedText(path, XmlText::Format::OfficeOpenXml, limits);
    case FileKind::Pdf:
        break;
    }
    return std::nullopt;
}

/// The limits go on holding for the program that takes this one's place.
int becomePdfToText(const QString &path)
{
    const QByteArray file = QFile::encodeName(QFileInfo(path).absoluteFilePath());
    ::execlp("pdftotext", "pdftotext", "-q", "-nopgbrk", "-enc", "UTF-8", file.constData(), "-",
             static_cast<char *>(nullptr));
    std::fputs("kelvatextract: pdftotext cannot be started.\n", stderr);
    return noText;
}

bool readNumber(const QCommandLineParser &parser, const char *option, qint64 most, qint64 *number)
{
    bool isNumber = false;
    *number = parser.value(QString::fromLatin1(option)).toLongLong(&isNumber);
    return isNumber && *number > 0 && *number <= most;
}

bool readLimits(const QCommandLineParser &parser, Limits *limits)
{
    qint64 seconds = 0;
    qint64 memory = 0;
    qint64 characters = 0;
    const bool read = readNumber(parser, "seconds", 3600, &seconds) &&
                      readNumber(parser, "memory", 1024 * 1024, &memory) &&
                      readNumber(parser, "unpacked", qint64(1) << 40, &limits->text.unpackedBytes) &&
                      readNumber(parser, "characters", 1 << 28, &characters);
    limits->seconds = static_cast<unsigned>(seconds);
    limits->memoryMiB = static_cast<rlim_t>(memory);
    limits->text.characters = static_cast<int>(characters);
    return read;
}

int complain(const char *text)
{
    std::fprintf(stderr, "kelvatextract: %s See kelvatextract --help.\n", text);
    return wrongUsage;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions(
        {{QStringLiteral("seconds"), QString(), QStringLiteral("N"), QStringLiteral("20")},
         {QStringLiteral("memory"), QString(), QStringLiteral("MIB"), QStringLiteral("768")},
         {QStringLiteral("unpacked"), QString(), QStringLiteral("BYTES"), QStringLiteral("67108864")},
         {QStringLiteral("characters"), QString(), QStringLiteral("N"), QStringLiteral("4194304")},
         {QStringLiteral("help"), QString()},
         {QStringLiteral("version"), QString()}});
    if (!parser.parse(QCoreApplication::arguments()))
        return complain("the command line is wrong.");
    if (parser.isSet(QStringLiteral("help")))
        return std::fputs(helpText, stdout) < 0;
    if (parser.isSet(QStringLiteral("version")))
        return std::puts("kelvatextract " KELVA_VERSION) < 0;
    const QStringList words = parser.positionalArguments();
    const std::optional<FileKind> kind = kindNamed(words.value(0));
    Limits limits;
    if (words.size() != 2 || !kind || !readLimits(parser, &limits))
        return complain("the command line is wrong.");
    confine(limits);
    if (*kind == FileKind::Pdf)
        return becomePdfToText(words.at(1));
    const ExtractedText text = textOf(*kind, words.at(1), limits.text);
    if (!text)
        return noText;
    const QByteArray bytes = text->toUtf8();
    const std::size_t written =
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    return written == static_cast<std::size_t>(bytes.size()) && std::fflush(stdout) == 0 ? 0 : noText;
}

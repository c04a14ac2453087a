#include "extract/answer.h"
#include "extract/filekind.h"
#include "extract/htmltext.h"
#include "extract/pdftext.h"
#include "extract/plaintext.h"
#include "extract/sandbox.h"
#include "extract/xmltext.h"
#include "extract/ziptext.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <cstring>

#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace kelva;

namespace {

constexpr int noText = 1;
constexpr int wrongUsage = 2;

const char helpText[] =
    R"(Usage: kelvatextract KIND FILE [OPTION...]
       kelvatextract --serve [OPTION...]

Writes the text of a file to standard output, as UTF-8. Files are not trusted: the program limits itself, and
once the file is open it can neither write a file nor open a connection.

KIND is one of pdf, plain, html, opendocument, flat-opendocument, office-open-xml.

  --serve           read the files that come over the socket that is its standard input
  --seconds N       time to take for a file (20)
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
bool confine(const Limits &limits)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::signal(SIGALRM, SIG_DFL);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_NPROC, 0);
    limit(RLIMIT_NOFILE, 64);
    constexpr int politely = 10;
    (void)!::nice(politely);
#ifndef __SANITIZE_ADDRESS__
    limit(RLIMIT_AS, limits.memoryMiB * 1024 * 1024);
#else
    Q_UNUSED(limits) // the sanitizer maps terabytes
#endif
    preparePdfText();
    return enterSandbox();
}

ExtractedText textOf(FileKind kind, QFile &file, const Limits &limits)
{
    ::alarm(limits.seconds);
    switch (kind) {
    case FileKind::Plain:
        return plainText(file, limits.text);
    case FileKind::Html:
        return htmlText(file, limits.text);
    case FileKind::FlatOpenDocument:
        return flatOpenDocumentText(file, limits.text);
    case FileKind::OpenDocument:
        return zippedText(file, XmlText::Format::OpenDocument, limits.text);
    case FileKind::OfficeOpenXml:
        return zippedText(file, XmlText::Format::OfficeOpenXml, limits.text);
    case FileKind::Pdf:
        return pdfText(file, limits.text);
    }
    return std::nullopt;
}

bool writeAll(int to, const char *bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(to, bytes, size);
        if (written <= 0)
            return false;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool answer(int to, AnswerHead::State state, const QByteArray &text)
{
    const AnswerHead head{state, static_cast<std::uint32_t>(text.size())};
    return writeAll(to, reinterpret_cast<const char *>(&head), sizeof head) &&
           writeAll(to, text.constData(), static_cast<std::size_t>(text.size()));
}

/// The next file, or -1 when whoever asked is gone.
int nextFile(int from, Question *question)
{
    iovec bytes{question, sizeof *question};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message = {};
    message.msg_iov = &bytes;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    if (::recvmsg(from, &message, MSG_CMSG_CLOEXEC) != ssize_t(sizeof *question))
        return -1;
    const cmsghdr *head = CMSG_FIRSTHDR(&message);
    if (!head || head->cmsg_type != SCM_RIGHTS)
        return -1;
    int file = -1;
    std::memcpy(&file, CMSG_DATA(head), sizeof file);
    return file;
}

int serve(const Limits &limits)
{
    constexpr int socket = STDIN_FILENO;
    if (!confine(limits) || !answer(socket, AnswerHead::Ready, {}))
        return noText;
    Question question = 0;
    for (int open = nextFile(socket, &question); open >= 0; open = nextFile(socket, &question)) {
        QFile file;
        ExtractedText text;
        if (file.open(open, QIODevice::ReadOnly, QFile::AutoCloseHandle))
            text = textOf(static_cast<FileKind>(question), file, limits);
        ::alarm(0);
        if (!answer(socket, text ? AnswerHead::Text : AnswerHead::NoText,
                    text ? text->toUtf8() : QByteArray()))
            return noText;
    }
    return 0;
}

int readOne(FileKind kind, const QString &path, const Limits &limits)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !confine(limits))
        return noText;
    const ExtractedText text = textOf(kind, file, limits);
    if (!text)
        return noText;
    const QByteArray bytes = text->toUtf8();
    return writeAll(STDOUT_FILENO, bytes.constData(), static_cast<std::size_t>(bytes.size())) ? 0 : noText;
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
         {QStringLiteral("serve"), QString()},
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
    if (parser.isSet(QStringLiteral("serve")) && words.isEmpty() && readLimits(parser, &limits))
        return serve(limits);
    if (words.size() != 2 || !kind || !readLimits(parser, &limits))
        return complain("the command line is wrong.");
    return readOne(*kind, words.at(1), limits);
}

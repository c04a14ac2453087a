#include "support/kelvatest.h"
#include "support/outside.h"

#include "admin/samplefiles.h"
#include "extract/sandbox.h"
#include "indexer/extractor.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <quazip.h>
#include <quazipfile.h>

#include <csignal>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kelva;

Q_DECLARE_METATYPE(kelva::ExtractorLimits)

namespace {

using Members = QList<QPair<QString, QByteArray>>;

QByteArray openDocument(const QByteArray &body)
{
    return "<?xml version='1.0'?><office:document-content"
           " xmlns:office='urn:oasis:names:tc:opendocument:xmlns:office:1.0'"
           " xmlns:text='urn:oasis:names:tc:opendocument:xmlns:text:1.0'><office:body>" +
           body + "</office:body></office:document-content>";
}

} // namespace

class TestExtractor : public QObject
{
    Q_OBJECT

private slots:
    void words_data()
    {
        kelvatest::columns<QString, QByteArray, QString>("name", "bytes", "text");
        kelvatest::row("a PDF", "a.PDF", samplefiles::pdf({QString::fromUtf8("Grüße (aus)"), "Lindau"}),
                       "Grüße (aus) Lindau");
        kelvatest::row("UTF-8", "a.txt", QByteArray("Grüße\r\n\taus\x01Lindau \xe2\x82\xac"),
                       "Grüße aus Lindau €");
        kelvatest::row("UTF-8 that breaks off in a character", "a.md", QByteArray("Grüße \xe2\x82"), "Grüße");
        kelvatest::row("Windows-1252", "a.csv",
                       QByteArray("Gr\xfc\xdf"
                                  "e;\x80"),
                       "Grüße;€");
        kelvatest::row("UTF-16", "a.log", QByteArray("\xff\xfeG\0r\0\xfc\0", 8), "Grü");
        kelvatest::row("a page", "a.html",
                       QByteArray("<!DOCTYPE html><html><head><title>Offer</title><style>p { hidden }"
                                  "</style><script>if (1 < 2) hidden('</p>')</script></head><body>"
                                  "<p title='a > b'>Rech<b>nung</b></p><!-- <p>hidden</p> -->"
                                  "M&uuml;ller &amp; S&#246;hne&#x20AC; a &lt; b &unknown; AT&T 1 < 2"
                                  "<br>silben&shy;trennung<p"),
                       "Offer Rechnung Müller & Söhne€ a < b &unknown; AT&T 1 < 2 silbentrennung");
        kelvatest::row("a page of an older encoding", "a.htm",
                       QByteArray("<meta charset=iso-8859-1><p>Gr\xfc\xdf"
                                  "e"),
                       "Grüße");
        kelvatest::row("a flat spreadsheet", "a.fods",
                       samplefiles::spreadsheet({{"Item", "Price"}, {"Beam", "12.5"}}),
                       "Item Price Beam 12.5");
        kelvatest::row(
            "OpenDocument", "a.odt",
            zipped({{"mimetype", "hidden"},
                    {"meta.xml", openDocument("<text:p>hidden</text:p>")},
                    {"content.xml",
                     openDocument("<text:tracked-changes><text:p>hidden</text:p></text:tracked-changes>"
                                  "<text:h>Offer</text:h><text:p>Rech<text:span>nung</text:span><text:s/>an"
                                  "<text:tab/>M&#xfc;ller &amp; Co</text:p><office:binary-data>aGlk"
                                  "</office:binary-data>")},
                    {"styles.xml", openDocument("<text:p>Page head</text:p>hidden")}}),
            "Offer Rechnung an Müller & Co Page head");
        kelvatest::row("a text of Office Open XML", "a.docx",
                       zipped({{"word/document.xml",
                                "<w:d xmlns:w='w'><w:p><w:r><w:t>Rech</w:t></w:r><w:r><w:t>nung"
                                "</w:t><w:tab/><w:t>2</w:t><w:delText>hidden</w:delText></w:r></w:p>"
                                "<w:p><w:t>Next</w:t></w:p></w:d>"},
                               {"word/settings.xml", "<w:t xmlns:w='w'>hidden</w:t>"},
                               {"word/header1.xml", "<w:p xmlns:w='w'><w:t>Head</w:t></w:p>"}}),
                       "Rechnung 2 Next Head");
        kelvatest::row(
            "a spreadsheet of Office Open XML", "a.xlsx",
            zipped({{"xl/sharedStrings.xml", "<sst><si><t>Beam</t><rPh><t>hidden</t></rPh></si><si><r><t>Pla"
                                             "</t></r><r><t>nk</t></r></si></sst>"},
                    {"xl/worksheets/sheet1.xml", "<s><row><c t='s'><v>4711</v></c><c><v>12.5</v></c><c "
                                                 "t='inlineStr'><is><t>in</t></is></c>"
                                                 "<c t='str'><f>A1</f><v>sum</v></c></row></s>"}}),
            "Beam Plank 12.5 in sum");
        kelvatest::row("slides of Office Open XML", "a.pptx",
                       zipped({{"ppt/slides/slide1.xml",
                                "<s xmlns:a='a'><a:p><a:t>One</a:t></a:p><a:p><a:t>Two</a:t></a:p>"
                                "</s>"},
                               {"ppt/slideLayouts/l.xml", "<s xmlns:a='a'><a:t>hidden</a:t></s>"},
                               {"ppt/notesSlides/n1.xml", "<s xmlns:a='a'><a:t>Three</a:t></s>"}}),
                       "One Two Three");
    }

    void words()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        outside::write(m_directory.filePath(name), bytes);
        QCOMPARE(extract(name, {}), Extractor::Outcome::Done);
        QTEST(m_text, "text");
    }

    void hostileFilesFail_data()
    {
        kelvatest::columns<QString, QByteArray, ExtractorLimits>("name", "bytes", "limits");
        QByteArray noise(20000, '\0');
        for (int i = 0; i < noise.size(); ++i)
            noise[i] = static_cast<char>(i * 31 + i / 7);
        ExtractorLimits small;
        small.unpackedBytes = 1000000;
        ExtractorLimits large;
        large.unpackedBytes = qint64(1) << 30;
        large.memoryMiB = 256;
        const QByteArray bomb = openDocument("<text:p>" + QByteArray(30000000, ' ') + "</text:p>");
        const QByteArray entities = "<!DOCTYPE d [<!ENTITY a 'laugh'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>"
                                    "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'>]><d><p>&c;</p></d>";
        kelvatest::row("noise called a PDF", "a.pdf", noise, ExtractorLimits());
        kelvatest::row("a PDF that breaks off", "a.pdf", QByteArray("%PDF-1.4\n1 0 obj\n<<"),
                       ExtractorLimits());
        kelvatest::row("a zip file without a document", "a.odt", zipped({{"other.xml", "<a/>"}}),
                       ExtractorLimits());
        kelvatest::row("a zip file that breaks off", "a.odt",
                       zipped({{"content.xml", openDocument("<text:p>x</text:p>")}}).chopped(60),
                       ExtractorLimits());
        kelvatest::row("a little that unpacks to a lot", "a.odt", zipped({{"content.xml", bomb}}), small);
        kelvatest::row("entities that grow", "a.fodt", entities, ExtractorLimits());
        kelvatest::row("an entity that names a file", "a.fodt",
                       QByteArray("<!DOCTYPE d [<!ENTITY a SYSTEM '/etc/passwd'>]><d><p>&a;</p></d>"),
                       ExtractorLimits());
        QByteArray attributes = "<d><p";
        for (int i = 0; i < 400000; ++i)
            attributes += " a" + QByteArray::number(i) + "=''";
        ExtractorLimits patient;
        patient.timeoutMs = 60000;
        kelvatest::row("an element of 400,000 attributes", "a.fodt", QByteArray(attributes + "/></d>"),
                       patient);
        kelvatest::row("a million elements in each other", "a.fodt",
                       QByteArray(QByteArray("<d>").repeated(1000000) + QByteArray("</d>").repeated(1000000)),
                       patient);
#ifndef __SANITIZE_ADDRESS__
        kelvatest::row("more than fits into memory", "a.odt",
                       zipped({{"content.xml",
                                openDocument("<text:p a='" + QByteArray(120000000, 'x') + "'>x</text:p>")}}),
                       large);
#endif
    }

    void hostileFilesFail()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(ExtractorLimits, limits);
        outside::write(m_directory.filePath(name), bytes);
        QElapsedTimer since;
        since.start();
        QCOMPARE(extract(name, limits), Extractor::Outcome::Failed);
        QCOMPARE(m_text, QString());
        QVERIFY2(since.elapsed() < 15000, "it is ended, but late");
    }

    void oneChildReadsFileAfterFile()
    {
        const QString good = outside::write(m_directory.filePath("good.txt"), "Lindau");
        const QString broken = outside::write(m_directory.filePath("broken.pdf"), "no PDF");
        Extractor extractor(KELVATEXTRACT);
        QCOMPARE(extractor.extract(good, FileKind::Plain, nullptr, &m_text), Extractor::Outcome::Done);
        const QList<QByteArray> first = children();
        QCOMPARE(first.size(), 1);
        QCOMPARE(extractor.extract(broken, FileKind::Pdf, nullptr, &m_text), Extractor::Outcome::Failed);
        QCOMPARE(children(), first);
        // Whatever ended it, the next file is not to blame.
        QCOMPARE(::kill(first.first().toInt(), SIGKILL), 0);
        QCOMPARE(extractor.extract(good, FileKind::Plain, nullptr, &m_text), Extractor::Outcome::Done);
        QCOMPARE(m_text, QString("Lindau"));
        QVERIFY(children().size() == 1 && children() != first);
    }

    void theSandboxHolds()
    {
        const QByteArray file = outside::write(m_directory.filePath("a.txt"), "Lindau").toUtf8();
        const QByteArray other = file + ".other";
        const bool hasLandlock = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, 1) > 0;
        const pid_t child = ::fork();
        if (child == 0) {
            const int open = ::open(file.constData(), O_RDONLY);
            char first = 0;
            const bool kept[] = {enterSandbox(),
                                 ::read(open, &first, 1) == 1 && first == 'L',
                                 ::socket(AF_UNIX, SOCK_STREAM, 0) < 0,
                                 ::open(file.constData(), O_WRONLY) < 0,
                                 ::open(other.constData(), O_CREAT | O_WRONLY, 0600) < 0,
                                 ::unlink(file.constData()) < 0,
                                 ::rename(file.constData(), other.constData()) < 0,
                                 !hasLandlock || ::open(file.constData(), O_RDONLY) < 0};
            int broken = 0;
            for (std::size_t i = 0; i < std::size(kept); ++i)
                broken |= kept[i] ? 0 : 1 << i;
            ::_exit(broken);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(QString::number(WEXITSTATUS(status), 2), QString("0"));
    }

    void aReaderThatNeverEndsIsEnded()
    {
        // Nobody ever writes to this pipe, although somebody could.
        const QString path = m_directory.filePath("pipe.txt");
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        const int writer = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC);
        for (const bool isCancelled : {false, true}) {
            ExtractorLimits limits;
            limits.timeoutMs = isCancelled ? 60000 : 300;
            QElapsedTimer since;
            since.start();
            const auto cancelled = [&] { return isCancelled; };
            QCOMPARE(Extractor(KELVATEXTRACT, limits).extract(path, FileKind::Plain, cancelled, &m_text),
                     isCancelled ? Extractor::Outcome::Cancelled : Extractor::Outcome::Failed);
            QVERIFY(since.elapsed() < 10000);
        }
        ::close(writer);
        QFile::remove(path);
    }

    void onlyTheBeginningOfALongTextIsTaken()
    {
        const QStringList lines = QVector<QString>(20000, "line").toList();
        ExtractorLimits limits;
        limits.characters = 200;
        for (const auto &[name, bytes] : {std::pair("a.pdf", samplefiles::pdf(lines)),
                                          {"a.txt", samplefiles::text(lines)},
                                          {"a.html", samplefiles::text(lines)},
                                          {"a.fods", samplefiles::spreadsheet({lines})}}) {
            outside::write(m_directory.filePath(name), bytes);
            QCOMPARE(extract(name, limits), Extractor::Outcome::Done);
            QVERIFY(m_text.startsWith("line line"));
            QVERIFY2(m_text.size() > 150 && m_text.size() <= 200, name);
        }
        // Half references only: each is looked at once.
        limits.characters = 2000000;
        limits.timeoutMs = 15000;
        outside::write(m_directory.filePath("a.html"), QByteArray(8000000, '&'));
        QCOMPARE(extract("a.html", limits), Extractor::Outcome::Done);
    }

private:
    static QList<QByteArray> children()
    {
        return outside::read(QString("/proc/self/task/%1/children").arg(::gettid())).simplified().split(' ');
    }

    /// A zip file of these members.
    QByteArray zipped(const Members &members)
    {
        const QString path = m_directory.filePath("made.zip");
        QuaZip zip(path);
        bool made = zip.open(QuaZip::mdCreate);
        for (const auto &[name, bytes] : members) {
            QuaZipFile file(&zip);
            made = made && file.open(QIODevice::WriteOnly, QuaZipNewInfo(name)) &&
                   file.write(bytes) == bytes.size();
        }
        zip.close();
        if (!made)
            qFatal("the zip file could not be made");
        return outside::read(path);
    }

    Extractor::Outcome extract(const QString &name, const ExtractorLimits &limits)
    {
        m_text = "old";
        return Extractor(KELVATEXTRACT, limits)
            .extract(m_directory.filePath(name), *kindOfFile(name), nullptr, &m_text);
    }

    QTemporaryDir m_directory;
    QString m_text;
};

KELVA_TEST(TestExtractor)
#include "testextractor.moc"

#include "zyltestdocuments.h"

#include <memory>
#include <mutex>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>

namespace {

const char *const kOfficeProgram = "/usr/lib/libreoffice/program/soffice.bin";
const int kRestartExitCode = 81;

std::mutex &officeMutex()
{
    static std::mutex m;
    return m;
}

// One private profile for the test process.
QString profileUrl()
{
    static std::unique_ptr<QTemporaryDir> dir;
    if (!dir)
        dir = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/zyltestdoc-XXXXXX"));
    return QString::fromLatin1(QUrl::fromLocalFile(dir->path()).toEncoded());
}

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

QString filterFor(const QString &suffix)
{
    static const QHash<QString, QString> filters{
        {QStringLiteral("docx"), QStringLiteral("docx:MS Word 2007 XML")}, {QStringLiteral("doc"), QStringLiteral("doc:MS Word 97")},
        {QStringLiteral("zyl"), QStringLiteral("odt:writer8")}, {QStringLiteral("odt"), QStringLiteral("odt:writer8")},
        {QStringLiteral("pdf"), QStringLiteral("pdf:writer_pdf_Export")}, {QStringLiteral("fodt"), QStringLiteral("fodt:OpenDocument Text Flat XML")}};
    return filters.value(suffix);
}

QByteArray pictureBase64()
{
    QImage image(64, 64, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.fillRect(8, 8, 48, 48, Qt::darkBlue);
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png.toBase64();
}

// Runs one conversion; output lands in outDir under the source's base name.
bool runOffice(const QString &source, const QString &filter, const QString &outDir, QString *error)
{
    std::lock_guard<std::mutex> lock(officeMutex());
    const QStringList args = {
        QStringLiteral("--headless"), QStringLiteral("--invisible"), QStringLiteral("--nologo"),
        QStringLiteral("--norestore"), QStringLiteral("--nodefault"), QStringLiteral("--nolockcheck"),
        QStringLiteral("-env:UserInstallation=") + profileUrl(),
        QStringLiteral("--convert-to"), filter, QStringLiteral("--outdir"), outDir, source};
    for (int attempt = 0; attempt < 2; ++attempt) {
        QProcess office;
        office.setProcessChannelMode(QProcess::MergedChannels);
        office.start(QString::fromLatin1(kOfficeProgram), args);
        if (!office.waitForStarted(30000)) {
            setError(error, QStringLiteral("cannot start the office"));
            return false;
        }
        if (!office.waitForFinished(180000)) {
            office.kill();
            office.waitForFinished(10000);
            setError(error, QStringLiteral("the office did not finish converting %1").arg(source));
            return false;
        }
        if (office.exitStatus() == QProcess::NormalExit && office.exitCode() == kRestartExitCode)
            continue;
        if (office.exitStatus() != QProcess::NormalExit || office.exitCode() != 0) {
            setError(error, QStringLiteral("the office failed on %1: %2").arg(source, QString::fromLocal8Bit(office.readAll())));
            return false;
        }
        return true;
    }
    setError(error, QStringLiteral("the office kept asking for a restart"));
    return false;
}

} // namespace

QByteArray ZylTestDocuments::flatDocument(const QVector<Page> &pages)
{
    QString body;
    bool previousLandscape = false;
    int tables = 0;
    int frames = 0;
    for (int i = 0; i < pages.size(); ++i) {
        const Page &page = pages[i];
        const bool landscape = page.kind == Page::Landscape;
        // The style that starts this page: a page break, or a switch of page style.
        QString paraStyle;
        if (landscape)
            paraStyle = QStringLiteral("PL");
        else if (page.kind == Page::RightPage)
            paraStyle = QStringLiteral("PR");
        else if (previousLandscape || i == 0)
            paraStyle = QStringLiteral("PP");
        else
            paraStyle = QStringLiteral("PB");
        previousLandscape = landscape;

        if (page.kind == Page::TableStart) {
            const QString tableStyle = i == 0 ? QStringLiteral("TN") : QStringLiteral("TB");
            body += QStringLiteral("<table:table table:name=\"Table%1\" table:style-name=\"%2\">"
                                   "<table:table-column table:number-columns-repeated=\"2\"/>")
                        .arg(++tables).arg(tableStyle);
            body += QStringLiteral("<table:table-row><table:table-cell office:value-type=\"string\"><text:p>%1</text:p></table:table-cell>"
                                   "<table:table-cell office:value-type=\"string\"><text:p>cell</text:p></table:table-cell></table:table-row>")
                        .arg(page.text.toHtmlEscaped());
            body += QStringLiteral("</table:table>");
            continue;
        }
        body += QStringLiteral("<text:p text:style-name=\"%1\">%2</text:p>").arg(paraStyle, page.text.toHtmlEscaped());
        if (page.kind == Page::Image) {
            body += QStringLiteral("<text:p text:style-name=\"PN\"><draw:frame draw:style-name=\"fr1\" draw:name=\"Picture%1\" "
                                   "text:anchor-type=\"as-char\" svg:width=\"4cm\" svg:height=\"4cm\" draw:z-index=\"0\">"
                                   "<draw:image><office:binary-data>%2</office:binary-data></draw:image></draw:frame></text:p>")
                        .arg(++frames).arg(QString::fromLatin1(pictureBase64()));
        } else if (page.kind == Page::LongTable || page.kind == Page::HeadedTable) {
            body += QStringLiteral("<table:table table:name=\"Table%1\" table:style-name=\"TN\">"
                                   "<table:table-column table:number-columns-repeated=\"2\"/>")
                        .arg(++tables);
            if (page.kind == Page::HeadedTable) {
                body += QStringLiteral("<table:table-header-rows><table:table-row><table:table-cell office:value-type=\"string\"><text:p>number</text:p></table:table-cell>"
                                       "<table:table-cell office:value-type=\"string\"><text:p>heading</text:p></table:table-cell></table:table-row></table:table-header-rows>");
            }
            for (int r = 0; r < page.tableRows; ++r) {
                body += QStringLiteral("<table:table-row><table:table-cell office:value-type=\"string\"><text:p>row %1</text:p></table:table-cell>"
                                       "<table:table-cell office:value-type=\"string\"><text:p>%2</text:p></table:table-cell></table:table-row>")
                            .arg(r + 1).arg(page.text.toHtmlEscaped());
            }
            body += QStringLiteral("</table:table>");
        } else if (page.kind == Page::TallRow) {
            body += QStringLiteral("<table:table table:name=\"Table%1\" table:style-name=\"TN\">"
                                   "<table:table-column table:number-columns-repeated=\"2\"/><table:table-row>"
                                   "<table:table-cell office:value-type=\"string\"><text:p>tall</text:p></table:table-cell>"
                                   "<table:table-cell office:value-type=\"string\">")
                        .arg(++tables);
            for (int line = 1; line <= page.tableRows; ++line)
                body += QStringLiteral("<text:p>row line %1</text:p>").arg(line);
            body += QStringLiteral("</table:table-cell></table:table-row></table:table>");
        }
    }

    return flatDocument(QStringLiteral(
        "<office:styles>"
        "<style:style style:name=\"Standard\" style:family=\"paragraph\" style:class=\"text\">"
        "<style:text-properties fo:font-size=\"12pt\" style:font-name=\"DejaVu Sans\" fo:font-family=\"'DejaVu Sans'\"/></style:style>"
        "</office:styles>\n"
        "<office:automatic-styles>"
        "<style:page-layout style:name=\"pmPortrait\"><style:page-layout-properties fo:page-width=\"21cm\" fo:page-height=\"29.7cm\" "
        "style:print-orientation=\"portrait\" fo:margin-top=\"2cm\" fo:margin-bottom=\"2cm\" fo:margin-left=\"2cm\" fo:margin-right=\"2cm\"/></style:page-layout>"
        "<style:page-layout style:name=\"pmRight\" style:page-usage=\"right\"><style:page-layout-properties fo:page-width=\"21cm\" fo:page-height=\"29.7cm\" "
        "style:print-orientation=\"portrait\" fo:margin-top=\"2cm\" fo:margin-bottom=\"2cm\" fo:margin-left=\"2cm\" fo:margin-right=\"2cm\"/></style:page-layout>"
        "<style:page-layout style:name=\"pmLandscape\"><style:page-layout-properties fo:page-width=\"29.7cm\" fo:page-height=\"21cm\" "
        "style:print-orientation=\"landscape\" fo:margin-top=\"2cm\" fo:margin-bottom=\"2cm\" fo:margin-left=\"2cm\" fo:margin-right=\"2cm\"/></style:page-layout>"
        "<style:style style:name=\"PB\" style:family=\"paragraph\" style:parent-style-name=\"Standard\"><style:paragraph-properties fo:break-before=\"page\"/></style:style>"
        "<style:style style:name=\"PN\" style:family=\"paragraph\" style:parent-style-name=\"Standard\"/>"
        "<style:style style:name=\"PP\" style:family=\"paragraph\" style:parent-style-name=\"Standard\" style:master-page-name=\"Standard\"/>"
        "<style:style style:name=\"PL\" style:family=\"paragraph\" style:parent-style-name=\"Standard\" style:master-page-name=\"Landscape\"/>"
        "<style:style style:name=\"PR\" style:family=\"paragraph\" style:parent-style-name=\"Standard\" style:master-page-name=\"RightOnly\"/>"
        "<style:style style:name=\"TB\" style:family=\"table\"><style:table-properties style:width=\"17cm\" table:align=\"margins\" fo:break-before=\"page\"/></style:style>"
        "<style:style style:name=\"TN\" style:family=\"table\"><style:table-properties style:width=\"17cm\" table:align=\"margins\"/></style:style>"
        "<style:style style:name=\"fr1\" style:family=\"graphic\"><style:graphic-properties style:vertical-pos=\"top\" style:vertical-rel=\"baseline\"/></style:style>"
        "</office:automatic-styles>\n"
        "<office:master-styles>"
        "<style:master-page style:name=\"Standard\" style:page-layout-name=\"pmPortrait\"/>"
        "<style:master-page style:name=\"Landscape\" style:page-layout-name=\"pmLandscape\"/>"
        "<style:master-page style:name=\"RightOnly\" style:page-layout-name=\"pmRight\" style:next-style-name=\"Standard\"/>"
        "</office:master-styles>\n"
        "<office:body><office:text>%1</office:text></office:body>")
                            .arg(body));
}

QByteArray ZylTestDocuments::flatDocument(const QString &content)
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<office:document xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
               "xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\" "
               "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" "
               "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
               "xmlns:draw=\"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0\" "
               "xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\" "
               "xmlns:xlink=\"http://www.w3.org/1999/xlink\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
               "xmlns:svg=\"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0\" "
               "office:version=\"1.3\" office:mimetype=\"application/vnd.oasis.opendocument.text\">\n%1</office:document>\n")
        .arg(content)
        .toUtf8();
}

QVector<ZylTestDocuments::Page> ZylTestDocuments::pages(const QStringList &texts, Page::Kind kind)
{
    QVector<Page> pages;
    for (const QString &text : texts)
        pages.append(Page{text, kind, 0});
    return pages;
}

bool ZylTestDocuments::makeDocument(const QString &path, const QStringList &pageTexts, QString *error)
{
    return makeDocument(path, pages(pageTexts), error);
}

bool ZylTestDocuments::makeDocument(const QString &path, const QVector<Page> &pages, QString *error)
{
    return makeFromFlat(path, flatDocument(pages), error);
}

bool ZylTestDocuments::makeFromFlat(const QString &path, const QByteArray &flat, QString *error)
{
    QTemporaryDir work;
    const QString flatPath = work.filePath(QStringLiteral("made.fodt"));
    QFile file(flatPath);
    if (!work.isValid() || !file.open(QIODevice::WriteOnly) || file.write(flat) != flat.size()) {
        setError(error, QStringLiteral("cannot write %1").arg(flatPath));
        return false;
    }
    file.close();
    if (QFileInfo(path).suffix().toLower() == QLatin1String("fodt")) {
        QFile::remove(path);
        return QFile::copy(flatPath, path);
    }
    return convert(flatPath, path, error);
}

bool ZylTestDocuments::convert(const QString &source, const QString &target, QString *error)
{
    const QString suffix = QFileInfo(target).suffix().toLower();
    const QString filter = filterFor(suffix);
    if (filter.isEmpty()) {
        setError(error, QStringLiteral("no filter for .%1").arg(suffix));
        return false;
    }
    if (QFileInfo::exists(target)) {
        setError(error, QStringLiteral("%1 exists").arg(target));
        return false;
    }
    QTemporaryDir out;
    // The office names its output after the source, with the filter's own suffix.
    const QString input = out.filePath(QStringLiteral("input.") + QFileInfo(source).suffix());
    if (!QFile::copy(source, input)) {
        setError(error, QStringLiteral("cannot copy %1").arg(source));
        return false;
    }
    const QString outDir = out.filePath(QStringLiteral("out"));
    QDir().mkpath(outDir);
    if (!runOffice(input, filter, outDir, error))
        return false;
    const QString produced = outDir + QStringLiteral("/input.") + filter.section(QLatin1Char(':'), 0, 0);
    if (!QFileInfo::exists(produced)) {
        setError(error, QStringLiteral("the office wrote no %1 for %2").arg(suffix, source));
        return false;
    }
    return QFile::copy(produced, target);
}

bool ZylTestDocuments::readPages(const QString &path, QStringList *texts, QVector<QSize> *sizes, QString *error)
{
    // One export for both: every export starts an office of its own.
    QTemporaryDir work;
    const QString pdf = work.filePath(QStringLiteral("pages.pdf"));
    if (!convert(path, pdf, error))
        return false;
    const auto run = [&](const QString &program, const QStringList &args, QString *out) {
        QProcess process;
        process.start(program, args);
        if (!process.waitForFinished(60000) || process.exitCode() != 0) {
            setError(error, QStringLiteral("%1 failed on %2").arg(program, path));
            return false;
        }
        *out = QString::fromUtf8(process.readAllStandardOutput());
        return true;
    };
    QString out;
    if (texts) {
        if (!run(QStringLiteral("pdftotext"), {QStringLiteral("-enc"), QStringLiteral("UTF-8"), pdf, QStringLiteral("-")}, &out))
            return false;
        *texts = out.split(QLatin1Char('\f'));
        // pdftotext ends every page with a form feed, the last one included.
        if (!texts->isEmpty() && texts->last().trimmed().isEmpty())
            texts->removeLast();
        for (QString &page : *texts)
            page = page.simplified();
        // A picture that goes missing leaves the text as it was: it shows as a word of its own.
        if (!run(QStringLiteral("pdfimages"), {QStringLiteral("-list"), pdf}, &out))
            return false;
        for (const QString &line : out.split(QLatin1Char('\n')).mid(2)) {
            const int page = line.section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty).toInt();
            if (page >= 1 && page <= texts->size())
                (*texts)[page - 1] = ((*texts)[page - 1] + QStringLiteral(" [picture]")).trimmed();
        }
    }
    if (sizes) {
        if (!run(QStringLiteral("pdfinfo"), {QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"), QStringLiteral("100000"), pdf}, &out))
            return false;
        sizes->clear();
        QRegularExpressionMatchIterator it = QRegularExpression(QStringLiteral("^Page\\s+\\d+ size:\\s+([\\d.]+) x ([\\d.]+)"),
                                                                QRegularExpression::MultilineOption)
                                                 .globalMatch(out);
        while (it.hasNext()) {
            const QRegularExpressionMatch m = it.next();
            *sizes << QSize(qRound(m.captured(1).toDouble()), qRound(m.captured(2).toDouble()));
        }
    }
    return true;
}

QStringList ZylTestDocuments::pageTexts(const QString &path, QString *error)
{
    QStringList texts;
    return readPages(path, &texts, nullptr, error) ? texts : QStringList();
}

int ZylTestDocuments::pdfPageCount(const QString &path, QString *error)
{
    QVector<QSize> sizes;
    return readPages(path, nullptr, &sizes, error) ? sizes.size() : -1;
}

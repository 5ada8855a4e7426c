#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <signal.h>
#include <thread>
#include <vector>

#include <vcomrt/scopedvariant.h>

#include "engine/innerzylprocessor.h"
#include "officeprocesses.h"
#include "zyltestdocuments.h"

// The server is driven through the engine's own client; raw calls test what it does not send.
using Page = ZylTestDocuments::Page;
using Zyl = InnerZylProcessor;
using Dispatch = Zyl::Dispatch;

Q_DECLARE_METATYPE(QVector<ZylTestDocuments::Page>)

namespace {

QList<qint64> ourOffices()
{
    return OfficeProcesses::startedBy(QCoreApplication::applicationPid());
}

// The one office this test runs; 0 when there is not exactly one.
qint64 soleOffice()
{
    const QList<qint64> offices = ourOffices();
    return offices.size() == 1 ? offices.first() : 0;
}

// One row per format, named after it.
void formatRows(const QStringList &suffixes)
{
    QTest::addColumn<QString>("suffix");
    for (const QString &suffix : suffixes)
        QTest::newRow(qPrintable(suffix)) << suffix;
}

// Pages two and four must be right-hand pages, so the office lays out a blank page before page two.
QVector<Page> rightPages()
{
    return {{"right one", Page::Text, 0}, {"right two", Page::RightPage, 0}, {"right three", Page::Text, 0},
            {"right four", Page::RightPage, 0}};
}

// The third page begins right after the table that fills the second.
QVector<Page> afterTable()
{
    return {{"one", Page::Text, 0}, {"table two", Page::TableStart, 0}, {"after three", Page::Text, 0},
            {"four", Page::Text, 0}};
}

// Page starts of every page, each where the page before ends, the last page ending with the document.
QVector<int> checkedPageStarts(Zyl &zyl, IDispatch *doc, int expectedPages)
{
    QVector<int> starts;
    int count = 0;
    if (FAILED(zyl.computeStatistics(doc, &count)) || count != expectedPages) {
        qWarning("%d pages, expected %d", count, expectedPages);
        return {};
    }
    int whole = 0;
    Dispatch range;
    if (FAILED(zyl.wholeRange(doc, &range)) || FAILED(zyl.rangeEnd(range.get(), &whole)))
        return {};
    for (int n = 1, previousEnd = 0; n <= count; ++n) {
        int start = 0, end = 0;
        if (FAILED(zyl.pageStart(doc, n, &start)) || FAILED(zyl.pageEnd(doc, n, &end)))
            return {};
        if ((n > 1 && start != previousEnd) || end <= start || (n == count && end != whole)) {
            qWarning("page %d runs from %d to %d (document end %d)", n, start, end, whole);
            return {};
        }
        starts.append(start);
        previousEnd = end;
    }
    return starts;
}

ScopedVariant text(const QString &value)
{
    return ScopedVariant(reinterpret_cast<const OLECHAR *>(value.utf16()), UINT(value.size()));
}

template <typename... T>
std::vector<ScopedVariant> arguments(T &&...values)
{
    std::vector<ScopedVariant> args;
    (args.push_back(std::forward<T>(values)), ...);
    return args;
}

// A call by name with arguments in natural order, as a late-binding client makes it.
HRESULT invoke(IDispatch *object, const QString &name, WORD kind, std::vector<ScopedVariant> args = {})
{
    DISPID id = DISPID_UNKNOWN;
    QString copy = name;
    LPOLESTR names[1] = {reinterpret_cast<LPOLESTR>(copy.data())};
    HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr))
        return hr;
    std::vector<VARIANTARG> lent;
    for (auto it = args.rbegin(); it != args.rend(); ++it)
        lent.push_back(it->get());
    DISPPARAMS params{lent.empty() ? nullptr : lent.data(), nullptr, UINT(lent.size()), 0};
    ScopedVariant result;
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &params, result.receive(), nullptr, nullptr);
}

// SaveAs2 as sent, without the client's own checks of the target.
HRESULT saveAs(IDispatch *doc, const QString &path, ScopedVariant format)
{
    return invoke(doc, QStringLiteral("SaveAs2"), DISPATCH_METHOD,
                  arguments(text(path), std::move(format), ScopedVariant(), text(QString()), ScopedVariant(LONG(0))));
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// Writes a zip package of entries, in their order, at path.
bool zipPackage(const QString &path, const QList<QPair<QString, QByteArray>> &entries)
{
    QTemporaryDir folder;
    QFile::remove(path);
    for (const auto &entry : entries) {
        QDir(folder.path()).mkpath(QFileInfo(entry.first).path());
        if (!writeFile(folder.filePath(entry.first), entry.second))
            return false;
        // A media type comes first and uncompressed, where readers look for it.
        const QStringList how = entry.first == QLatin1String("mimetype") ? QStringList{"-X", "-0", "-q"} : QStringList{"-X", "-q"};
        QProcess zip;
        zip.setWorkingDirectory(folder.path());
        zip.start(QStringLiteral("zip"), how + QStringList{path, entry.first});
        if (!zip.waitForFinished(30000) || zip.exitCode() != 0)
            return false;
    }
    return true;
}

// What the file holds; empty when it cannot be read.
QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

mode_t fileMode(const QString &path)
{
    struct stat st = {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? (st.st_mode & 07777) : 0;
}

} // namespace

class tst_ZylServer : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void dispatchRules_data();
    void dispatchRules();
    void pageCountMatchesPdf_data();
    void pageCountMatchesPdf();
    void countUpdatesFields();
    void corpus_data();
    void corpus();
    void corpusPageDeleted_data();
    void corpusPageDeleted();
    void pageBetweenObjectsCut_data();
    void pageBetweenObjectsCut();
    void lastPageKeptBeginsWhereItDid();
    void frameShownOnPagesCutGoes();
    void deletePagesKeepsOthers_data();
    void deletePagesKeepsOthers();
    void deleteThroughSplitTable_data();
    void deleteThroughSplitTable();
    void pageBeginsInNestedTable();
    void longCutEnds_data();
    void longCutEnds();
    void sectionProtection_data();
    void sectionProtection();
    void appendDocument_data();
    void appendDocument();
    void appendAfterCutThroughTable();
    void appendMadeDocument_data();
    void cutKeepsPageLook_data();
    void cutKeepsPageLook();
    void appendKeepsTrackedChanges_data();
    void appendKeepsTrackedChanges();
    void cutFirstPage_data();
    void cutFirstPage();
    void appendMadeDocument();
    void groupedHeaderBoxesAndPropertyFields();
    void linkFieldSavesAsDoc();
    void endnotesStayWithTheirPages_data();
    void endnotesStayWithTheirPages();
    void appendTakesTheFileAsItIs_data();
    void appendTakesTheFileAsItIs();
    void fullPageTable_data();
    void fullPageTable();
    void leadingTableInTargetStyle();
    void layoutRulesOfTheLargestPart_data();
    void layoutRulesOfTheLargestPart();
    void docKeepsPageStyleOfPicturesOverPages();
    void docKeepsEmptyParagraphFonts();
    void editsMatchFreshReading_data();
    void editsMatchFreshReading();
    void saveAsFormats_data();
    void saveAsFormats();
    void saveReplacesAtomically_data();
    void saveReplacesAtomically();
    void textVariantsAreTextDocuments_data();
    void textVariantsAreTextDocuments();
    void badFilesFailQuickly_data();
    void badFilesFailQuickly();
    void quitClosesOnlyOwnDocuments();
    void twoApplicationsOnTwoThreads();
    // Leaves the server quitting: must stay the last test.
    void hungOfficeIsKilled_data();
    void hungOfficeIsKilled();

private:
    QString pageDoc(const QString &name, const QVector<Page> &pages);
    // A fresh copy of source under name in the test folder; empty on failure.
    QString workCopy(const QString &source, const QString &name);
    // The document under name that the office makes of a flat one; empty on failure.
    QString fromFlat(const QString &name, const QByteArray &flat);
    QString package(const QString &name, const QByteArray &version, const QByteArray &setting, const QByteArray &body);
    // Opens path, lets edit change it, saves it (as savedAs when given) and closes it; the pages
    // the server counts after the edit, -1 on failure.
    int edited(const QString &path, const std::function<HRESULT(IDispatch *)> &edit, const QString &savedAs = QString());
    // The pages the server counts in the document at path; -1 on failure.
    int pageCount(const QString &path);
    std::function<HRESULT(IDispatch *)> cutting(int first, int last)
    {
        return [=](IDispatch *doc) { return m_zyl->deletePages(doc, first, last); };
    }
    std::function<HRESULT(IDispatch *)> appending(const QStringList &sources)
    {
        return [=](IDispatch *doc) {
            HRESULT hr = S_OK;
            for (int i = 0; i < sources.size() && SUCCEEDED(hr); ++i)
                hr = m_zyl->appendDocument(doc, sources[i]);
            return hr;
        };
    }
    static std::unique_ptr<Zyl> newApplication();

    QTemporaryDir m_dir;
    std::unique_ptr<Zyl> m_zyl;
    // Documents of one page and of three pages of plain text, shared by many tests.
    QString m_one;
    QString m_three;
    QSet<QString> m_made;
};

void tst_ZylServer::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QCOMPARE(CoInitialize(nullptr), S_OK);
    m_zyl = newApplication();
    QVERIFY(m_zyl);
    m_one = pageDoc(QStringLiteral("one.docx"), ZylTestDocuments::pages({"target one"}));
    m_three = pageDoc(QStringLiteral("three.docx"), ZylTestDocuments::pages({"alpha one", "bravo two", "charlie three"}));
}

void tst_ZylServer::cleanupTestCase()
{
    if (m_zyl)
        m_zyl->quitApplication();
    m_zyl.reset();
    CoUninitialize();
    // The office ends with the last object that uses it.
    QTRY_VERIFY_WITH_TIMEOUT(ourOffices().isEmpty(), 30000);
}

std::unique_ptr<Zyl> tst_ZylServer::newApplication()
{
    auto zyl = std::make_unique<Zyl>();
    const HRESULT hr = zyl->createApplication();
    if (FAILED(hr)) {
        qWarning("creating the application failed: 0x%08x", unsigned(hr));
        return nullptr;
    }
    return zyl;
}

// Documents shared by several tests, made once.
QString tst_ZylServer::pageDoc(const QString &name, const QVector<Page> &pages)
{
    const QString path = m_dir.filePath(name);
    QString error;
    if (!m_made.contains(name) && !ZylTestDocuments::makeDocument(path, pages, &error))
        qWarning("%s", qPrintable(error));
    m_made.insert(name);
    return path;
}

QString tst_ZylServer::workCopy(const QString &source, const QString &name)
{
    const QString path = m_dir.filePath(name);
    QFile::remove(path);
    if (QFile::copy(source, path))
        return path;
    qWarning("cannot copy %s", qPrintable(source));
    return QString();
}

int tst_ZylServer::edited(const QString &path, const std::function<HRESULT(IDispatch *)> &edit, const QString &savedAs)
{
    Dispatch doc;
    int pages = -1;
    HRESULT hr = m_zyl->openDocument(path, &doc);
    if (SUCCEEDED(hr))
        hr = edit(doc.get());
    if (SUCCEEDED(hr))
        hr = m_zyl->computeStatistics(doc.get(), &pages);
    if (SUCCEEDED(hr))
        hr = savedAs.isEmpty() ? m_zyl->saveDocument(doc.get()) : m_zyl->saveDocumentAs(doc.get(), savedAs, QFileInfo(savedAs).suffix());
    if (doc && FAILED(m_zyl->closeDocument(doc.get())) && SUCCEEDED(hr))
        hr = E_FAIL;
    if (FAILED(hr))
        qWarning("editing %s failed: 0x%08x", qPrintable(path), unsigned(hr));
    return SUCCEEDED(hr) ? pages : -1;
}

int tst_ZylServer::pageCount(const QString &path)
{
    Dispatch doc;
    int pages = -1;
    const bool counted = SUCCEEDED(m_zyl->openDocument(path, &doc)) && SUCCEEDED(m_zyl->computeStatistics(doc.get(), &pages));
    return doc && SUCCEEDED(m_zyl->closeDocument(doc.get())) && counted ? pages : -1;
}

// A package of content.xml's body, with one setting of the set named in settings.xml when one is given.
QString tst_ZylServer::package(const QString &name, const QByteArray &version, const QByteArray &setting, const QByteArray &body)
{
    const QByteArray namespaces =
        "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\""
        " xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\""
        " xmlns:draw=\"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0\" xmlns:svg=\"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0\""
        " xmlns:xlink=\"http://www.w3.org/1999/xlink\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
        " xmlns:config=\"urn:oasis:names:tc:opendocument:xmlns:config:1.0\" xmlns:ooo=\"http://openoffice.org/2004/office\"";
    QList<QPair<QString, QByteArray>> entries = {
        {QStringLiteral("mimetype"), "application/vnd.oasis.opendocument.text"},
        {QStringLiteral("META-INF/manifest.xml"),
         "<manifest:manifest xmlns:manifest=\"urn:oasis:names:tc:opendocument:xmlns:manifest:1.0\">"
         "<manifest:file-entry manifest:full-path=\"/\" manifest:media-type=\"application/vnd.oasis.opendocument.text\"/>"
         "<manifest:file-entry manifest:full-path=\"content.xml\" manifest:media-type=\"text/xml\"/>"
         + QByteArray(setting.isEmpty() ? "" : "<manifest:file-entry manifest:full-path=\"settings.xml\" manifest:media-type=\"text/xml\"/>")
         + "</manifest:manifest>"},
        {QStringLiteral("content.xml"), "<office:document-content " + namespaces + " office:version=\"" + version + "\">" + body
         + "</office:document-content>"}};
    if (!setting.isEmpty())
        entries.append({QStringLiteral("settings.xml"), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><office:document-settings " + namespaces
                        + " office:version=\"" + version + "\"><office:settings>" + setting + "</office:settings></office:document-settings>"});
    const QString path = m_dir.filePath(name);
    zipPackage(path, entries);
    return path;
}

QString tst_ZylServer::fromFlat(const QString &name, const QByteArray &flat)
{
    const QString path = m_dir.filePath(name);
    QFile::remove(path);
    QString error;
    if (!ZylTestDocuments::makeFromFlat(path, flat, &error)) {
        qWarning("%s", qPrintable(error));
        return QString();
    }
    return path;
}

void tst_ZylServer::dispatchRules_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QVector<int>>("argTypes"); // VT_I4 or VT_BSTR or VT_EMPTY
    QTest::addColumn<HRESULT>("expected");

    QTest::newRow("unknown_member") << "Frobnicate" << int(DISPATCH_METHOD) << QVector<int>{} << DISP_E_UNKNOWNNAME;
    QTest::newRow("statistics_without_argument") << "ComputeStatistics" << int(DISPATCH_METHOD) << QVector<int>{} << DISP_E_BADPARAMCOUNT;
    QTest::newRow("statistics_with_text") << "ComputeStatistics" << int(DISPATCH_METHOD) << QVector<int>{VT_BSTR} << DISP_E_TYPEMISMATCH;
    QTest::newRow("statistics_lower_case_name") << "computestatistics" << int(DISPATCH_METHOD) << QVector<int>{VT_I4} << S_OK;
    QTest::newRow("protection_as_method_too") << "ProtectionType" << int(DISPATCH_METHOD | DISPATCH_PROPERTYGET) << QVector<int>{} << S_OK;
    QTest::newRow("protection_with_argument") << "ProtectionType" << int(DISPATCH_PROPERTYGET) << QVector<int>{VT_I4} << DISP_E_BADPARAMCOUNT;
    QTest::newRow("goto_with_text_page") << "GoTo" << int(DISPATCH_METHOD) << QVector<int>{VT_I4, VT_I4, VT_BSTR} << DISP_E_TYPEMISMATCH;
    QTest::newRow("goto_past_last_page") << "GoTo" << int(DISPATCH_METHOD) << QVector<int>{VT_I4, VT_I4, -99} << E_INVALIDARG;
    QTest::newRow("range_three_arguments") << "Range" << int(DISPATCH_METHOD) << QVector<int>{VT_I4, VT_I4, VT_I4} << DISP_E_BADPARAMCOUNT;
    QTest::newRow("range_negative_start") << "Range" << int(DISPATCH_METHOD) << QVector<int>{-1, VT_I4} << E_INVALIDARG;
    QTest::newRow("saveas_with_number_path") << "SaveAs2" << int(DISPATCH_METHOD) << QVector<int>{VT_I4, VT_EMPTY, VT_EMPTY, VT_BSTR, VT_I4} << DISP_E_TYPEMISMATCH;
    QTest::newRow("save_put_is_no_member") << "Save" << int(DISPATCH_PROPERTYPUT) << QVector<int>{} << DISP_E_MEMBERNOTFOUND;
}

void tst_ZylServer::dispatchRules()
{
    QFETCH(QString, member);
    QFETCH(int, kind);
    QFETCH(QVector<int>, argTypes);
    QFETCH(HRESULT, expected);

    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(m_three, &doc), S_OK);
    std::vector<ScopedVariant> args;
    for (int t : argTypes) {
        if (t == VT_BSTR)
            args.push_back(text(QStringLiteral("x")));
        else if (t == VT_EMPTY)
            args.emplace_back();
        else
            args.emplace_back(LONG(t == VT_I4 ? 2 : t == -99 ? 99 : t)); // else literal values
    }
    const HRESULT hr = invoke(doc.get(), member, WORD(kind), std::move(args));
    QCOMPARE(QString::number(uint(hr), 16), QString::number(uint(expected), 16));
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
}

void tst_ZylServer::pageCountMatchesPdf_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVector<Page>>("pages");

    const QVector<Page> plain = ZylTestDocuments::pages({"page one", "page two", "page three", "page four"});
    const QVector<Page> landscape = {{"portrait one", Page::Text, 0}, {"landscape two", Page::Landscape, 0}, {"portrait three", Page::Text, 0}};
    QTest::newRow("plain_docx") << "plain.docx" << plain;
    QTest::newRow("plain_doc") << "plain.doc" << plain;
    QTest::newRow("plain_zyl") << "plain.zyl" << plain;
    QTest::newRow("table_spanning_pages_docx") << "longtable.docx"
        << QVector<Page>{{"before table", Page::LongTable, 90}, {"after table", Page::Text, 0}};
    QTest::newRow("images_docx") << "images.docx"
        << QVector<Page>{{"first picture", Page::Image, 0}, {"plain", Page::Text, 0}, {"second picture", Page::Image, 0}};
    QTest::newRow("landscape_section_docx") << "landscape.docx" << landscape;
    QTest::newRow("landscape_section_zyl") << "landscape.zyl" << landscape;
    QTest::newRow("blank_page_left_out_zyl") << "blank.zyl" << rightPages();
    QTest::newRow("page_after_table_zyl") << "del-aftertable.zyl" << afterTable();
    QTest::newRow("table_over_three_pages_zyl") << "headed3.zyl"
        << QVector<Page>{{"front", Page::HeadedTable, 130}, {"after", Page::Text, 0}};
}

void tst_ZylServer::pageCountMatchesPdf()
{
    // Counts agree with the office's own export, and each page ends where the next one starts.
    QFETCH(QString, name);
    QFETCH(QVector<Page>, pages);
    const QString path = pageDoc(name, pages);
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(path, &doc), S_OK);
    int count = 0;
    QCOMPARE(m_zyl->computeStatistics(doc.get(), &count), S_OK);
    QCOMPARE(count, ZylTestDocuments::pdfPageCount(path));
    QCOMPARE(checkedPageStarts(*m_zyl, doc.get(), count).size(), count);
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
}

void tst_ZylServer::countUpdatesFields()
{
    // A cross-reference whose stored result runs over a page although its target is one word:
    // counted as stored, the document had a page more than the office prints.
    const QString stale = QStringLiteral("stale ").repeated(1500);
    const QString path = fromFlat(QStringLiteral("stale-reference.zyl"), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:body><office:text><text:p><text:bookmark-start text:name=\"b\"/>tiny<text:bookmark-end text:name=\"b\"/></text:p>"
        "<text:p><text:bookmark-ref text:reference-format=\"text\" text:ref-name=\"b\">%1</text:bookmark-ref></text:p>"
        "</office:text></office:body>").arg(stale)));
    QVERIFY(!path.isEmpty());
    QCOMPARE(pageCount(path), 1);
    QCOMPARE(ZylTestDocuments::pdfPageCount(path), 1);
}

void tst_ZylServer::corpus_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    const QString shared = qEnvironmentVariable("VDM_SHARED_DIR", QStringLiteral("/work/shared"));
    QFile manifest(shared + QStringLiteral("/corpus/manifest.tsv"));
    QVERIFY2(manifest.open(QIODevice::ReadOnly), qPrintable(manifest.fileName()));
    const QStringList lines = QString::fromUtf8(manifest.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (int i = 1; i < lines.size(); ++i) {
        const QStringList cols = lines[i].split(QLatin1Char('\t'));
        if (cols.size() < 2)
            continue;
        QTest::newRow(qPrintable(cols[0])) << shared + QStringLiteral("/corpus/") + cols[0] << cols[1];
    }
}

void tst_ZylServer::corpus()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    const QByteArray before = contents(path);
    const QDir folder = QFileInfo(path).dir();
    const QStringList files = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);

    Dispatch probe;
    if (FAILED(m_zyl->documents(&probe))) {
        // An earlier row ended the office; this one gets a fresh one.
        m_zyl = newApplication();
        QVERIFY(m_zyl);
    }
    QElapsedTimer timer;
    timer.start();
    Dispatch doc;
    const HRESULT opened = m_zyl->openDocument(path, &doc);
    QVERIFY2(timer.elapsed() < 60000, "opening took more than a minute");
    // Nothing appears beside an open document, no lock file either.
    QCOMPARE(folder.entryList(QDir::Files | QDir::Hidden | QDir::System), files);
    if (expected == QLatin1String("fail")) {
        if (SUCCEEDED(opened)) {
            int protection = -1;
            QCOMPARE(m_zyl->protectionType(doc.get(), &protection), S_OK);
            QVERIFY2(protection != -1, "a document that must not be merged reports no protection");
            m_zyl->closeDocument(doc.get());
        }
    } else {
        QCOMPARE(opened, S_OK);
        // A document that can be merged must not look protected, or nothing takes it.
        int protection = 0;
        QCOMPARE(m_zyl->protectionType(doc.get(), &protection), S_OK);
        QCOMPARE(protection, -1);
        int pages = 0;
        QCOMPARE(m_zyl->computeStatistics(doc.get(), &pages), S_OK);
        QCOMPARE(QString::number(pages), expected);
        // Pages have starts of their own, so ranges of pages can be cut (a sample keeps long
        // documents quick).
        std::set<int> sample;
        for (int n : {1, 2, 3, pages / 2, pages / 2 + 1, pages - 1, pages})
            sample.insert(qBound(1, n, pages));
        int previous = -1;
        for (int n : sample) {
            int start = 0;
            QCOMPARE(m_zyl->pageStart(doc.get(), n, &start), S_OK);
            QVERIFY2(start > previous, qPrintable(QStringLiteral("page %1 starts at %2").arg(n).arg(start)));
            previous = start;
        }
        QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
    }
    QVERIFY2(contents(path) == before, "the source document changed");
}

void tst_ZylServer::corpusPageDeleted_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("landscape_text_section_first_page") << "sct-section-props.docx" << 1 << 1;
    QTest::newRow("odd_page_section_middle") << "sct-section-props.docx" << 3 << 3;
    QTest::newRow("body_page_before_notes") << "notes.docx" << 1 << 1;
    QTest::newRow("table_spanning_pages_middle") << "bib-chernigovka.netdo.ru_download_docs_17459.docx" << 8 << 8;
    QTest::newRow("table_spanning_pages_first") << "bib-chernigovka.netdo.ru_download_docs_17459.docx" << 1 << 1;
    QTest::newRow("legacy_long_with_blank_pages") << "parentinvguid.doc" << 31 << 31;
    // The part of a paragraph that ran on to the first page kept took the style of the body's first.
    QTest::newRow("legacy_long_cut_into_paragraph") << "parentinvguid.doc" << 1 << 30;
    QTest::newRow("cjk_last_page") << "A4.docx" << 5 << 5;
    QTest::newRow("toc_page") << "toc.docx" << 1 << 1;
    QTest::newRow("portrait_table_page_after_landscape") << "bug65649.docx" << 90 << 90;
}

void tst_ZylServer::corpusPageDeleted()
{
    QFETCH(QString, file);
    QFETCH(int, first);
    QFETCH(int, last);
    const QString shared = qEnvironmentVariable("VDM_SHARED_DIR", QStringLiteral("/work/shared"));
    const QString work = workCopy(shared + QStringLiteral("/corpus/") + file, QStringLiteral("corpus-%1-%2-%3").arg(first).arg(last).arg(file));
    const int before = pageCount(work);
    QVERIFY(before >= last);
    QCOMPARE(edited(work, cutting(first, last)), before - (last - first + 1));
}

void tst_ZylServer::pageBetweenObjectsCut_data()
{
    QTest::addColumn<int>("page");
    QTest::newRow("first") << 1;
    QTest::newRow("middle") << 2;
    QTest::newRow("last") << 3;
}

void tst_ZylServer::pageBetweenObjectsCut()
{
    // One paragraph of three shapes as tall as a page, in the text: a page that begins between two
    // of them began, to the text, where the paragraph does, and no cut took one page.
    QFETCH(int, page);
    const QString source = fromFlat(QStringLiteral("objects-%1.zyl").arg(page), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:body><office:text><text:p>%1</text:p></office:text></office:body>")
        .arg(QStringLiteral("<draw:rect text:anchor-type=\"as-char\" svg:width=\"10cm\" svg:height=\"20cm\"/>").repeated(3))));
    const QString saved = m_dir.filePath(QStringLiteral("objects-%1-cut.zyl").arg(page));
    QCOMPARE(edited(source, cutting(page, page), saved), 2);
    QCOMPARE(ZylTestDocuments::pdfPageCount(saved), 2);
}

void tst_ZylServer::lastPageKeptBeginsWhereItDid()
{
    // Page 2 holds only empty headings, each kept with the next, that page 1 could not hold whole.
    // Cut from page 3 on and appended, they ran back onto page 1 of the saved document and page 2
    // was gone.
    const QString cut = m_dir.filePath(QStringLiteral("kept-chain-cut.doc"));
    QCOMPARE(edited(workCopy(QStringLiteral(ZYL_TEST_DATA "/Bug53380_3.doc"), QStringLiteral("kept-chain.doc")), cutting(3, 29), cut), 2);
    const QString merged = m_dir.filePath(QStringLiteral("kept-chain-merged.doc"));
    QCOMPARE(edited(workCopy(m_one, QStringLiteral("kept-chain-target.docx")), appending({cut}), merged), 3);
    QCOMPARE(ZylTestDocuments::pdfPageCount(merged), 3);
}

void tst_ZylServer::frameShownOnPagesCutGoes()
{
    // A frame anchored in a paragraph of page 2 that the office shows on page 3: once the pages
    // from 3 on were cut, it made a page of its own when the document was opened again.
    const QString work = workCopy(QStringLiteral(ZYL_TEST_DATA "/ClimateChange2.odt"), QStringLiteral("frame-cut.odt"));
    const QString saved = m_dir.filePath(QStringLiteral("frame-cut.zyl"));
    QCOMPARE(edited(work, cutting(3, 4), saved), 2);
    QCOMPARE(ZylTestDocuments::pdfPageCount(saved), 2);
}

void tst_ZylServer::deletePagesKeepsOthers_data()
{
    // One row for each way a cut meets the body: from its start, to its end or in between, at
    // paragraph marks or at table boundaries, with the page style to keep on either side.
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVector<Page>>("pages");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");

    const QVector<Page> plain = ZylTestDocuments::pages({"page one", "page two", "page three", "page four", "page five"});
    QTest::newRow("plain_middle") << "del-plain.docx" << plain << 2 << 3;
    QTest::newRow("plain_first_page") << "del-plain.docx" << plain << 1 << 1;
    QTest::newRow("plain_to_end") << "del-plain.docx" << plain << 4 << 5;
    const QVector<Page> landscape = {{"portrait one", Page::Text, 0}, {"landscape two", Page::Landscape, 0},
                                     {"portrait three", Page::Text, 0}, {"landscape four", Page::Landscape, 0},
                                     {"portrait five", Page::Text, 0}};
    QTest::newRow("landscape_removed") << "del-landscape.docx" << landscape << 2 << 2;
    QTest::newRow("landscape_first_page_removed") << "del-landscape.zyl" << landscape << 1 << 1;
    const QVector<Page> images = {{"picture one", Page::Image, 0}, {"picture two", Page::Image, 0},
                                  {"plain three", Page::Text, 0}, {"picture four", Page::Image, 0}};
    QTest::newRow("images_to_end") << "del-images.docx" << images << 3 << 4;
    const QVector<Page> tables = {{"one", Page::Text, 0}, {"table two", Page::TableStart, 0},
                                  {"three", Page::Text, 0}, {"table four", Page::TableStart, 0}};
    QTest::newRow("table_page_removed") << "del-tables.zyl" << tables << 2 << 2;
    QTest::newRow("page_before_table_removed") << "del-tables.zyl" << tables << 3 << 3;
    QTest::newRow("first_page_before_table_removed") << "del-tables.zyl" << tables << 1 << 1;
    QTest::newRow("table_page_at_end_removed") << "del-tables.docx" << tables << 4 << 4;
    QTest::newRow("page_right_after_table_removed") << "del-aftertable.zyl" << afterTable() << 3 << 3;
    QTest::newRow("page_after_table_to_end") << "del-aftertable.docx" << afterTable() << 3 << 4;
    QTest::newRow("right_page_after_blank_removed") << "del-blank.zyl" << rightPages() << 2 << 2;
    QTest::newRow("blank_pages_to_end_removed") << "del-blank.zyl" << rightPages() << 2 << 4;
}

void tst_ZylServer::deletePagesKeepsOthers()
{
    QFETCH(QString, name);
    QFETCH(QVector<Page>, pages);
    QFETCH(int, first);
    QFETCH(int, last);

    // The pages that stay print as they did, pictures and orientation included.
    const QString source = pageDoc(name, pages);
    QStringList texts;
    QVector<QSize> sizes;
    QVERIFY(ZylTestDocuments::readPages(source, &texts, &sizes));
    QCOMPARE(texts.size(), pages.size());
    texts.erase(texts.begin() + first - 1, texts.begin() + last);
    sizes.remove(first - 1, last - first + 1);
    const QString work = workCopy(source, QStringLiteral("work-%1-%2-%3").arg(first).arg(last).arg(name));
    const QString saved = m_dir.filePath(QStringLiteral("cut-%1-%2-%3.zyl").arg(first).arg(last).arg(QFileInfo(name).completeBaseName() + QFileInfo(name).suffix()));
    QCOMPARE(edited(work, cutting(first, last), saved), texts.size());
    QStringList keptTexts;
    QVector<QSize> keptSizes;
    QVERIFY(ZylTestDocuments::readPages(saved, &keptTexts, &keptSizes));
    QCOMPARE(keptTexts, texts);
    QCOMPARE(keptSizes, sizes);
}

void tst_ZylServer::deleteThroughSplitTable_data()
{
    // A table that a cut goes through loses the rows on the removed pages and keeps the others,
    // heading rows included, so every page that stays keeps its text.
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVector<Page>>("pages");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");

    const QVector<Page> split = {{"cover", Page::Text, 0}, {"lead", Page::LongTable, 60}, {"after", Page::Text, 0}};
    QTest::newRow("page_with_table_start_removed_its_rows_go") << "split.zyl" << split << 2 << 2;
    QTest::newRow("page_with_table_end_removed_its_rows_go") << "split.zyl" << split << 3 << 3;
    QTest::newRow("all_pages_of_table_removed_table_goes") << "split.zyl" << split << 2 << 3;
    QTest::newRow("cover_and_table_start_removed") << "split.zyl" << split << 1 << 2;
    QTest::newRow("table_end_to_end_removed") << "split.docx" << split << 3 << 4;
    const QVector<Page> headed = {{"front", Page::HeadedTable, 130}, {"after", Page::Text, 0}};
    QTest::newRow("middle_page_of_headed_table_removed") << "headed3.docx" << headed << 2 << 2;
    QTest::newRow("first_page_of_headed_table_removed_heading_stays") << "headed3.zyl" << headed << 1 << 1;
    // A row that runs over pages is cut where they break, in each of its cells.
    const QVector<Page> tall = {{"cover", Page::Text, 0}, {"lead", Page::TallRow, 70}, {"after", Page::Text, 0}};
    QTest::newRow("first_page_of_tall_row_removed") << "tall.zyl" << tall << 2 << 2;
    QTest::newRow("second_page_of_tall_row_removed") << "tall.doc" << tall << 3 << 3;
}

void tst_ZylServer::deleteThroughSplitTable()
{
    QFETCH(QString, name);
    QFETCH(QVector<Page>, pages);
    QFETCH(int, first);
    QFETCH(int, last);

    const QString source = pageDoc(name, pages);
    QStringList texts = ZylTestDocuments::pageTexts(source);
    QVERIFY(texts.size() >= last);
    // The table must really run over the pages the row names.
    QVERIFY(texts[first - 1].contains(QStringLiteral("row ")) || texts[last - 1].contains(QStringLiteral("row ")));
    texts.erase(texts.begin() + first - 1, texts.begin() + last);
    const QString work = workCopy(source, QStringLiteral("cut-%1-%2-%3").arg(first).arg(last).arg(name));
    QCOMPARE(edited(work, cutting(first, last)), texts.size());
    // Every row and word that stays, in order, wherever the pages now break.
    QCOMPARE(ZylTestDocuments::pageTexts(work).join(QLatin1Char(' ')).simplified(), texts.join(QLatin1Char(' ')));
}

void tst_ZylServer::pageBeginsInNestedTable()
{
    // A page that begins in a table inside another begins, for a cut, with the outer table's next
    // row: the row that holds the inner table stays whole with the page where it begins.
    QString inner;
    for (int row = 1; row <= 80; ++row)
        inner += QStringLiteral("<table:table-row><table:table-cell><text:p>row %1</text:p></table:table-cell></table:table-row>").arg(row);
    const QString path = fromFlat(QStringLiteral("nested.zyl"), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><style:style style:name=\"B\" style:family=\"paragraph\"><style:paragraph-properties"
        " fo:break-before=\"page\"/></style:style></office:automatic-styles><office:body><office:text><table:table>"
        "<table:table-column/><table:table-row><table:table-cell><table:table><table:table-column/>%1</table:table>"
        "</table:table-cell></table:table-row><table:table-row><table:table-cell><text:p>outer row</text:p></table:table-cell>"
        "</table:table-row></table:table><text:p text:style-name=\"B\">last page</text:p></office:text></office:body>").arg(inner)));
    QStringList texts = ZylTestDocuments::pageTexts(path);
    QCOMPARE(texts.size(), 3);
    QVERIFY(texts[1].startsWith(QStringLiteral("row ")) && texts[1].endsWith(QStringLiteral("outer row")));
    QCOMPARE(edited(path, cutting(2, 2)), 3);
    texts[1].chop(QStringLiteral(" outer row").size());
    QCOMPARE(ZylTestDocuments::pageTexts(path), texts);
}

void tst_ZylServer::longCutEnds_data()
{
    QTest::addColumn<bool>("keepFirst");
    QTest::newRow("keeps_first_page") << true;
    QTest::newRow("keeps_last_page") << false;
}

void tst_ZylServer::longCutEnds()
{
    // The office never ends an undo step that holds more than about 64,000 nodes; these tables
    // hold 72,000 between a first and a last page.
    QFETCH(bool, keepFirst);
    const QString row = QStringLiteral("<table:table-row>") + QStringLiteral("<table:table-cell><text:p>c</text:p></table:table-cell>").repeated(4)
        + QStringLiteral("</table:table-row>");
    const QString table = QStringLiteral("<table:table><table:table-column table:number-columns-repeated=\"4\"/>%1</table:table>")
                              .arg(row.repeated(250));
    const QString path = fromFlat(QStringLiteral("long.zyl"), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><style:style style:name=\"B\" style:family=\"paragraph\"><style:paragraph-properties"
        " fo:break-before=\"page\"/></style:style></office:automatic-styles><office:body><office:text>"
        "<text:p>first page</text:p><text:p text:style-name=\"B\">table pages</text:p>%1"
        "<text:p text:style-name=\"B\">last page</text:p></office:text></office:body>").arg(table.repeated(24))));
    const int pages = pageCount(path);
    QVERIFY(pages > 100);
    QCOMPARE(edited(path, keepFirst ? cutting(2, pages) : cutting(1, pages - 1)), 1);
    QCOMPARE(ZylTestDocuments::pageTexts(path), QStringList{keepFirst ? QStringLiteral("first page") : QStringLiteral("last page")});
}

void tst_ZylServer::sectionProtection_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<int>("expected");
    QTest::newRow("protected_section")
        << QStringLiteral("<text:p>open</text:p><text:section text:name=\"Locked\" text:protected=\"true\"><text:p>locked</text:p></text:section>")
        << 2;
    QTest::newRow("unprotected_section")
        << QStringLiteral("<text:p>open</text:p><text:section text:name=\"Free\"><text:p>free</text:p></text:section>")
        << -1;
    const QString contents = QStringLiteral(
        "<text:table-of-content text:name=\"Contents1\" text:protected=\"true\">"
        "<text:table-of-content-source text:outline-level=\"10\"><text:index-title-template>Contents</text:index-title-template></text:table-of-content-source>"
        "<text:index-body><text:index-title text:name=\"Contents1_Head\"><text:p>Contents</text:p></text:index-title><text:p>Chapter</text:p></text:index-body>"
        "</text:table-of-content><text:h text:outline-level=\"1\">Chapter</text:h>");
    QTest::newRow("table_of_contents") << contents << -1;
    QTest::newRow("protected_section_after_contents")
        << contents + QStringLiteral("<text:section text:name=\"Locked\" text:protected=\"true\"><text:p>locked</text:p></text:section>") << 2;
}

void tst_ZylServer::sectionProtection()
{
    QFETCH(QString, body);
    QFETCH(int, expected);
    const QString path = fromFlat(QStringLiteral("sections-%1.zyl").arg(QString::fromLatin1(QTest::currentDataTag())),
                                  ZylTestDocuments::flatDocument(QStringLiteral("<office:body><office:text>%1</office:text></office:body>").arg(body)));
    QVERIFY(!path.isEmpty());
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(path, &doc), S_OK);
    int protection = 0;
    QCOMPARE(m_zyl->protectionType(doc.get(), &protection), S_OK);
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
    QCOMPARE(protection, expected);
}

void tst_ZylServer::appendDocument_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("lastKind"); // of the second source's last page
    QTest::addColumn<QString>("lastText");
    const QString text = QStringLiteral("second charlie");
    // The formats differ in whether the inserted content ends in a paragraph of its own.
    QTest::newRow("docx_source") << QStringLiteral("docx") << int(Page::Text) << text;
    QTest::newRow("doc_source") << QStringLiteral("doc") << int(Page::Text) << text;
    QTest::newRow("zyl_source") << QStringLiteral("zyl") << int(Page::Text) << text;
    // Content that ends in a table lost the table's last row.
    QTest::newRow("doc_source_ending_in_table") << QStringLiteral("doc") << int(Page::TableStart) << text;
    QTest::newRow("zyl_source_ending_in_table") << QStringLiteral("zyl") << int(Page::TableStart) << text;
    // A last paragraph of only a picture lost the picture.
    QTest::newRow("docx_source_ending_in_picture") << QStringLiteral("docx") << int(Page::Image) << text;
    // A last page of one empty paragraph was lost when the merged document was read back.
    QTest::newRow("docx_source_ending_in_empty_page") << QStringLiteral("docx") << int(Page::Text) << QString();
}

void tst_ZylServer::appendDocument()
{
    QFETCH(QString, suffix);
    QFETCH(int, lastKind);
    QFETCH(QString, lastText);
    const QString a = pageDoc(QStringLiteral("append-a.docx"), ZylTestDocuments::pages({"first alpha", "first bravo"}));
    QVector<Page> second = ZylTestDocuments::pages({"second alpha", "second bravo", lastText});
    second.last().kind = Page::Kind(lastKind);
    const QString b = pageDoc(QStringLiteral("append-b%1%2.%3").arg(lastKind).arg(lastText.isEmpty()).arg(suffix), second);
    // The second source has lost its first pages, the way a page range is taken from a file.
    const QString c = workCopy(pageDoc(QStringLiteral("append-c.") + suffix, ZylTestDocuments::pages({"third alpha", "third bravo", "third charlie"})), QStringLiteral("append-c-cut.") + suffix);
    QCOMPARE(edited(c, cutting(1, 2)), 1);
    const QString target = workCopy(a, QStringLiteral("append-target.docx"));
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(target, &doc), S_OK);
    QCOMPARE(m_zyl->appendDocument(doc.get(), b), S_OK);
    int pages = 0;
    QCOMPARE(m_zyl->computeStatistics(doc.get(), &pages), S_OK);
    QCOMPARE(pages, 5);
    // A second append starts from what the first one left behind.
    QCOMPARE(m_zyl->appendDocument(doc.get(), c), S_OK);
    QCOMPARE(m_zyl->computeStatistics(doc.get(), &pages), S_OK);
    QCOMPARE(pages, 6);
    QCOMPARE(m_zyl->saveDocument(doc.get()), S_OK);
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
    const QStringList texts = ZylTestDocuments::pageTexts(target);
    QCOMPARE(texts, ZylTestDocuments::pageTexts(a) + ZylTestDocuments::pageTexts(b) + QStringList{"third charlie"});
}

void tst_ZylServer::appendAfterCutThroughTable()
{
    // A cut to the end that goes through a table leaves the body's last paragraph behind the
    // table's remaining rows; a document appended there must start on the very next page.
    const QString source = pageDoc(QStringLiteral("split.zyl"),
                                   {{"cover", Page::Text, 0}, {"lead", Page::LongTable, 60}, {"after", Page::Text, 0}});
    const QString b = pageDoc(QStringLiteral("append-b.docx"), ZylTestDocuments::pages({"second alpha", "second bravo", "second charlie"}));
    const QString target = workCopy(source, QStringLiteral("append-after-cut.zyl"));
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(target, &doc), S_OK);
    QCOMPARE(m_zyl->deletePages(doc.get(), 3, 4), S_OK);
    int pages = 0;
    QCOMPARE(m_zyl->computeStatistics(doc.get(), &pages), S_OK);
    QCOMPARE(pages, 2);
    QCOMPARE(m_zyl->appendDocument(doc.get(), b), S_OK);
    QCOMPARE(m_zyl->computeStatistics(doc.get(), &pages), S_OK);
    QCOMPARE(pages, 5);
    QCOMPARE(m_zyl->saveDocument(doc.get()), S_OK);
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
    const QStringList texts = ZylTestDocuments::pageTexts(target);
    QCOMPARE(texts.size(), 5);
    QVERIFY(texts[0].startsWith(QStringLiteral("cover")));
    QVERIFY(texts[1].contains(QStringLiteral("row")));
    QCOMPARE(texts.mid(2), QStringList({"second alpha", "second bravo", "second charlie"}));
}

namespace {

// A flat document whose default page style has the given size and headers (the master page's
// content); paragraph style "B" starts a page, graphic style "G" places a text box, row style "R"
// fills an A4 page's body.
QByteArray pagedFlat(const char *width, const char *height, const QString &headers, const QString &body)
{
    return ZylTestDocuments::flatDocument(
        QStringLiteral(
            "<office:automatic-styles>"
            "<style:page-layout style:name=\"L\" style:page-usage=\"mirrored\"><style:page-layout-properties fo:page-width=\"%1\" fo:page-height=\"%2\""
            " fo:margin-top=\"2cm\" fo:margin-bottom=\"2cm\" fo:margin-left=\"2cm\" fo:margin-right=\"2cm\"/></style:page-layout>"
            "<style:style style:name=\"B\" style:family=\"paragraph\"><style:paragraph-properties fo:break-before=\"page\"/></style:style>"
            "<style:style style:name=\"R\" style:family=\"table-row\"><style:table-row-properties style:row-height=\"25.7cm\"/></style:style>"
            "<style:style style:name=\"G\" style:family=\"graphic\" style:parent-style-name=\"Frame\">"
            "<style:graphic-properties draw:fill=\"none\" fo:min-height=\"2cm\" fo:min-width=\"5cm\""
            " style:vertical-pos=\"from-top\" style:vertical-rel=\"page-content\" style:horizontal-pos=\"from-left\""
            " style:horizontal-rel=\"page-content\"/></style:style>"
            "</office:automatic-styles>"
            "<office:master-styles><style:master-page style:name=\"Standard\" style:page-layout-name=\"L\">"
            "%3</style:master-page></office:master-styles>"
            "<office:body><office:text>%4</office:text></office:body>")
            .arg(QLatin1String(width), QLatin1String(height), headers, body));
}

} // namespace

void tst_ZylServer::appendMadeDocument_data()
{
    // Each source is appended to a one-page A4 portrait target; its pages must keep their own
    // layout and header, the A4 target's default page style having the same name as theirs.
    QTest::addColumn<QString>("suffix"); // of the source made of flat, or a file when flat is empty
    QTest::addColumn<QByteArray>("flat");
    QTest::addColumn<QStringList>("texts"); // held by the source's pages, in order
    QTest::addColumn<QSize>("size"); // of the source's pages in points; empty: not checked

    const QString header = QStringLiteral("<style:header><text:p>source header</text:p></style:header>");
    const QByteArray twoPages = pagedFlat("11in", "8.5in", header, QStringLiteral("<text:p>source one</text:p><text:p text:style-name=\"B\">source two</text:p>"));
    const QStringList twoTexts{"source header source one", "source header source two"};
    const QSize letter(792, 612);
    QTest::newRow("docx_source") << QStringLiteral("docx") << twoPages << twoTexts << letter;
    QTest::newRow("doc_source") << QStringLiteral("doc") << twoPages << twoTexts << letter;
    QTest::newRow("zyl_source") << QStringLiteral("zyl") << twoPages << twoTexts << letter;
    // The table must not start a page of its own after the one the page break starts.
    const QByteArray table = pagedFlat("11in", "8.5in", header,
                                       QStringLiteral("<table:table><table:table-column/><table:table-row><table:table-cell>"
                                                      "<text:p>source one</text:p></table:table-cell></table:table-row></table:table>"
                                                      "<text:p text:style-name=\"B\">source two</text:p>"));
    QTest::newRow("doc_source_starting_with_table") << QStringLiteral("doc") << table << twoTexts << letter;
    QTest::newRow("zyl_source_starting_with_table") << QStringLiteral("zyl") << table << twoTexts << letter;
    // Pages without text still arrive, with what they show.
    const QByteArray shape = pagedFlat("11in", "8.5in", header,
                                       QStringLiteral("<text:p><draw:rect text:anchor-type=\"as-char\" svg:width=\"4cm\" svg:height=\"4cm\"/></text:p>"));
    QTest::newRow("doc_source_shape_only") << QStringLiteral("doc") << shape << QStringList{"source header"} << letter;
    QTest::newRow("zyl_source_shape_only") << QStringLiteral("zyl") << shape << QStringList{"source header"} << letter;
    QTest::newRow("doc_source_empty") << QStringLiteral("doc") << pagedFlat("11in", "8.5in", header, QStringLiteral("<text:p/>"))
                                      << QStringList{"source header"} << letter;
    // A page of only a formula's picture arrived empty when the .doc was inserted as it was.
    QTest::newRow("legacy_picture_page") << QStringLiteral(ZYL_TEST_DATA "/equation.doc") << QByteArray()
                                         << QStringList{"a n+ b n= c n ; n> 2"} << QSize();
    // Inserting a document with a text box in its header ended the office; then the box's text
    // and the page layout stayed behind. The box's page number field stays a field.
    const QByteArray textBox = pagedFlat(
        "8.5in", "11in",
        QStringLiteral("<style:header><text:p><draw:custom-shape text:anchor-type=\"char\" draw:style-name=\"G\" svg:width=\"5cm\""
                       " svg:height=\"2cm\" svg:x=\"10cm\" svg:y=\"1cm\"><text:p>boxed <text:page-number text:select-page=\"current\"/>"
                       "</text:p><draw:enhanced-geometry svg:viewBox=\"0 0 0 0\" draw:type=\"ooxml-rect\" draw:text-areas=\"0 0 ?f3 ?f2\""
                       " draw:enhanced-path=\"M 0 0 L ?f3 0 ?f3 ?f2 0 ?f2 Z N\"><draw:equation draw:name=\"f2\" draw:formula=\"logheight\"/>"
                       "<draw:equation draw:name=\"f3\" draw:formula=\"logwidth\"/></draw:enhanced-geometry></draw:custom-shape></text:p>"
                       "</style:header>"),
        QStringLiteral("<text:p>source one</text:p><text:p text:style-name=\"B\">source two</text:p>"));
    QTest::newRow("text_box_in_header_zyl") << QStringLiteral("zyl") << textBox << QStringList{"boxed 1", "boxed 2"} << QSize(612, 792);
    QTest::newRow("text_box_in_header_docx") << QStringLiteral("docx") << textBox << QStringList{"boxed 1", "boxed 2"} << QSize(612, 792);
    // A field showing the document's subject showed the merged document's, which has none.
    QTest::newRow("subject_field") << QStringLiteral("zyl")
                                   << ZylTestDocuments::flatDocument(QStringLiteral(
                                          "<office:meta><dc:subject>source subject</dc:subject></office:meta><office:body>"
                                          "<office:text><text:p>about <text:subject>source subject</text:subject></text:p>"
                                          "</office:text></office:body>"))
                                   << QStringList{"about source subject"} << QSize();
    // Lines in paragraph style P1, whose own properties differ from those of its parent Standard.
    const auto lines = [](int count, const QString &standard, const QString &own, bool inTable) {
        QString body;
        for (int line = 1; line <= count; ++line)
            body += QStringLiteral("<text:p text:style-name=\"P1\">line %1</text:p>").arg(line);
        if (inTable)
            body = QStringLiteral("<table:table><table:table-column/><table:table-row><table:table-cell>%1"
                                  "</table:table-cell></table:table-row></table:table>").arg(body);
        return ZylTestDocuments::flatDocument(
            QStringLiteral("<office:styles><style:style style:name=\"Standard\" style:family=\"paragraph\">%1</style:style>"
                           "</office:styles><office:automatic-styles><style:style style:name=\"P1\" style:family=\"paragraph\""
                           " style:parent-style-name=\"Standard\">%2</style:style></office:automatic-styles>"
                           "<office:body><office:text>%3</office:text></office:body>")
                .arg(standard, own, body));
    };
    // Paragraphs without spacing under a style with much of it took the style's spacing when the
    // style was renamed on its way in, and ran on over three pages.
    const QByteArray spaced = lines(30, QStringLiteral("<style:paragraph-properties fo:margin-bottom=\"2cm\"/>"),
                                    QStringLiteral("<style:paragraph-properties fo:margin-top=\"0cm\" fo:margin-bottom=\"0cm\"/>"), false);
    QTest::newRow("direct_spacing_over_spaced_style_docx") << QStringLiteral("docx") << spaced << QStringList{"line 30"} << QSize();
    // The same for a paragraph's own font: sixty small lines ran on over three pages in the
    // style's large one.
    const QByteArray sized = lines(60, QStringLiteral("<style:text-properties fo:font-size=\"24pt\"/>"),
                                   QStringLiteral("<style:text-properties fo:font-size=\"8pt\"/>"), true);
    QTest::newRow("direct_font_over_sized_style_doc") << QStringLiteral("doc") << sized << QStringList{"line 60"} << QSize();
    // An empty first paragraph was taken for the one inserted into and removed: the page below it
    // moved up and the last lines no longer ran over.
    QString tall = QStringLiteral("<text:p text:style-name=\"T\"/>");
    for (int line = 1; line <= 25; ++line)
        tall += QStringLiteral("<text:p>line %1</text:p>").arg(line);
    const QByteArray emptyFirst = ZylTestDocuments::flatDocument(
        QStringLiteral("<office:automatic-styles><style:style style:name=\"T\" style:family=\"paragraph\">"
                       "<style:paragraph-properties fo:margin-top=\"18cm\"/></style:style></office:automatic-styles>"
                       "<office:body><office:text>%1</office:text></office:body>")
            .arg(tall));
    // A title page in a style of one side whose follow style has two: the pages after it took
    // their sides from their places in the merged document.
    const QByteArray titled = ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><style:page-layout style:name=\"L\"/><style:style style:name=\"T\" style:family=\"paragraph\""
        " style:master-page-name=\"Title\"/><style:style style:name=\"B\" style:family=\"paragraph\"><style:paragraph-properties"
        " fo:break-before=\"page\"/></style:style></office:automatic-styles><office:master-styles><style:master-page"
        " style:name=\"Title\" style:page-layout-name=\"L\" style:next-style-name=\"Sides\"><style:header><text:p>title</text:p>"
        "</style:header></style:master-page><style:master-page style:name=\"Sides\" style:page-layout-name=\"L\"><style:header>"
        "<text:p>right</text:p></style:header><style:header-left><text:p>left</text:p></style:header-left></style:master-page>"
        "</office:master-styles><office:body><office:text><text:p text:style-name=\"T\">one</text:p>"
        "<text:p text:style-name=\"B\">two</text:p><text:p text:style-name=\"B\">three</text:p></office:text></office:body>"));
    QTest::newRow("title_page_then_sides_zyl") << QStringLiteral("zyl") << titled << QStringList{"title one", "left two", "right three"}
                                               << QSize();
    QTest::newRow("empty_first_paragraph_zyl") << QStringLiteral("zyl") << emptyFirst << QStringList{"line 1", "line 25"} << QSize();
    QTest::newRow("empty_first_paragraph_docx") << QStringLiteral("docx") << emptyFirst << QStringList{"line 1", "line 25"} << QSize();
    // The last paragraph took the style of the one before it, and that style's spacing pushed it
    // onto a page of its own. Its own default style makes it go in through a prepared copy.
    const QByteArray lastStyled = ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:styles><style:style style:name=\"Standard\" style:family=\"paragraph\"><style:text-properties"
        " fo:font-size=\"10pt\"/></style:style><style:style style:name=\"Low\" style:family=\"paragraph\">"
        "<style:paragraph-properties fo:margin-top=\"20cm\"/></style:style><style:style style:name=\"Plain\""
        " style:family=\"paragraph\" style:parent-style-name=\"Standard\"/></office:styles><office:body><office:text><text:p text:style-name=\"Low\">low</text:p>"
        "<text:p text:style-name=\"Plain\">last</text:p></office:text></office:body>"));
    QTest::newRow("last_paragraph_style_zyl") << QStringLiteral("zyl") << lastStyled << QStringList{"low last"} << QSize();
    // A style the target lacks took the size that the target's defaults give: forty lines in the
    // source's large default size ran over two pages, in the target's over one.
    QString inherited;
    for (int line = 1; line <= 40; ++line)
        inherited += QStringLiteral("<text:p text:style-name=\"Own\">line %1</text:p>").arg(line);
    QTest::newRow("own_style_under_defaults_zyl") << QStringLiteral("zyl") << ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:styles><style:default-style style:family=\"paragraph\"><style:text-properties fo:font-size=\"24pt\"/>"
        "</style:default-style><style:style style:name=\"Own\" style:family=\"paragraph\"/></office:styles>"
        "<office:body><office:text>%1</office:text></office:body>").arg(inherited)) << QStringList{"line 1", "line 40"} << QSize();
    // A source that gives a paragraph beginning a page no spacing above it ran over, under the
    // target's rule, onto another page. The office reads the setting from a package, not a flat file.
    QStringList run;
    for (int line = 1; line <= 35; ++line)
        run << QStringLiteral("line %1").arg(line);
    const QString noTopSpacing = package(QStringLiteral("no-top-spacing.zyl"), "1.1",
        "<config:config-item-set config:name=\"ooo:configuration-settings\"><config:config-item config:name=\"AddParaTableSpacingAtStart\""
        " config:type=\"boolean\">false</config:config-item></config:config-item-set>",
        "<office:automatic-styles><style:style style:name=\"T\" style:family=\"paragraph\"><style:paragraph-properties"
        " fo:break-before=\"page\" fo:margin-top=\"12cm\"/></style:style></office:automatic-styles><office:body><office:text>"
        "<text:p>first page</text:p><text:p text:style-name=\"T\">second page</text:p><text:p>"
        + run.join(QStringLiteral("<text:line-break/>")).toUtf8() + "</text:p></office:text></office:body>");
    QTest::newRow("no_spacing_at_page_tops_zyl") << noTopSpacing << QByteArray() << QStringList{"first page", "line 35"} << QSize();
    // A source that hides its tracked changes: its deletion of two pages took them up again.
    const QString hiddenChanges = package(QStringLiteral("hidden-changes.zyl"), "1.2",
        "<config:config-item-set config:name=\"ooo:view-settings\"><config:config-item config:name=\"ShowRedlineChanges\""
        " config:type=\"boolean\">false</config:config-item></config:config-item-set>",
        "<office:body><office:text><text:tracked-changes><text:changed-region text:id=\"c1\"><text:deletion><office:change-info>"
        "<dc:creator>a</dc:creator><dc:date>2020-01-01T00:00:00</dc:date></office:change-info><text:p>"
        + QByteArray("gone<text:line-break/>").repeated(90) + "</text:p></text:deletion></text:changed-region></text:tracked-changes>"
        "<text:p>kept<text:change text:change-id=\"c1\"/></text:p></office:text></office:body>");
    QTest::newRow("hidden_changes_zyl") << hiddenChanges << QByteArray() << QStringList{"kept"} << QSize();
    // A picture whose file its package lacks was left out of the prepared copy: the text below it
    // moved up onto its page.
    const QString missingPicture = package(QStringLiteral("missing-picture.zyl"), "1.2", QByteArray(),
        "<office:body><office:text><text:p>above</text:p>"
        + QByteArray("<text:p><draw:frame text:anchor-type=\"as-char\" svg:width=\"5cm\" svg:height=\"15cm\"><draw:image"
                     " xlink:href=\"Pictures/lost.png\" xlink:type=\"simple\" xlink:show=\"embed\"/></draw:frame></text:p>").repeated(2)
        + "<text:p>below</text:p></office:text></office:body>");
    QTest::newRow("picture_missing_from_package_zyl") << missingPicture << QByteArray() << QStringList{"above", "below"} << QSize();
    // The first and last paragraphs of a source lost their places in the list, the last its page
    // break too.
    const auto numbered = [](const QString &last) {
        return ZylTestDocuments::flatDocument(QStringLiteral(
            "<office:automatic-styles><text:list-style style:name=\"L\"><text:list-level-style-number text:level=\"1\""
            " style:num-suffix=\".\" style:num-format=\"1\"/></text:list-style><style:style style:name=\"B\" style:family=\"paragraph\">"
            "<style:paragraph-properties fo:break-before=\"page\"/></style:style></office:automatic-styles><office:body><office:text>"
            "<text:list text:style-name=\"L\"><text:list-item><text:p>one</text:p></text:list-item><text:list-item><text:p>two</text:p>"
            "</text:list-item><text:list-item><text:p text:style-name=\"B\">%1</text:p></text:list-item></text:list></office:text>"
            "</office:body>").arg(last));
    };
    QTest::newRow("last_paragraph_break_and_number_zyl") << QStringLiteral("zyl") << numbered(QStringLiteral("three"))
                                                         << QStringList{"1.one", "3.three"} << QSize();
    // A list of two: each item took the neighbour's list, which the other had lost the same way.
    QTest::newRow("list_of_two_zyl") << QStringLiteral("zyl") << ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><text:list-style style:name=\"L\"><text:list-level-style-number text:level=\"1\""
        " style:num-suffix=\".\" style:num-format=\"1\"/></text:list-style></office:automatic-styles><office:body><office:text>"
        "<text:list text:style-name=\"L\"><text:list-item><text:p>one</text:p></text:list-item><text:list-item><text:p>two</text:p>"
        "</text:list-item></text:list></office:text></office:body>")) << QStringList{"1.one 2.two"} << QSize();
    // An empty one was taken for the paragraph inserted into, and went with its page.
    QTest::newRow("empty_last_paragraph_break_and_number_zyl") << QStringLiteral("zyl") << numbered(QString())
                                                               << QStringList{"1.one", "3."} << QSize();
    // Headings numbered by the source's outline took the target's, which numbers none.
    QTest::newRow("outline_numbering_zyl") << QStringLiteral("zyl") << ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:styles><style:style style:name=\"H\" style:family=\"paragraph\" style:default-outline-level=\"1\"/>"
        "<text:outline-style style:name=\"Outline\"><text:outline-level-style text:level=\"1\" style:num-format=\"1\""
        " style:num-suffix=\".\" text:start-value=\"4\"/></text:outline-style></office:styles><office:body><office:text>"
        "<text:h text:style-name=\"H\" text:outline-level=\"1\">chapter</text:h><text:p>text</text:p><text:h text:style-name=\"H\""
        " text:outline-level=\"1\">next</text:h></office:text></office:body>")) << QStringList{"4.chapter text 5.next"} << QSize();
    // Given its style again, a last paragraph taken out of its style's list got a number. A heading
    // style that numbers, of a name the target defines otherwise, lost its numbers.
    const QByteArray w = "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"";
    const QByteArray rels = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    const QString outOfList = m_dir.filePath(QStringLiteral("out-of-list.docx"));
    zipPackage(outOfList, {
        {QStringLiteral("[Content_Types].xml"),
         "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"><Default Extension=\"rels\""
         " ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/><Default Extension=\"xml\""
         " ContentType=\"application/xml\"/><Override PartName=\"/word/document.xml\""
         " ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml\"/></Types>"},
        {QStringLiteral("_rels/.rels"), "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
         "<Relationship Id=\"d\" Type=\"" + rels + "officeDocument\" Target=\"word/document.xml\"/></Relationships>"},
        {QStringLiteral("word/_rels/document.xml.rels"), "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
         "<Relationship Id=\"s\" Type=\"" + rels + "styles\" Target=\"styles.xml\"/><Relationship Id=\"n\" Type=\"" + rels
         + "numbering\" Target=\"numbering.xml\"/></Relationships>"},
        {QStringLiteral("word/styles.xml"), "<w:styles " + w + "><w:style w:type=\"paragraph\" w:default=\"1\" w:styleId=\"Normal\">"
         "<w:name w:val=\"Normal\"/><w:rPr><w:sz w:val=\"30\"/></w:rPr></w:style><w:style w:type=\"paragraph\" w:styleId=\"Num\">"
         "<w:name w:val=\"Num\"/><w:pPr><w:numPr><w:numId w:val=\"1\"/></w:numPr></w:pPr></w:style><w:style w:type=\"paragraph\""
         " w:styleId=\"Heading1\"><w:name w:val=\"heading 1\"/><w:pPr><w:numPr><w:numId w:val=\"2\"/></w:numPr></w:pPr></w:style>"
         "</w:styles>"},
        {QStringLiteral("word/numbering.xml"), "<w:numbering " + w + "><w:abstractNum w:abstractNumId=\"0\"><w:lvl w:ilvl=\"0\">"
         "<w:start w:val=\"1\"/><w:numFmt w:val=\"decimal\"/><w:lvlText w:val=\"%1.\"/></w:lvl></w:abstractNum>"
         "<w:abstractNum w:abstractNumId=\"1\"><w:lvl w:ilvl=\"0\"><w:start w:val=\"3\"/><w:numFmt w:val=\"decimal\"/>"
         "<w:lvlText w:val=\"%1.\"/></w:lvl></w:abstractNum><w:num w:numId=\"1\"><w:abstractNumId w:val=\"0\"/></w:num><w:num w:numId=\"2\"><w:abstractNumId w:val=\"1\"/></w:num>"
         "</w:numbering>"},
        {QStringLiteral("word/document.xml"), "<w:document " + w + "><w:body><w:p><w:pPr><w:pStyle w:val=\"Heading1\"/></w:pPr><w:r><w:t>Zero</w:t>"
         "</w:r></w:p><w:p><w:pPr><w:pStyle w:val=\"Num\"/></w:pPr><w:r>"
         "<w:t>One</w:t></w:r></w:p><w:p><w:pPr><w:pStyle w:val=\"Num\"/><w:numPr><w:numId w:val=\"0\"/></w:numPr></w:pPr>"
         "<w:r><w:t>Two</w:t></w:r></w:p></w:body></w:document>"}});
    // The target itself, written to the ISO variant of the Word format: the office's reader for
    // that variant inserted nothing, and nothing was missed.
    QTemporaryDir unpacked;
    QProcess::execute(QStringLiteral("unzip"), {QStringLiteral("-q"), m_one, QStringLiteral("-d"), unpacked.path()});
    QList<QPair<QString, QByteArray>> isoParts;
    for (QDirIterator it(unpacked.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();) {
        QFile part(it.next());
        part.open(QIODevice::ReadOnly);
        QByteArray content = part.readAll();
        content.replace("package/2006/relationships/metadata", "officedocument/2006/relationships/metadata");
        isoParts.append({QDir(unpacked.path()).relativeFilePath(part.fileName()), content});
    }
    const QString iso = m_dir.filePath(QStringLiteral("iso.docx"));
    zipPackage(iso, isoParts);
    QTest::newRow("iso_word_package") << iso << QByteArray() << QStringList{"target one"} << QSize(595, 842);
    QTest::newRow("last_paragraph_out_of_list_docx") << outOfList << QByteArray() << QStringList{"3. Zero 1. Two One"} << QSize();
}

void tst_ZylServer::appendMadeDocument()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, flat);
    QFETCH(QStringList, texts);
    QFETCH(QSize, size);
    const QString source = flat.isEmpty() ? suffix : fromFlat(QStringLiteral("made-%1.%2").arg(QTest::currentDataTag(), suffix), flat);
    const QString target = workCopy(m_one, QStringLiteral("made-target.docx"));
    QVERIFY(!source.isEmpty());

    QCOMPARE(edited(target, appending({source})), 1 + texts.size());
    QStringList printed;
    QVector<QSize> sizes;
    QVERIFY(ZylTestDocuments::readPages(target, &printed, &sizes));
    QCOMPARE(printed.size(), 1 + texts.size());
    QCOMPARE(printed.first(), QStringLiteral("target one"));
    QCOMPARE(sizes.first(), QSize(595, 842));
    for (int i = 0; i < texts.size(); ++i) {
        QVERIFY2(printed[i + 1].contains(texts[i]), qPrintable(printed[i + 1]));
        QVERIFY(size.isEmpty() || sizes[i + 1] == size);
    }
}

void tst_ZylServer::groupedHeaderBoxesAndPropertyFields()
{
    // Groups in its headers hold text boxes: inserting it ended the office, then the frame given a
    // box's text went to the footer ("DmfA", beside the header's logo, came out at the foot of the
    // page). Its body's fields show its author and a property of its own, which came out empty.
    const QString target = workCopy(m_one, QStringLiteral("box-target.docx"));
    QCOMPARE(edited(target, appending({QStringLiteral(ZYL_TEST_DATA "/grouped-header-shapes.docx")})), 2);
    const QString page = ZylTestDocuments::pageTexts(target).value(1);
    QVERIFY2(page.startsWith(QStringLiteral("DmfA ")) && page.contains(QStringLiteral("ROB (432)")), qPrintable(page));
}

void tst_ZylServer::linkFieldSavesAsDoc()
{
    // A legacy link field keeps its object's data in a storage of its file's own, which the merged
    // document lacked: saving that as .doc failed.
    const QString target = workCopy(m_one, QStringLiteral("link-target.docx"));
    const QString saved = m_dir.filePath(QStringLiteral("link-merged.doc"));
    QCOMPARE(edited(target, appending({QStringLiteral(ZYL_TEST_DATA "/link-field.doc")}), saved), 2);
}

void tst_ZylServer::endnotesStayWithTheirPages_data()
{
    // A body page, then the endnotes' page. The endnotes printed at the end of whatever document
    // they were in: a cut of the body page kept nothing, a document after them came before them.
    QTest::addColumn<int>("first"); // of the pages cut, or 0 to append another document instead
    QTest::addColumn<int>("last");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("body_page_cut") << 1 << 1 << QStringList{"i note text"};
    QTest::newRow("endnote_page_cut") << 2 << 2 << QStringList{"bodyi"};
    QTest::newRow("inserted_before_another") << 0 << 0 << QStringList{"target one", "bodyi", "i note text", "target one"};
}

void tst_ZylServer::endnotesStayWithTheirPages()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(QStringList, texts);
    const QString source = fromFlat(QStringLiteral("endnotes-%1.docx").arg(QTest::currentDataTag()), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:body><office:text><text:p>body<text:note text:note-class=\"endnote\"><text:note-citation>i</text:note-citation>"
        "<text:note-body><text:p>note text</text:p></text:note-body></text:note></text:p></office:text></office:body>")));
    QVERIFY(!source.isEmpty());
    const QString saved = m_dir.filePath(QStringLiteral("endnotes-%1.zyl").arg(QTest::currentDataTag()));
    QCOMPARE(first ? edited(source, cutting(first, last), saved)
                   : edited(workCopy(m_one, QStringLiteral("endnotes-target.docx")), appending({source, m_one}), saved),
             texts.size());
    QStringList printed;
    QVector<QSize> sizes;
    QVERIFY(ZylTestDocuments::readPages(saved, &printed, &sizes));
    QCOMPARE(printed, texts);
}

void tst_ZylServer::cutKeepsPageLook_data()
{
    formatRows({"zyl", "docx", "doc"});
}

void tst_ZylServer::cutKeepsPageLook()
{
    // A run of pages with a first page and left and right pages of their own. The page that a cut
    // of the first page brings to the front took the first page's header; appended behind another
    // document, the pages changed sides. (The office lays out a document's first page as a right
    // one whatever its number: alone, the cut copy shows its pages on the other sides.)
    QFETCH(QString, suffix);
    const QString headers = QStringLiteral("<style:header><text:p>right</text:p></style:header>"
                                           "<style:header-left><text:p>left</text:p></style:header-left>"
                                           "<style:header-first><text:p>first</text:p></style:header-first>");
    const QString body = QStringLiteral("<text:p>one</text:p><text:p text:style-name=\"B\">two</text:p>"
                                        "<text:p text:style-name=\"B\">three</text:p><text:p text:style-name=\"B\">four</text:p>");
    const QString source = fromFlat(QStringLiteral("look.") + suffix, pagedFlat("21cm", "29.7cm", headers, body));
    QVERIFY(!source.isEmpty());
    const QStringList whole{"first one", "left two", "right three", "left four"};
    QCOMPARE(ZylTestDocuments::pageTexts(source), whole);
    const QString uncut = workCopy(source, QStringLiteral("look-whole.") + suffix);
    const QStringList kept{"left two", "right three", "left four"};

    QCOMPARE(edited(source, cutting(1, 1)), 3);
    const QStringList cutTexts = ZylTestDocuments::pageTexts(source);
    QCOMPARE(cutTexts.size(), 3);
    QVERIFY2(!cutTexts.join(QLatin1Char(' ')).contains(QStringLiteral("first")), qPrintable(cutTexts.join(QLatin1Char('|'))));

    // Behind one page the whole document's pages would change sides by their places, and behind
    // those the cut copy's.
    const QString target = workCopy(m_one, QStringLiteral("look-target.docx"));
    QCOMPARE(edited(target, appending({uncut, source})), 8);
    QCOMPARE(ZylTestDocuments::pageTexts(target), QStringList{"target one"} + whole + kept);
}

void tst_ZylServer::appendKeepsTrackedChanges_data()
{
    formatRows({"zyl", "doc", "docx"});
}

void tst_ZylServer::appendKeepsTrackedChanges()
{
    // The changes of an inserted document were applied on the way in: deletions gone, insertions
    // plain text.
    QFETCH(QString, suffix);
    const QString info = QStringLiteral("<office:change-info><dc:creator>%1</dc:creator><dc:date>2020-01-02T03:04:05</dc:date></office:change-info>");
    const QByteArray flat = ZylTestDocuments::flatDocument(
        QStringLiteral("<office:body><office:text><text:tracked-changes>"
                       "<text:changed-region text:id=\"c1\"><text:insertion>%1</text:insertion></text:changed-region>"
                       "<text:changed-region text:id=\"c2\"><text:deletion>%2<text:p>struck words</text:p></text:deletion></text:changed-region>"
                       "</text:tracked-changes><text:p>kept <text:change-start text:change-id=\"c1\"/>added words"
                       "<text:change-end text:change-id=\"c1\"/> and <text:change text:change-id=\"c2\"/>the end</text:p>"
                       "</office:text></office:body>")
            .arg(info.arg(QStringLiteral("Ann")), info.arg(QStringLiteral("Bob"))));
    const QString source = fromFlat(QStringLiteral("changes.") + suffix, flat);
    const QString target = workCopy(m_one, QStringLiteral("changes-target.docx"));
    QVERIFY(!source.isEmpty());

    QCOMPARE(edited(target, appending({source})), 2);
    const QStringList texts = ZylTestDocuments::pageTexts(target);
    QCOMPARE(texts.size(), 2);
    QVERIFY2(texts[1].contains(QStringLiteral("added words")) && texts[1].contains(QStringLiteral("struck words")), qPrintable(texts[1]));
    const QString reread = m_dir.filePath(QStringLiteral("changes-%1.fodt").arg(suffix));
    QFile::remove(reread);
    QVERIFY(ZylTestDocuments::convert(target, reread));
    const QByteArray saved = contents(reread);
    QCOMPARE(saved.count("<text:insertion>"), 1);
    QCOMPARE(saved.count("<text:deletion>"), 1);
    QVERIFY(saved.contains("<dc:creator>Ann</dc:creator>") && saved.contains("<dc:creator>Bob</dc:creator>"));
}

void tst_ZylServer::cutFirstPage_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("flat");
    QTest::addColumn<QStringList>("texts"); // of the pages that stay
    // A document that records changes kept its cut pages as tracked deletions.
    QByteArray recording = ZylTestDocuments::flatDocument(ZylTestDocuments::pages({"page one", "page two", "page three"}));
    recording.replace("<office:text>", "<office:text><text:tracked-changes text:track-changes=\"true\"/>");
    QTest::newRow("recording_changes_docx") << QStringLiteral("docx") << recording << QStringList({"page two", "page three"});
    QTest::newRow("recording_changes_zyl") << QStringLiteral("zyl") << recording << QStringList({"page two", "page three"});
    // Cross-references to a bookmark, a note and a caption on the page that goes printed an error
    // in their place, in the text, a table or the header; one to a bookmark that stays is still a field.
    QTest::newRow("references_to_cut_page_zyl") << QStringLiteral("zyl") << pagedFlat("21cm", "29.7cm", QStringLiteral(
        "<style:header><text:p>head <text:bookmark-ref text:reference-format=\"text\" text:ref-name=\"gone\">first words</text:bookmark-ref>"
        "</text:p></style:header>"), QStringLiteral(
        "<text:p><text:bookmark-start text:name=\"gone\"/>first words<text:bookmark-end text:name=\"gone\"/>"
        "<text:note text:id=\"n1\" text:note-class=\"footnote\"><text:note-citation>1</text:note-citation>"
        "<text:note-body><text:p>note</text:p></text:note-body></text:note>"
        " <text:sequence text:name=\"Figure\" text:formula=\"ooow:Figure+1\" style:num-format=\"1\" text:ref-name=\"refFigure0\">1</text:sequence></text:p>"
        "<text:p text:style-name=\"B\"><text:bookmark-start text:name=\"kept\"/>second words<text:bookmark-end text:name=\"kept\"/></text:p>"
        "<text:p>see <text:bookmark-ref text:reference-format=\"text\" text:ref-name=\"gone\">first words</text:bookmark-ref>,"
        " <text:note-ref text:note-class=\"footnote\" text:reference-format=\"text\" text:ref-name=\"n1\">1</text:note-ref>,"
        " <text:sequence-ref text:reference-format=\"value\" text:ref-name=\"refFigure0\">1</text:sequence-ref> and"
        " <text:bookmark-ref text:reference-format=\"text\" text:ref-name=\"kept\">stale</text:bookmark-ref></text:p>"
        "<table:table><table:table-column/><table:table-row><table:table-cell><text:p>cell <text:bookmark-ref"
        " text:reference-format=\"text\" text:ref-name=\"gone\">first words</text:bookmark-ref></text:p></table:table-cell>"
        "</table:table-row></table:table>"))
        << QStringList({"head first words second words see first words, 1, 1 and second words cell first words"});
    // The title of a table of contents on the cut page stayed behind, on a page of its own.
    QTest::newRow("contents_on_cut_page_zyl") << QStringLiteral("zyl") << pagedFlat("21cm", "29.7cm", QString(), QStringLiteral(
        "<text:table-of-content text:name=\"T\"><text:table-of-content-source text:outline-level=\"3\">"
        "<text:index-title-template>Contents</text:index-title-template></text:table-of-content-source><text:index-body>"
        "<text:index-title text:name=\"TH\"><text:p>Contents</text:p></text:index-title><text:p>entry</text:p></text:index-body>"
        "</text:table-of-content><table:table><table:table-column/><table:table-row><table:table-cell><text:p>cell</text:p>"
        "</table:table-cell></table:table-row></table:table><text:p text:style-name=\"B\">page two</text:p>"))
        << QStringList({"page two"});
    // After a table that ends the cut page, the page that stays lost the page style it continued.
    QTest::newRow("page_style_after_table_zyl") << QStringLiteral("zyl") << ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><style:page-layout style:name=\"pm\"/><style:style style:name=\"O\" style:family=\"paragraph\""
        " style:master-page-name=\"Other\"/><style:style style:name=\"B\" style:family=\"paragraph\"><style:paragraph-properties"
        " fo:break-before=\"page\"/></style:style></office:automatic-styles><office:master-styles><style:master-page"
        " style:name=\"Standard\" style:page-layout-name=\"pm\"/><style:master-page style:name=\"Other\" style:page-layout-name=\"pm\">"
        "<style:header><text:p>other header</text:p></style:header></style:master-page></office:master-styles><office:body>"
        "<office:text><text:p text:style-name=\"O\">one</text:p><table:table><table:table-column/><table:table-row><table:table-cell>"
        "<text:p>cell</text:p></table:table-cell></table:table-row></table:table><text:p text:style-name=\"B\">two</text:p>"
        "</office:text></office:body>")) << QStringList({"other header two"});
    // The part of a paragraph that runs on to the page that stays took the paragraph's spacing
    // above it again and pushed the page's last lines over; so did a paragraph that the text
    // pushed to the top of that page, where the Word formats give it no such spacing. Empty
    // texts: the pages as they were.
    const auto lines = [](int from, int to) {
        QStringList all;
        for (int line = from; line <= to; ++line)
            all << QStringLiteral("line %1").arg(line);
        return all.join(QStringLiteral("<text:line-break/>"));
    };
    const auto spaced = [](const QString &body) {
        return ZylTestDocuments::flatDocument(QStringLiteral(
            "<office:styles><style:style style:name=\"S\" style:family=\"paragraph\"><style:paragraph-properties"
            " fo:margin-top=\"5cm\"/></style:style></office:styles><office:automatic-styles><style:style"
            " style:name=\"K\" style:family=\"paragraph\"><style:paragraph-properties fo:margin-top=\"5cm\""
            " fo:keep-together=\"always\"/></style:style></office:automatic-styles>"
            "<office:body><office:text>%1</office:text></office:body>").arg(body));
    };
    QTest::newRow("paragraph_run_on_from_cut_page_docx") << QStringLiteral("docx") << spaced(QStringLiteral(
        "<text:p text:style-name=\"S\">%1</text:p><text:p>%2</text:p>").arg(lines(1, 60), lines(61, 90))) << QStringList();
    QTest::newRow("paragraph_pushed_to_page_top_docx") << QStringLiteral("docx") << spaced(QStringLiteral(
        "<text:p>%1</text:p><text:p text:style-name=\"K\">%2</text:p><text:p>%3</text:p>").arg(lines(1, 40), lines(41, 70), lines(71, 88)))
        << QStringList();
    // A list that runs on to the page that stays counted its items there from 1, as well.
    QString items;
    for (int item = 1; item <= 70; ++item)
        items += QStringLiteral("<text:list-item><text:p>item %1</text:p></text:list-item>").arg(item);
    QTest::newRow("list_run_on_from_cut_page_docx") << QStringLiteral("docx") << ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><text:list-style style:name=\"L\"><text:list-level-style-number text:level=\"1\""
        " style:num-suffix=\".\" style:num-format=\"1\"/></text:list-style></office:automatic-styles><office:body><office:text>"
        "<text:list text:style-name=\"L\">%1</text:list></office:text></office:body>").arg(items)) << QStringList();
}

void tst_ZylServer::cutFirstPage()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, flat);
    QFETCH(QStringList, texts);
    const QString path = fromFlat(QStringLiteral("cut-first-%1.%2").arg(QTest::currentDataTag(), suffix), flat);
    QVERIFY(!path.isEmpty());
    if (texts.isEmpty())
        texts = ZylTestDocuments::pageTexts(path).mid(1);
    QCOMPARE(edited(path, cutting(1, 1)), texts.size());
    QCOMPARE(ZylTestDocuments::pageTexts(path), texts);
    // Behind another document, after the break that starts the copy's first page, as well.
    const QString merged = m_dir.filePath(QStringLiteral("cut-first-merged-%1.docx").arg(QTest::currentDataTag()));
    QCOMPARE(edited(workCopy(m_one, QStringLiteral("cut-first-target.docx")), appending({path}), merged), 1 + texts.size());
    QCOMPARE(ZylTestDocuments::pageTexts(merged), QStringList{"target one"} + texts);
}

void tst_ZylServer::appendTakesTheFileAsItIs_data()
{
    QTest::addColumn<bool>("editedAfterSaving");
    QTest::newRow("cut further after saving") << true;
    QTest::newRow("file replaced after closing") << false;
}

void tst_ZylServer::appendTakesTheFileAsItIs()
{
    // A copy cut and saved here is opened and appended as its file holds it, whatever became of
    // the document after the save. Landscape pages make the source's layout come along with it.
    QFETCH(bool, editedAfterSaving);
    const QString source = pageDoc(QStringLiteral("land-three.docx"), ZylTestDocuments::pages({"land one", "land two", "land three"}, Page::Landscape));
    const QString other = pageDoc(QStringLiteral("land-other.docx"), ZylTestDocuments::pages({"other one", "other two", "other three"}, Page::Landscape));
    const QString target = workCopy(m_one, QStringLiteral("as-it-is-target.docx"));
    const QString copy = workCopy(source, QStringLiteral("as-it-is-copy.docx"));

    Dispatch cut;
    QCOMPARE(m_zyl->openDocument(copy, &cut), S_OK);
    QCOMPARE(m_zyl->deletePages(cut.get(), 1, 1), S_OK);
    QCOMPARE(m_zyl->saveDocument(cut.get()), S_OK);
    if (editedAfterSaving)
        QCOMPARE(m_zyl->deletePages(cut.get(), 1, 1), S_OK);
    QCOMPARE(m_zyl->closeDocument(cut.get()), S_OK);
    QStringList expected{"land two", "land three"};
    if (!editedAfterSaving) {
        QCOMPARE(workCopy(other, QStringLiteral("as-it-is-copy.docx")), copy);
        expected = QStringList{"other one", "other two", "other three"};
    }
    QCOMPARE(pageCount(copy), expected.size());
    QCOMPARE(edited(target, appending({copy})), 1 + expected.size());
    QCOMPARE(ZylTestDocuments::pageTexts(target), QStringList{"target one"} + expected);
}

void tst_ZylServer::fullPageTable_data()
{
    formatRows({"zyl", "doc"});
}

void tst_ZylServer::fullPageTable()
{
    // A table as high as the page's body, and paragraphs that no longer fit after it. Inserted, the
    // table stayed behind the empty paragraph inserted into and moved to a page of its own; cut
    // after the table, the paragraph left behind took a page of its own.
    QFETCH(QString, suffix);
    const QString source = fromFlat(QStringLiteral("full-table.") + suffix, pagedFlat("21cm", "29.7cm", QString(), QStringLiteral(
        "<table:table><table:table-column/><table:table-row table:style-name=\"R\"><table:table-cell>"
        "<text:p>one</text:p></table:table-cell></table:table-row></table:table><text:p>two</text:p><text:p>three</text:p>")));
    QVERIFY(!source.isEmpty());
    QCOMPARE(ZylTestDocuments::pageTexts(source), QStringList({"one", "two three"}));
    const QString whole = workCopy(source, QStringLiteral("full-table-whole.") + suffix);

    QVERIFY(edited(source, cutting(2, 2)) > 0);
    QCOMPARE(ZylTestDocuments::pageTexts(source), QStringList({"one"}));

    const QString target = workCopy(m_one, QStringLiteral("full-table-target.docx"));
    const QString merged = m_dir.filePath(QStringLiteral("full-table-merged.") + suffix);
    // Behind the cut copy the table follows a table: the paragraph between them took a line.
    QCOMPARE(edited(target, appending({whole, source, whole}), merged), 6);
    QCOMPARE(ZylTestDocuments::pageTexts(merged), QStringList({"target one", "one", "two three", "one", "one", "two three"}));

    // Behind a page of its own style, the table is not left to its style to start the page.
    const QString same = workCopy(whole, QStringLiteral("full-table-same.") + suffix);
    QCOMPARE(edited(same, appending({whole})), 4);
    QCOMPARE(ZylTestDocuments::pageTexts(same), QStringList({"one", "two three", "one", "two three"}));
}

void tst_ZylServer::leadingTableInTargetStyle()
{
    // The table starts its page by its page style, which the .doc format drops where the style
    // does not change: the table ran on after the target's page.
    const QString source = fromFlat(QStringLiteral("table-first.doc"),
                                    ZylTestDocuments::flatDocument(QVector<Page>{{"table one", Page::TableStart, 0}}));
    const QString merged = m_dir.filePath(QStringLiteral("table-first-merged.doc"));
    QCOMPARE(edited(workCopy(m_one, QStringLiteral("table-first-target.docx")), appending({source}), merged), 2);
    QCOMPARE(ZylTestDocuments::pageTexts(merged).size(), 2);

    // Where it does change, the .doc export takes the style from the table's first paragraph, which
    // named the source's style of a name the target has too: the landscape page came out portrait.
    QByteArray flat = ZylTestDocuments::flatDocument(QVector<Page>{{"table one", Page::TableStart, 0}});
    flat.replace("style:name=\"TN\" style:family=\"table\"", "style:name=\"TN\" style:family=\"table\" style:master-page-name=\"Landscape\"");
    flat.replace("<text:p>table one", "<text:p text:style-name=\"PP\">table one");
    const QString landscape = fromFlat(QStringLiteral("table-landscape.zyl"), flat);
    const QString landscapeMerged = m_dir.filePath(QStringLiteral("table-landscape-merged.doc"));
    QCOMPARE(edited(workCopy(m_one, QStringLiteral("table-landscape-target.docx")), appending({landscape}), landscapeMerged), 2);
    QStringList texts;
    QVector<QSize> sizes;
    QVERIFY(ZylTestDocuments::readPages(landscapeMerged, &texts, &sizes));
    QCOMPARE(sizes.size(), 2);
    QVERIFY2(sizes[1].width() > sizes[1].height(), qPrintable(QStringLiteral("%1x%2").arg(sizes[1].width()).arg(sizes[1].height())));
}

void tst_ZylServer::layoutRulesOfTheLargestPart_data()
{
    QTest::addColumn<int>("pages"); // of the part appended to the one-page Word target
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("larger_part") << 2 << QByteArray("true");
    QTest::newRow("equal_part") << 1 << QByteArray("false");
}

void tst_ZylServer::layoutRulesOfTheLargestPart()
{
    // An OpenDocument source saved with a Word target kept the target's rules, under which its
    // lines took more room: a full page ran over (api-for-odfpy.odt page 48).
    QFETCH(int, pages);
    QFETCH(QByteArray, kept);
    QByteArray body = "<text:p>part page 1</text:p>";
    for (int page = 2; page <= pages; ++page)
        body += "<text:p text:style-name=\"B\">part page " + QByteArray::number(page) + "</text:p>";
    const QString source = package(QStringLiteral("rules-%1.zyl").arg(QTest::currentDataTag()), "1.2",
        "<config:config-item-set config:name=\"ooo:configuration-settings\"><config:config-item config:name=\"UnxForceZeroExtLeading\""
        " config:type=\"boolean\">true</config:config-item></config:config-item-set>",
        "<office:automatic-styles><style:style style:name=\"B\" style:family=\"paragraph\"><style:paragraph-properties"
        " fo:break-before=\"page\"/></style:style></office:automatic-styles><office:body><office:text>" + body + "</office:text></office:body>");
    const QString saved = m_dir.filePath(QStringLiteral("rules-%1-merged.zyl").arg(QTest::currentDataTag()));
    QCOMPARE(edited(workCopy(m_one, QStringLiteral("rules-target.docx")), appending({source}), saved), 1 + pages);
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), saved, QStringLiteral("settings.xml")});
    QVERIFY(unzip.waitForFinished());
    const QByteArray settings = unzip.readAllStandardOutput();
    QVERIFY2(settings.contains("config:name=\"UnxForceZeroExtLeading\" config:type=\"boolean\">" + kept), settings.left(200).constData());
}

void tst_ZylServer::docKeepsPageStyleOfPicturesOverPages()
{
    // A landscape paragraph of two shapes in the text, a page each: the .doc export drops the page
    // style of a paragraph that runs over pages, and both pages came out portrait.
    const QString source = fromFlat(QStringLiteral("shapes-landscape.zyl"), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><style:page-layout style:name=\"pmL\"><style:page-layout-properties fo:page-width=\"29.7cm\""
        " fo:page-height=\"21cm\" style:print-orientation=\"landscape\" fo:margin-top=\"2cm\" fo:margin-bottom=\"2cm\""
        " fo:margin-left=\"2cm\" fo:margin-right=\"2cm\"/></style:page-layout><style:style style:name=\"P\" style:family=\"paragraph\""
        " style:master-page-name=\"Wide\"/></office:automatic-styles><office:master-styles><style:master-page style:name=\"Wide\""
        " style:page-layout-name=\"pmL\"/></office:master-styles><office:body><office:text><text:p text:style-name=\"P\">%1</text:p>"
        "</office:text></office:body>").arg(QStringLiteral("<draw:rect text:anchor-type=\"as-char\" svg:width=\"20cm\" svg:height=\"14cm\"/>").repeated(2))));
    const QString merged = m_dir.filePath(QStringLiteral("shapes-landscape-merged.doc"));
    QCOMPARE(edited(workCopy(m_one, QStringLiteral("shapes-landscape-target.docx")), appending({source}), merged), 3);
    QStringList texts;
    QVector<QSize> sizes;
    QVERIFY(ZylTestDocuments::readPages(merged, &texts, &sizes));
    QCOMPARE(sizes.size(), 3);
    for (int page = 1; page < 3; ++page)
        QVERIFY2(sizes[page].width() > sizes[page].height(), qPrintable(QStringLiteral("page %1").arg(page + 1)));
}

void tst_ZylServer::docKeepsEmptyParagraphFonts()
{
    // Saved as .doc, an empty paragraph took the size of the empty one before it: pairs of a tall
    // and a plain empty paragraph ran on over a second page.
    QString body;
    for (int pair = 0; pair < 6; ++pair)
        body += QStringLiteral("<text:p text:style-name=\"Tall\"/><text:p/>");
    const QString source = fromFlat(QStringLiteral("empty-fonts.zyl"), ZylTestDocuments::flatDocument(QStringLiteral(
        "<office:automatic-styles><style:style style:name=\"Tall\" style:family=\"paragraph\"><style:text-properties"
        " fo:font-size=\"72pt\"/></style:style></office:automatic-styles><office:body><office:text>%1"
        "<text:p>end</text:p></office:text></office:body>").arg(body)));
    const QString saved = m_dir.filePath(QStringLiteral("empty-fonts.doc"));
    QCOMPARE(edited(source, [](IDispatch *) { return S_OK; }, saved), 1);
    QCOMPARE(pageCount(saved), 1);
}

void tst_ZylServer::editsMatchFreshReading_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVector<Page>>("pages");
    QTest::newRow("plain_docx") << "step-plain.docx" << ZylTestDocuments::pages({"one", "two", "three", "four", "five", "six"});
    QTest::newRow("tables_zyl") << "step-tables.zyl"
        << QVector<Page>{{"one", Page::Text, 0}, {"table two", Page::TableStart, 0}, {"three", Page::Text, 0},
                         {"table four", Page::TableStart, 0}, {"five", Page::Text, 0}, {"six", Page::Text, 0}};
    QTest::newRow("blank_pages_zyl") << "step-blank.zyl" << rightPages() + ZylTestDocuments::pages({"five", "six"});
}

void tst_ZylServer::editsMatchFreshReading()
{
    // A merge edits a document at its start, in its middle and at its end, asking for pages in
    // between; what the server answers after each edit must be what it reads from the document
    // once it is opened afresh.
    QFETCH(QString, name);
    QFETCH(QVector<Page>, pages);
    const QString appended = pageDoc(QStringLiteral("append-b.docx"), ZylTestDocuments::pages({"second alpha", "second bravo", "second charlie"}));
    const QString work = workCopy(pageDoc(name, pages), QStringLiteral("work-") + name);
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(work, &doc), S_OK);
    QStringList expected;
    for (const Page &page : pages)
        expected.append(page.text);
    const QVector<int> first = checkedPageStarts(*m_zyl, doc.get(), expected.size());
    QVERIFY(!first.isEmpty());
    // A merge takes back a page break that did not start exactly one page. The office's undo is
    // a change the server does not make itself: it learns of it as of anyone else's.
    QCOMPARE(m_zyl->insertBreakAtEnd(doc.get()), S_OK);
    QVERIFY(!checkedPageStarts(*m_zyl, doc.get(), expected.size() + 1).isEmpty());
    QCOMPARE(m_zyl->undo(doc.get(), 1), S_OK);
    QCOMPARE(checkedPageStarts(*m_zyl, doc.get(), expected.size()), first);

    QCOMPARE(m_zyl->deletePages(doc.get(), 3, 3), S_OK);
    expected.removeAt(2);
    QVERIFY(!checkedPageStarts(*m_zyl, doc.get(), expected.size()).isEmpty());
    QCOMPARE(m_zyl->deletePages(doc.get(), 1, 1), S_OK);
    expected.removeAt(0);
    QVERIFY(!checkedPageStarts(*m_zyl, doc.get(), expected.size()).isEmpty());
    QCOMPARE(m_zyl->appendDocument(doc.get(), appended), S_OK);
    expected << "second alpha" << "second bravo" << "second charlie";
    QVERIFY(!checkedPageStarts(*m_zyl, doc.get(), expected.size()).isEmpty());
    QCOMPARE(m_zyl->deletePages(doc.get(), expected.size(), expected.size()), S_OK);
    expected.removeLast();
    const QVector<int> kept = checkedPageStarts(*m_zyl, doc.get(), expected.size());
    QVERIFY(!kept.isEmpty());

    const QString saved = m_dir.filePath(QStringLiteral("stepped-") + QFileInfo(name).completeBaseName() + QStringLiteral(".zyl"));
    QCOMPARE(m_zyl->saveDocumentAs(doc.get(), saved, QString()), S_OK);
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
    Dispatch fresh;
    QCOMPARE(m_zyl->openDocument(saved, &fresh), S_OK);
    QCOMPARE(checkedPageStarts(*m_zyl, fresh.get(), expected.size()), kept);
    QCOMPARE(m_zyl->closeDocument(fresh.get()), S_OK);
    const QStringList texts = ZylTestDocuments::pageTexts(saved);
    QCOMPARE(texts.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QVERIFY2(texts[i].startsWith(expected[i]), qPrintable(QStringLiteral("page %1 is '%2', wanted '%3'").arg(i + 1).arg(texts[i], expected[i])));
}

void tst_ZylServer::saveAsFormats_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QVariant>("format"); // invalid: VT_EMPTY
    QTest::addColumn<QByteArray>("magic"); // empty: the save fails and leaves the target as it was
    QTest::addColumn<QByteArray>("marker"); // held by the saved file, or by the target before a refused save

    const QByteArray zip("PK\x03\x04", 4);
    const QByteArray ole("\xD0\xCF\x11\xE0", 4);
    QTest::newRow("code_12_docx") << "out12.docx" << QVariant(12) << zip << QByteArray("word/document.xml");
    // A '?' in the name must not end the path the office is given.
    QTest::newRow("by_extension_docx") << "out0?.docx" << QVariant(0) << zip << QByteArray("word/document.xml");
    QTest::newRow("by_extension_doc") << "out0.doc" << QVariant(0) << ole << QByteArray();
    QTest::newRow("by_extension_zyl") << "out0.zyl" << QVariant(0) << zip << QByteArray("application/vnd.oasis.opendocument.text");
    QTest::newRow("no_format_keeps_docx") << "kept.zyl" << QVariant() << zip << QByteArray("word/document.xml");
    QTest::newRow("existing_target_kept") << "existing.docx" << QVariant(12) << QByteArray() << QByteArray("keep me");
    QTest::newRow("unknown_type_refused") << "odd.xyz" << QVariant(0) << QByteArray() << QByteArray();
}

void tst_ZylServer::saveAsFormats()
{
    QFETCH(QString, target);
    QFETCH(QVariant, format);
    QFETCH(QByteArray, magic);
    QFETCH(QByteArray, marker);

    const QString path = m_dir.filePath(target);
    QFile::remove(path);
    if (magic.isEmpty() && !marker.isEmpty())
        QVERIFY(writeFile(path, marker));
    // The saved file gets the mode of any new file, not that of the private temporary one.
    const mode_t oldMask = ::umask(027);
    auto restoreMask = qScopeGuard([oldMask] { ::umask(oldMask); });
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(m_three, &doc), S_OK);
    const HRESULT hr = saveAs(doc.get(), path, format.isValid() ? ScopedVariant(LONG(format.toInt())) : ScopedVariant());
    QCOMPARE(m_zyl->closeDocument(doc.get()), S_OK);
    // Nothing is left over from writing.
    QCOMPARE(QDir(m_dir.path()).entryList({QStringLiteral(".~vzyl*")}, QDir::Files | QDir::Hidden), QStringList());
    if (magic.isEmpty()) {
        QVERIFY(FAILED(hr));
        QCOMPARE(QFileInfo::exists(path), !marker.isEmpty());
        QCOMPARE(contents(path), marker);
        return;
    }
    QCOMPARE(hr, S_OK);
    QCOMPARE(fileMode(path), mode_t(0640));
    const QByteArray bytes = contents(path);
    QVERIFY2(bytes.startsWith(magic), bytes.left(16).toHex().constData());
    QVERIFY(marker.isEmpty() || bytes.contains(marker));
    QCOMPARE(pageCount(path), 3);
}

void tst_ZylServer::textVariantsAreTextDocuments_data()
{
    QTest::addColumn<QByteArray>("mediaType");
    QTest::newRow("web") << QByteArray("application/vnd.oasis.opendocument.text-web");
    QTest::newRow("master") << QByteArray("application/vnd.oasis.opendocument.text-master");
}

void tst_ZylServer::textVariantsAreTextDocuments()
{
    // Packages of the office's web and master variants, named as users name their documents.
    QFETCH(QByteArray, mediaType);
    const QList<QPair<QString, QByteArray>> entries{
        {QStringLiteral("mimetype"), mediaType},
        {QStringLiteral("META-INF/manifest.xml"),
         "<manifest:manifest xmlns:manifest=\"urn:oasis:names:tc:opendocument:xmlns:manifest:1.0\" manifest:version=\"1.3\">"
         "<manifest:file-entry manifest:full-path=\"/\" manifest:media-type=\"" + mediaType + "\"/>"
         "<manifest:file-entry manifest:full-path=\"content.xml\" manifest:media-type=\"text/xml\"/></manifest:manifest>"},
        {QStringLiteral("content.xml"),
         "<office:document-content xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\""
         " xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\" xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\""
         " xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\" office:version=\"1.3\">"
         "<office:automatic-styles><style:style style:name=\"B\" style:family=\"paragraph\">"
         "<style:paragraph-properties fo:break-before=\"page\"/></style:style></office:automatic-styles>"
         "<office:body><office:text><text:p>variant one</text:p><text:p text:style-name=\"B\">variant two</text:p>"
         "</office:text></office:body></office:document-content>"}};
    const QString path = m_dir.filePath(QStringLiteral("%1.zyl").arg(QTest::currentDataTag()));
    QVERIFY(zipPackage(path, entries));

    const QString saved = m_dir.filePath(QStringLiteral("%1-saved.docx").arg(QTest::currentDataTag()));
    QCOMPARE(edited(path, [](IDispatch *) { return S_OK; }, saved), 2);
    QCOMPARE(ZylTestDocuments::pageTexts(saved), QStringList({"variant one", "variant two"}));
}

void tst_ZylServer::saveReplacesAtomically_data()
{
    QTest::addColumn<QString>("source"); // empty: a made four-page .doc whose page 2 is cut
    QTest::newRow("made_doc_cut") << QString();
    // The office reads Word 6 files but cannot write them: the copy is saved as Word 97-2003.
    QTest::newRow("word6_doc") << QStringLiteral(ZYL_TEST_DATA "/Word6_sections2.doc");
}

void tst_ZylServer::saveReplacesAtomically()
{
    QFETCH(QString, source);
    const bool made = source.isEmpty();
    if (made)
        source = pageDoc(QStringLiteral("plain.doc"), ZylTestDocuments::pages({"page one", "page two", "page three", "page four"}));
    const QString work = workCopy(source, QStringLiteral("save-%1.doc").arg(QTest::currentDataTag()));
    QCOMPARE(::chmod(QFile::encodeName(work).constData(), 0604), 0);
    const int pages = edited(work, made ? cutting(2, 2) : [](IDispatch *) { return S_OK; });
    QVERIFY(pages > 0);
    QCOMPARE(fileMode(work), mode_t(0604));
    QVERIFY(contents(work).startsWith(QByteArray("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", 8))); // still the format it was loaded in
    if (made)
        QCOMPARE(ZylTestDocuments::pageTexts(work), QStringList({"page one", "page three", "page four"}));
    else
        QCOMPARE(ZylTestDocuments::pdfPageCount(work), pages);
    QCOMPARE(QDir(m_dir.path()).entryList({QStringLiteral(".~vzyl*")}, QDir::Files | QDir::Hidden), QStringList());
}

void tst_ZylServer::badFilesFailQuickly_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("suffix");
    // Beside the corpus's plain text, zero-byte and truncated .docx files.
    QTest::newRow("garbage_zyl") << QByteArray("\x01\x02 nothing here", 15) << "zyl";
    QTest::newRow("truncated_zip_docx") << QByteArray("PK\x03\x04\x14\x00\x06\x00", 8) << "docx";
}

void tst_ZylServer::badFilesFailQuickly()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, suffix);
    const QString path = m_dir.filePath(QStringLiteral("bad-%1.%2").arg(QTest::currentDataTag()).arg(suffix));
    QVERIFY(writeFile(path, content));
    QElapsedTimer timer;
    timer.start();
    Dispatch doc;
    const HRESULT hr = m_zyl->openDocument(path, &doc);
    QVERIFY2(FAILED(hr), "a file that is no document opened");
    QVERIFY(timer.elapsed() < 30000);
    QVERIFY(!doc);
    QCOMPARE(contents(path), content);
    // A missing file fails as well, without the office.
    Dispatch documents;
    QCOMPARE(m_zyl->documents(&documents), S_OK);
    QVERIFY(FAILED(invoke(documents.get(), QStringLiteral("Open"), DISPATCH_METHOD, arguments(text(path + QStringLiteral(".missing"))))));
}

void tst_ZylServer::quitClosesOnlyOwnDocuments()
{
    const std::unique_ptr<Zyl> other = newApplication();
    QVERIFY(other);
    Dispatch mine, theirs;
    QCOMPARE(m_zyl->openDocument(m_three, &mine), S_OK);
    QCOMPARE(other->openDocument(m_three, &theirs), S_OK);
    QCOMPARE(other->quitApplication(), S_OK);
    int pages = 0;
    QCOMPARE(m_zyl->computeStatistics(mine.get(), &pages), S_OK);
    QCOMPARE(pages, 3);
    QVERIFY(FAILED(m_zyl->computeStatistics(theirs.get(), &pages)));
    QCOMPARE(m_zyl->closeDocument(mine.get()), S_OK);
    // Closing twice is an error, not a crash.
    QVERIFY(FAILED(m_zyl->closeDocument(mine.get())));
}

void tst_ZylServer::twoApplicationsOnTwoThreads()
{
    std::atomic<int> counts[2] = {{-1}, {-1}};
    auto work = [&](int slot, QString path) {
        Zyl zyl;
        for (int round = 0; round < 3 && (zyl.hasApplication() || zyl.enterRun()); ++round) {
            Dispatch doc;
            int pages = -1;
            if (SUCCEEDED(zyl.openDocument(path, &doc)) && SUCCEEDED(zyl.computeStatistics(doc.get(), &pages)))
                counts[slot] = round == 2 ? pages : counts[slot].load();
            zyl.closeDocument(doc.get());
        }
        zyl.leaveRun();
    };
    std::thread first(work, 0, pageDoc(QStringLiteral("plain.docx"), ZylTestDocuments::pages({"page one", "page two", "page three", "page four"})));
    std::thread second(work, 1, m_three);
    first.join();
    second.join();
    QCOMPARE(counts[0].load(), 4);
    QCOMPARE(counts[1].load(), 3);
}

void tst_ZylServer::hungOfficeIsKilled_data()
{
    QTest::addColumn<bool>("inserting");
    QTest::addColumn<int>("signal");
    QTest::addColumn<bool>("quitting");
    QTest::newRow("counting") << false << int(SIGSTOP) << false;
    // The server still holds the document just closed, to insert it without loading it again.
    QTest::newRow("inserting a document just closed") << true << int(SIGSTOP) << false;
    QTest::newRow("killed while counting") << false << int(SIGKILL) << false;
    // Leaves the server quitting: must stay the last row of the last test.
    QTest::newRow("application quitting") << false << int(SIGSTOP) << true;
}

void tst_ZylServer::hungOfficeIsKilled()
{
    QFETCH(bool, inserting);
    QFETCH(int, signal);
    QFETCH(bool, quitting);
    Dispatch doc;
    QCOMPARE(m_zyl->openDocument(m_three, &doc), S_OK);
    Dispatch end;
    if (inserting) {
        Dispatch closed;
        QCOMPARE(m_zyl->openDocument(m_one, &closed), S_OK);
        QCOMPARE(m_zyl->closeDocument(closed.get()), S_OK);
        QCOMPARE(m_zyl->wholeRange(doc.get(), &end), S_OK);
        QCOMPARE(m_zyl->collapseToEnd(end.get()), S_OK);
    }
    // A frozen office is cut off by the call limit, or well before it once the application
    // quits; a killed one must be noticed without either.
    if (signal == SIGSTOP && !quitting)
        qputenv("VZYL_CALL_TIMEOUT", "5");
    auto restore = qScopeGuard([] { qunsetenv("VZYL_CALL_TIMEOUT"); });
    const qint64 office = soleOffice();
    QVERIFY(office > 1);
    QCOMPARE(::kill(pid_t(office), signal), 0);
    QVERIFY(!quitting || QMetaObject::invokeMethod(QCoreApplication::instance(), "aboutToQuit"));
    QElapsedTimer timer;
    timer.start();
    int pages = 0;
    // The process lives on to tell of the failure.
    const HRESULT hr = inserting ? invoke(end.get(), QStringLiteral("InsertFile"), DISPATCH_METHOD, arguments(text(m_one)))
                                 : m_zyl->computeStatistics(doc.get(), &pages);
    QVERIFY(FAILED(hr));
    QVERIFY2(timer.elapsed() < (quitting ? 10000 : 30000), qPrintable(QString::number(timer.elapsed())));
    QTRY_VERIFY_WITH_TIMEOUT(!ourOffices().contains(office), 15000);
    end.reset();
    doc.reset();
    if (quitting) {
        m_zyl.reset();
        // Nothing starts an office for work that nobody waits for any more.
        const std::unique_ptr<Zyl> late = newApplication();
        QVERIFY(!late || FAILED(late->openDocument(m_three, &doc)));
        QVERIFY(ourOffices().isEmpty());
        return;
    }
    m_zyl = newApplication();
    QVERIFY(m_zyl);
    QCOMPARE(pageCount(m_three), 3);
}

QTEST_GUILESS_MAIN(tst_ZylServer)
#include "tst_zylserver.moc"

#include <QCryptographicHash>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <unistd.h>

#include "docmergerun.h"
#include "officeprocesses.h"
#include "zyltestdocuments.h"

// docmerge against the real word-processor server.
class tst_DocMergeOffice : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void merge_data();
    void merge();
    void frozenOfficeFailsTheMerge();
    void busyOfficeIsLeftAlone();

private:
    DocMergeRun run(const QStringList &arguments)
    {
        return runDocMerge(arguments, m_dir.path(), QProcessEnvironment::systemEnvironment(), 600000);
    }
    QString source(const QString &stem, const QString &suffix, int pages);
    static QByteArray checksum(const QString &path);

    QString m_corpus;
    QTemporaryDir m_dir;
};

void tst_DocMergeOffice::initTestCase()
{
    if (!QFileInfo::exists(QStringLiteral("/usr/lib/libreoffice/program/soffice.bin")))
        QSKIP("LibreOffice is not installed: the word-processor server cannot run here");
    QVERIFY(m_dir.isValid());
    QVERIFY(QFileInfo(QStringLiteral(DOCMERGE_PROGRAM)).isExecutable());
    m_corpus = qEnvironmentVariable("VDM_SHARED_DIR") + QStringLiteral("/corpus");
    QVERIFY2(QFileInfo::exists(m_corpus + QStringLiteral("/manifest.tsv")), qPrintable(m_corpus));
}

QByteArray tst_DocMergeOffice::checksum(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

QString tst_DocMergeOffice::source(const QString &stem, const QString &suffix, int pages)
{
    QStringList texts;
    for (int i = 1; i <= pages; ++i)
        texts << QStringLiteral("%1 page %2").arg(stem).arg(i);
    const QString path = m_dir.filePath(QStringLiteral("%1.%2").arg(stem, suffix));
    if (QFileInfo::exists(path))
        return path;
    QString error;
    if (!ZylTestDocuments::makeDocument(path, texts, &error)) {
        qWarning("cannot make %s: %s", qPrintable(path), qPrintable(error));
        return QString();
    }
    return path;
}

void tst_DocMergeOffice::merge_data()
{
    QTest::addColumn<QStringList>("suffixes");
    QTest::addColumn<QString>("output");
    const QStringList formats{QStringLiteral("docx"), QStringLiteral("doc"), QStringLiteral("zyl")};
    for (const QString &from : formats) {
        for (const QString &to : formats) {
            QTest::newRow(qPrintable(QStringLiteral("%1_sources_to_%2").arg(from, to)))
                << QStringList{from, from, from} << to;
        }
    }
    QTest::newRow("mixed_sources_to_docx") << QStringList{"zyl", "docx", "doc"} << QStringLiteral("docx");
}

void tst_DocMergeOffice::merge()
{
    QFETCH(QStringList, suffixes);
    QFETCH(QString, output);

    // Alpha: 4 pages, take 2-3; Bravo: 3 pages, whole; Charlie: 5 pages, 4 to past the end.
    const QString alpha = source(QStringLiteral("Alpha"), suffixes.at(0), 4);
    const QString bravo = source(QStringLiteral("Bravo"), suffixes.at(1), 3);
    const QString charlie = source(QStringLiteral("Charlie"), suffixes.at(2), 5);
    QVERIFY(!alpha.isEmpty() && !bravo.isEmpty() && !charlie.isEmpty());
    const QByteArray sums = checksum(alpha) + checksum(bravo) + checksum(charlie);

    const QString target = m_dir.filePath(QStringLiteral("merged-%1.%2").arg(suffixes.join(QLatin1Char('-')), output));
    const DocMergeRun result = run({QStringLiteral("merge"), QStringLiteral("-o"), target,
                                    alpha + QStringLiteral(":2-3"), bravo, charlie + QStringLiteral(":4-9")});
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QCOMPARE(result.out.trimmed(), target);

    QString error;
    const QStringList pages = ZylTestDocuments::pageTexts(target, &error);
    QVERIFY2(!pages.isEmpty(), qPrintable(error));
    const QStringList expected{QStringLiteral("Alpha page 2"), QStringLiteral("Alpha page 3"),
                               QStringLiteral("Bravo page 1"), QStringLiteral("Bravo page 2"),
                               QStringLiteral("Bravo page 3"), QStringLiteral("Charlie page 4"),
                               QStringLiteral("Charlie page 5")};
    QVERIFY2(pages == expected, qPrintable(QStringLiteral("pages:\n  %1\nexpected:\n  %2")
                                               .arg(pages.join(QStringLiteral("\n  ")), expected.join(QStringLiteral("\n  ")))));
    QCOMPARE(checksum(alpha) + checksum(bravo) + checksum(charlie), sums);
}

// An office that stops running mid-merge fails the merge well before the flat call limit.
void tst_DocMergeOffice::frozenOfficeFailsTheMerge()
{
    const QString alpha = source(QStringLiteral("Alpha"), QStringLiteral("docx"), 4);
    const QString bravo = source(QStringLiteral("Bravo"), QStringLiteral("docx"), 3);
    const QString charlie = source(QStringLiteral("Charlie"), QStringLiteral("docx"), 5);
    QVERIFY(!alpha.isEmpty() && !bravo.isEmpty() && !charlie.isEmpty());
    const QString target = m_dir.filePath(QStringLiteral("frozen.docx"));
    QFile::remove(target);

    QProcess process;
    process.setWorkingDirectory(m_dir.path());
    process.start(QStringLiteral(DOCMERGE_PROGRAM), {QStringLiteral("merge"), QStringLiteral("-o"), target, alpha, bravo, charlie});
    QVERIFY(process.waitForStarted());
    // The second source's working copy appears once the target is open: the merge is under way.
    const QString tempsplit = QStringLiteral("%1/vdocumentmerger-%2/%3/tempsplit")
                                  .arg(QDir::tempPath()).arg(::getuid()).arg(process.processId());
    QTRY_VERIFY_WITH_TIMEOUT(!QDir(tempsplit).isEmpty(QDir::Files), 120000);
    const QList<qint64> offices = OfficeProcesses::startedBy(process.processId());
    QCOMPARE(offices.size(), 1);
    QCOMPARE(::kill(pid_t(offices.first()), SIGSTOP), 0);
    // The call on the frozen office fails and the office is ended well before the flat limit;
    // docmerge then looks for a source to blame with a fresh office before it exits.
    QTRY_VERIFY2_WITH_TIMEOUT(::kill(pid_t(offices.first()), 0) != 0, "the frozen office was left behind", 30000);
    QVERIFY(process.waitForFinished(120000));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(!QFileInfo::exists(target));

    const DocMergeRun next = run({QStringLiteral("merge"), QStringLiteral("-o"), target, alpha, bravo});
    QVERIFY2(next.exitCode == 0, qPrintable(next.err));
}

// An office that works on a long document for seconds is not taken for a frozen one, however
// short the time allowed without work.
void tst_DocMergeOffice::busyOfficeIsLeftAlone()
{
    qputenv("VZYL_HANG_TIMEOUT", "1");
    const DocMergeRun result = run({QStringLiteral("count"), m_corpus + QStringLiteral("/bug65649.docx")});
    qunsetenv("VZYL_HANG_TIMEOUT");
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QCOMPARE(result.out.section(QLatin1Char('\t'), 0, 0), QStringLiteral("180"));
}

QTEST_GUILESS_MAIN(tst_DocMergeOffice)
#include "tst_docmergeoffice.moc"

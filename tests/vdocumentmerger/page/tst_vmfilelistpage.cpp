#include <QAbstractScrollArea>
#include <QAccessible>
#include <QFileDialog>
#include <QLineEdit>
#include <QLocalSocket>
#include <QMimeData>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include "cloud/vmcloudhelper.h"
#include "engine/vmprogressdlg.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "officeprocesses.h"
#include "page/vmbottomoptionwidget.h"
#include "page/vmclientwidget.h"
#include "page/vmfilelistpage.h"
#include "shell/vmenv.h"
#include "table/vmfifletablecontentitem.h"
#include "table/vmfileoptionwidget.h"
#include "table/vmfiletablewidget.h"
#include "table/vmimportfilewidget.h"
#include "zyltestdocuments.h"

using Params = QHash<QString, QString>;

// Answers the modal dialogs the page opens: picks files in the file dialog, records every
// notice and closes it without a button. The progress dialog is left to the page.
class ModalDriver : public QObject {
public:
    struct Notice {
        QString title;
        QString content;
    };

    ModalDriver()
    {
        connect(&m_timer, &QTimer::timeout, this, &ModalDriver::poll);
        m_timer.start(20);
    }

    void pickFiles(const QString &folder, const QStringList &names)
    {
        m_folder = folder;
        m_names = names;
    }
    QList<Notice> notices;

private:
    void poll()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        if (auto *files = qobject_cast<QFileDialog *>(modal)) {
            files->setDirectory(m_folder);
            QStringList quoted;
            for (const QString &name : qAsConst(m_names))
                quoted.append(QLatin1Char('"') + name + QLatin1Char('"'));
            files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(quoted.join(QLatin1Char(' ')));
            static_cast<QDialog *>(files)->accept();
            return;
        }
        if (qobject_cast<VMProgressDlg *>(modal))
            return;
        if (auto *dialog = qobject_cast<VLiteContentDlg *>(modal)) {
            notices.append({dialog->title(), dialog->content()});
            dialog->reject();
        }
    }

    QTimer m_timer;
    QString m_folder;
    QStringList m_names;
};

class tst_VMFileListPage : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void intake_data();
    void intake();
    void mergeEndToEnd_data();
    void mergeEndToEnd();
    void closeWhileMerging();

private:
    QString doc(const QString &name) const { return m_dir.path() + QStringLiteral("/docs/") + name; }
    QString scratch(const QString &name) const { return m_dir.path() + QStringLiteral("/scratch/") + name; }
    static QStringList rowPaths(VMFileTableWidget *table);
    static VMFileListPage *page(VMClientWidget &client) { return client.fileArea()->fileListPage(); }
    QList<Params> eventParams(const QString &name) const;
    void drop(VMClientWidget &client, const QStringList &paths);

    // The drive service for one test, serving the signed-in user; stopped by its scope guard.
    bool startDrive(QProcess &service);

    QTemporaryDir m_dir;
    // Local socket names are limited in length; the test's own folder may be too deep.
    QTemporaryDir m_socketDir{QStringLiteral("/tmp/vdm-XXXXXX")};
    FakeHost m_host;
};

void tst_VMFileListPage::initTestCase()
{
    if (!QFileInfo::exists(QStringLiteral("/usr/lib/libreoffice/program/soffice.bin")))
        QSKIP("LibreOffice is not installed: the word-processor server cannot run here");
    QVERIFY(m_dir.isValid());
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("docs")));
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("scratch/My Files")));
    QString error;
    QVERIFY2(ZylTestDocuments::makeDocument(doc(QStringLiteral("A doc.docx")), QStringList{"A1", "A2", "A3"}, &error),
             qPrintable(error));
    QVERIFY2(ZylTestDocuments::makeDocument(doc(QStringLiteral("B.doc")), QStringList{"B1", "B2"}, &error), qPrintable(error));
    QVERIFY2(ZylTestDocuments::makeDocument(doc(QStringLiteral("C.zyl")), QStringList{"C1", "C2", "C3", "C4"}, &error),
             qPrintable(error));
    // Not documents: their counts fail, which is all intake needs.
    for (const QString &name : {"a.doc", "A.doc", "x.docx", "y.zyl", "notes.txt"}) {
        QFile file(scratch(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("not a document");
    }

    // The drive service runs only where a test starts it.
    QVERIFY(m_socketDir.isValid());
    qputenv("DALO_DRIVE_SOCKET", QFile::encodeName(m_socketDir.path() + QStringLiteral("/drive.sock")));
    qputenv("DALO_DRIVE_EXE", "/nonexistent/dalodrive");

    m_host.account.setLoggedIn(true);
    m_host.account.setUserId(QStringLiteral("u1"));
    QVERIFY(Initialize(&m_host.app));
}

void tst_VMFileListPage::cleanupTestCase()
{
    Destroy();
}

void tst_VMFileListPage::init()
{
    m_host.app.clearEvents();
    m_host.app.setStartFiles({});
}

QStringList tst_VMFileListPage::rowPaths(VMFileTableWidget *table)
{
    QStringList paths;
    for (int i = 0; i < table->itemCount(); ++i)
        paths.append(table->itemAt(i)->filePath());
    return paths;
}

QList<Params> tst_VMFileListPage::eventParams(const QString &name) const
{
    QList<Params> found;
    for (const FakeAppContainer::Event &e : m_host.app.eventsNamed(name))
        found.append(e.params);
    return found;
}

bool tst_VMFileListPage::startDrive(QProcess &service)
{
    const QString socket = qEnvironmentVariable("DALO_DRIVE_SOCKET");
    service.setProcessChannelMode(QProcess::ForwardedChannels);
    service.start(QStringLiteral(DALODRIVE_EXE),
                  {"--socket", socket, "--drive", m_dir.path() + QStringLiteral("/drive"), "--user", "u1",
                   "--control-stdin", "--open-with", "true"});
    if (!service.waitForStarted())
        return false;
    QLocalSocket probe;
    // At least 5 s: a missing socket fails at once.
    for (int tries = 0; tries < 250; ++tries, QTest::qWait(20)) {
        probe.connectToServer(socket);
        if (probe.waitForConnected(100))
            return true;
    }
    return false;
}

void tst_VMFileListPage::drop(VMClientWidget &client, const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    QMimeData mime;
    mime.setUrls(urls);
    QWidget *target = client.fileArea();
    const QPoint at = target->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent dropEvent(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropEvent);
}

void tst_VMFileListPage::intake_data()
{
    QTest::addColumn<int>("listed");
    QTest::addColumn<QString>("how");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QStringList>("notices");

    const QString limit = QStringLiteral("No more than 100 files can be added");
    const QString format = QStringLiteral("Text merging is supported only");
    // Names differing in case are two files.
    const QStringList twins{"a.doc", "A.doc"};
    QTest::newRow("dialog_98_listed_3_picked") << 98 << "dialog" << QStringList{"a.doc", "A.doc", "x.docx"}
                                               << QStringList() << "" << QStringList{limit};
    QTest::newRow("dialog_98_listed_2_picked") << 98 << "dialog" << twins << twins << "click" << QStringList();
    QTest::newRow("drop_98_listed_3_and_text") << 98 << "drop" << QStringList{"a.doc", "A.doc", "x.docx", "notes.txt"}
                                               << QStringList() << "" << QStringList{limit};
    QTest::newRow("drop_two_unsupported_one_notice") << 0 << "drop" << QStringList{"notes.txt", "a.doc", "My Files"}
                                                     << QStringList{"a.doc"} << "drop" << QStringList{format};
    QTest::newRow("drop_only_unsupported") << 0 << "drop" << QStringList{"notes.txt"} << QStringList() << ""
                                           << QStringList{format};
    QTest::newRow("second_start") << 0 << "second" << QStringList{"a.doc", "y.zyl"} << QStringList{"a.doc", "y.zyl"}
                                  << "import" << QStringList();
    QTest::newRow("second_start_not_json") << 0 << "second_plain" << twins << QStringList() << "" << QStringList();
}

void tst_VMFileListPage::intake()
{
    QFETCH(int, listed);
    QFETCH(QString, how);
    QFETCH(QStringList, names);
    QFETCH(QStringList, rows);
    QFETCH(QString, mode);
    QFETCH(QStringList, notices);

    QStringList start;
    for (int i = 0; i < listed; ++i)
        start.append(scratch(QStringLiteral("listed%1.doc").arg(i)));
    m_host.app.setStartFiles(start);
    VMClientWidget client(nullptr);
    client.show();
    QVERIFY(QTest::qWaitForWindowExposed(&client));
    VMFileTableWidget *table = page(client)->fileTable();
    QTRY_COMPARE(table->itemCount(), listed);
    if (listed > 0)
        QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 120000);
    m_host.app.clearEvents();

    QStringList paths, expected;
    for (const QString &name : qAsConst(names))
        paths.append(scratch(name));
    for (const QString &name : qAsConst(rows))
        expected.append(scratch(name));
    ModalDriver driver;
    if (how == QLatin1String("dialog")) {
        driver.pickFiles(scratch(QString()), names);
        page(client)->onAddFile();
    } else if (how == QLatin1String("drop")) {
        drop(client, paths);
    } else {
        const QString files = paths.join(QLatin1Char('|'));
        const QString args = how == QLatin1String("second") ? QStringLiteral("{\"file\":\"%1\"}").arg(files) : files;
        QCOMPARE(m_host.app.notify(QStringLiteral("SecondInstance"), {{QStringLiteral("args"), args}}), 1);
    }
    // A second start's files come a turn of the event loop later.
    QTest::qWait(0);
    QTRY_COMPARE(rowPaths(table).mid(listed), expected);
    QCOMPARE(client.fileArea()->importPage()->isVisible(), table->itemCount() == 0);
    QCOMPARE(driver.notices.size(), notices.size());
    for (int i = 0; i < notices.size(); ++i) {
        QCOMPARE(driver.notices.at(i).title, QStringLiteral("Tips"));
        QVERIFY2(driver.notices.at(i).content.startsWith(notices.at(i)), qPrintable(driver.notices.at(i).content));
    }
    const QString type = notices.isEmpty() ? QString()
        : notices.first().startsWith(QLatin1String("No more")) ? QStringLiteral("wrong_num")
                                                               : QStringLiteral("wrong_format");
    QList<Params> popups = eventParams(QStringLiteral("vas_wordmerge_popup"));
    if (type.isEmpty()) {
        QVERIFY(popups.isEmpty());
    } else {
        QCOMPARE(popups, (QList<Params>{{{"type", type}, {"action", "show"}}, {{"type", type}, {"action", "click_close"}}}));
    }
    if (how == QLatin1String("dialog"))
        QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_click")).first(), (Params{{"type", "addfile"}}));
    if (rows.isEmpty())
        return;
    // Not documents: every count fails.
    QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 60000);
    const Params added = eventParams(QStringLiteral("vas_wordmerge_addfile")).first();
    QCOMPARE(added.value(QStringLiteral("mode")), mode);
    QCOMPARE(added.value(QStringLiteral("num")), QString::number(rows.size()));
    QCOMPARE(added.value(QStringLiteral("page_num")), QStringLiteral("-,").repeated(rows.size()).chopped(1));
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_parsefail")).size(), rows.size());
}

void tst_VMFileListPage::mergeEndToEnd_data()
{
    QTest::addColumn<int>("location");
    QTest::addColumn<bool>("driveUp");
    QTest::addColumn<QString>("saveType");

    QTest::newRow("next_to_first_file") << 0 << false << "first_file";
    QTest::newRow("custom_folder") << 1 << false << "customize";
    QTest::newRow("cloud_drive") << 2 << true << "cloud";
    QTest::newRow("cloud_drive_down_saves_locally") << 2 << false << "first_file";
}

void tst_VMFileListPage::mergeEndToEnd()
{
    QFETCH(int, location);
    QFETCH(bool, driveUp);
    QFETCH(QString, saveType);

    QProcess drive;
    auto stopDrive = qScopeGuard([&drive] {
        drive.closeWriteChannel();
        if (drive.state() != QProcess::NotRunning && !drive.waitForFinished(5000))
            drive.kill();
        drive.waitForFinished();
    });
    if (driveUp)
        QVERIFY(startDrive(drive));

    const QString custom = m_dir.path() + QStringLiteral("/out/");
    VMEnv *env = VMEnv::instance();
    m_host.app.setStartFiles({doc(QStringLiteral("A|nbsp|doc.docx")), doc(QStringLiteral("B.doc?x=1")), doc(QStringLiteral("C.zyl"))});
    VMClientWidget client(nullptr);
    env->setOutputName(QStringLiteral("Merged"));
    env->setOutputSuffix(QStringLiteral("docx"));
    env->setLocation(location);
    env->setCustomDir(custom);
    client.resize(1000, 700);
    client.show();
    QVERIFY(QTest::qWaitForWindowExposed(&client));
    VMFileTableWidget *table = page(client)->fileTable();

    // Imported and counted; the filled-in ranges show in the export event's page_range.
    QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 120000);
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_addfile")).first(),
             (Params{{"mode", "import"}, {"num", "3"}, {"format", "docx,doc,zyl"}, {"page_num", "3,2,4"},
                     {"filename", "A doc|B|C"}}));
    // Every control in the tab chain has a name a screen reader can say; "start merge" is in it.
    QSet<QWidget *> reached;
    for (QWidget *w = client.nextInFocusChain(); w != &client; w = w->nextInFocusChain()) {
        if (!client.isAncestorOf(w) || !w->isVisible() || !w->isEnabled() || !(w->focusPolicy() & Qt::TabFocus))
            continue;
        // A spin box's line edit stands for the spin box.
        QWidget *control = qobject_cast<QAbstractSpinBox *>(w->parentWidget()) ? w->parentWidget() : w;
        reached.insert(control);
        // The list's scroll area takes focus only to scroll; its rows carry the names.
        if (qobject_cast<QAbstractScrollArea *>(control))
            continue;
        QAccessibleInterface *a = QAccessible::queryAccessibleInterface(control);
        QVERIFY2(a && !a->text(QAccessible::Name).isEmpty(),
                 qPrintable(QStringLiteral("%1 %2").arg(control->metaObject()->className(), control->objectName())));
    }
    // Pages 2 to 3 of the first file.
    table->itemAt(0)->setRangeFrom(2);

    // Uncheck two rows: the start button follows; check them again.
    auto *start = client.findChild<VLiteButton *>(QStringLiteral("VMStartMergeButton"));
    QVERIFY(start && start->isEnabled());
    QVERIFY(reached.contains(start));
    table->itemAt(1)->setChecked(false);
    table->itemAt(2)->setChecked(false);
    QVERIFY(!start->isEnabled());
    table->itemAt(1)->setChecked(true);
    table->itemAt(2)->setChecked(true);
    QVERIFY(start->isEnabled());

    // Descending by name: C, B, A.
    table->onSortClicked(2);
    QCOMPARE(rowPaths(table), (QStringList{doc("C.zyl"), doc("B.doc"), doc("A doc.docx")}));
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_click")), (QList<Params>{{{"type", "reverse"}}}));

    m_host.app.clearEvents();
    ModalDriver driver;
    QTest::mouseClick(start, Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(driver.notices.size(), 1, 180000);
    const QString folder = location == 1 ? m_dir.path() + QStringLiteral("/out") : m_dir.path() + QStringLiteral("/docs");
    QString output = folder + QStringLiteral("/Merged.docx");
    if (location == 2) {
        // Made in the temporary root under a dated name, then uploaded or copied next to the first file.
        const QString made = QStringLiteral("Merged_") + QDateTime::currentDateTime().toString("yyyyMMdd");
        const QString cloudFolder = m_dir.path() + QStringLiteral("/drive/u1/") + VMCloudHelper::cloudFolderPath();
        const QStringList found = QDir(driveUp ? cloudFolder : folder).entryList({made + QStringLiteral("*.docx")});
        QCOMPARE(found.size(), 1);
        output = (driveUp ? cloudFolder : folder) + QLatin1Char('/') + found.first();
        if (driveUp) {
            QCOMPARE(driver.notices.first().title, QStringLiteral("Merge complete"));
            QCOMPARE(driver.notices.first().content,
                     VMCloudHelper::cloudPathDisplayText() + QLatin1Char('/') + found.first());
        } else {
            QCOMPARE(driver.notices.first().title, QStringLiteral("Tips"));
            QVERIFY2(driver.notices.first().content.endsWith(QStringLiteral(", automatically saved to:") + output),
                     qPrintable(driver.notices.first().content));
        }
    } else {
        QCOMPARE(driver.notices.first().title, QStringLiteral("Merge complete"));
        QCOMPARE(driver.notices.first().content, output);
    }
    QCOMPARE(ZylTestDocuments::pageTexts(output),
             (QStringList{"C1", "C2", "C3", "C4", "B1", "B2", "A2", "A3"}));
    // The rows stay as they were.
    QCOMPARE(table->itemCount(), 3);
    QCOMPARE(table->itemAt(2)->rangeFrom(), 2);

    const QString popupType = location == 2 && !driveUp ? QStringLiteral("cloud_fail") : QStringLiteral("done");
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_click")), (QList<Params>{{{"type", "start_up"}}}));
    const QList<Params> popups = eventParams(QStringLiteral("vas_wordmerge_popup"));
    QVERIFY(popups.contains(Params{{"type", "processing"}, {"action", "show"}}));
    QVERIFY(!popups.contains(Params{{"type", "processing"}, {"action", "click_close"}}));
    QCOMPARE(popups.mid(popups.size() - 2),
             (QList<Params>{{{"type", popupType}, {"action", "show"}}, {{"type", popupType}, {"action", "click_close"}}}));
    const QList<Params> exports = eventParams(QStringLiteral("vas_wordmerge_export"));
    QCOMPARE(exports.size(), 1);
    Params exported = exports.first();
    QVERIFY(exported.take(QStringLiteral("operation_time")).toInt() >= 0);
    QCOMPARE(exported, (Params{{"total_num", "3"}, {"page_total_num", "4,2,3"}, {"page_num", "4,2,2"},
                               {"page_range", "1-4,1-2,2-3"}, {"total_page_num", "8"}, {"save_type", saveType},
                               {"format", "docx"}, {"filename", "C|B|A doc"}}));
    QVERIFY(QFile::remove(output));
}

void tst_VMFileListPage::closeWhileMerging()
{
    VMEnv *env = VMEnv::instance();
    env->setOutputName(QStringLiteral("Closed"));
    env->setLocation(0);
    // Three sources: a cancel is noticed before each source after the first, not during the last.
    m_host.app.setStartFiles({doc(QStringLiteral("A|nbsp|doc.docx")), doc(QStringLiteral("B.doc")), doc(QStringLiteral("C.zyl"))});
    auto *client = new VMClientWidget(nullptr);
    client->show();
    VMFileTableWidget *table = page(*client)->fileTable();
    QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 120000);

    const QDir work(VMEnv::tempRoot() + QStringLiteral("/mergedest"));
    VMEnv::removeDirRecursively(work.path());
    ModalDriver driver;
    page(*client)->onStartMerger();
    QCOMPARE(table->itemCount(), 3);
    // The merger is at work once it has copied the first source into its working folder.
    QTRY_VERIFY_WITH_TIMEOUT(!work.entryList(QDir::Files).isEmpty(), 60000);
    QVERIFY(!OfficeProcesses::startedBy(QCoreApplication::applicationPid()).isEmpty());
    QElapsedTimer closing;
    closing.start();
    delete client;
    QTRY_VERIFY_WITH_TIMEOUT(OfficeProcesses::startedBy(QCoreApplication::applicationPid()).isEmpty(), 20000);
    QVERIFY2(closing.elapsed() < 20000, qPrintable(QString::number(closing.elapsed())));
    QVERIFY(driver.notices.isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(QThreadPool::globalInstance()->waitForDone(0), 20000);
    QVERIFY(!QFile::exists(doc(QStringLiteral("Closed.docx"))));
}

QTEST_MAIN(tst_VMFileListPage)
#include "tst_vmfilelistpage.moc"

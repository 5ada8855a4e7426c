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
#include "fakeappaccount.h"
#include "fakeappcontainer.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "officeprocesses.h"
#include "page/vmbottomoptionwidget.h"
#include "page/vmclientwidget.h"
#include "page/vmfilelistpage.h"
#include "shell/pluginexports.h"
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
        m_timer.setInterval(20);
        connect(&m_timer, &QTimer::timeout, this, &ModalDriver::poll);
        m_timer.start();
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
    void limitAndFormat_data();
    void limitAndFormat();
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
    FakeAppContainer m_app;
    FakeAppAccount m_account;
    FakeMainWindow *m_window = nullptr;
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

    m_account.setLoggedIn(true);
    m_account.setUserId(QStringLiteral("u1"));
    m_app.setAccount(&m_account);
    m_window = new FakeMainWindow(&m_app);
    QVERIFY(Initialize(&m_app));
}

void tst_VMFileListPage::cleanupTestCase()
{
    Destroy();
    delete m_window;
}

void tst_VMFileListPage::init()
{
    m_app.clearEvents();
    m_app.setStartFiles({});
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
    for (const FakeAppContainer::Event &e : m_app.eventsNamed(name))
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
    for (QElapsedTimer waited; !waited.isValid() || waited.elapsed() < 5000; QTest::qWait(20)) {
        if (!waited.isValid())
            waited.start();
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
    QTest::addColumn<QString>("how");
    QTest::addColumn<QStringList>("input");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("mode");

    const QString a = scratch(QStringLiteral("a.doc"));
    const QString upperA = scratch(QStringLiteral("A.doc"));
    QTest::newRow("names_differing_in_case_are_two_files") << "drop" << QStringList{a, upperA}
                                                           << QStringList{a, upperA} << "drop";
    QTest::newRow("second_start")
        << "second" << QStringList{QStringLiteral("{\"file\":\"%1|%2\"}").arg(a, scratch(QStringLiteral("y.zyl")))}
        << QStringList{a, scratch(QStringLiteral("y.zyl"))} << "import";
    QTest::newRow("second_start_not_json") << "second" << QStringList{a} << QStringList() << QString();
}

void tst_VMFileListPage::intake()
{
    QFETCH(QString, how);
    QFETCH(QStringList, input);
    QFETCH(QStringList, rows);
    QFETCH(QString, mode);

    VMClientWidget client(nullptr);
    client.show();
    QVERIFY(QTest::qWaitForWindowExposed(&client));
    if (how == QLatin1String("drop"))
        drop(client, input);
    else if (how == QLatin1String("second"))
        QCOMPARE(m_app.notify(QStringLiteral("SecondInstance"), {{QStringLiteral("args"), input.first()}}), 1);

    VMFileTableWidget *table = page(client)->fileTable();
    if (rows.isEmpty()) {
        QTest::qWait(0);
        QCOMPARE(table->itemCount(), 0);
        QVERIFY(client.fileArea()->importPage()->isVisible());
        return;
    }
    QTRY_COMPARE(rowPaths(table), rows);
    QVERIFY(page(client)->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 60000);
    const Params added = eventParams(QStringLiteral("vas_wordmerge_addfile")).first();
    QCOMPARE(added.value(QStringLiteral("mode")), mode);
    QCOMPARE(added.value(QStringLiteral("num")), QString::number(rows.size()));
    QStringList failed;
    for (int i = 0; i < rows.size(); ++i)
        failed.append(QStringLiteral("-"));
    QCOMPARE(added.value(QStringLiteral("page_num")), failed.join(QLatin1Char(',')));
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_parsefail")).size(), rows.size());
    for (int i = 0; i < table->itemCount(); ++i)
        QVERIFY(!table->itemAt(i)->isReadSuccess());
}

void tst_VMFileListPage::limitAndFormat_data()
{
    QTest::addColumn<int>("listed");
    QTest::addColumn<bool>("byDialog");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("added");
    QTest::addColumn<QStringList>("notices");

    const QString limit = QStringLiteral("No more than 100 files can be added");
    const QString format = QStringLiteral("Text merging is supported only");
    QTest::newRow("dialog_98_listed_3_picked") << 98 << true << QStringList{"a.doc", "A.doc", "x.docx"} << 0
                                               << QStringList{limit};
    QTest::newRow("dialog_98_listed_2_picked") << 98 << true << QStringList{"a.doc", "A.doc"} << 2 << QStringList();
    QTest::newRow("drop_98_listed_3_and_text") << 98 << false << QStringList{"a.doc", "A.doc", "x.docx", "notes.txt"}
                                               << 0 << QStringList{limit};
    QTest::newRow("drop_two_unsupported_one_notice")
        << 0 << false << QStringList{"notes.txt", "a.doc", "My Files"} << 1 << QStringList{format};
    QTest::newRow("drop_only_unsupported") << 0 << false << QStringList{"notes.txt"} << 0 << QStringList{format};
}

void tst_VMFileListPage::limitAndFormat()
{
    QFETCH(int, listed);
    QFETCH(bool, byDialog);
    QFETCH(QStringList, names);
    QFETCH(int, added);
    QFETCH(QStringList, notices);

    QStringList start;
    for (int i = 0; i < listed; ++i)
        start.append(scratch(QStringLiteral("listed%1.doc").arg(i)));
    m_app.setStartFiles(start);
    VMClientWidget client(nullptr);
    client.show();
    QVERIFY(QTest::qWaitForWindowExposed(&client));
    VMFileTableWidget *table = page(client)->fileTable();
    QTRY_COMPARE(table->itemCount(), listed);
    if (listed > 0)
        QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 120000);
    m_app.clearEvents();

    ModalDriver driver;
    if (byDialog) {
        driver.pickFiles(scratch(QString()), names);
        page(client)->onAddFile();
    } else {
        QStringList paths;
        for (const QString &name : qAsConst(names))
            paths.append(scratch(name));
        drop(client, paths);
    }
    QCOMPARE(table->itemCount(), listed + added);
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
    if (byDialog)
        QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_click")).first(), (Params{{"type", "addfile"}}));
    if (added > 0)
        QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 60000);
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
    m_app.setStartFiles({doc(QStringLiteral("A|nbsp|doc.docx")), doc(QStringLiteral("B.doc?x=1")), doc(QStringLiteral("C.zyl"))});
    VMClientWidget client(nullptr);
    env->setOutputName(QStringLiteral("Merged"));
    env->setOutputSuffix(QStringLiteral("docx"));
    env->setLocation(location);
    env->setCustomDir(custom);
    client.resize(1000, 700);
    client.show();
    QVERIFY(QTest::qWaitForWindowExposed(&client));
    VMFileTableWidget *table = page(client)->fileTable();

    // Imported, counted, ranges filled.
    QTRY_COMPARE_WITH_TIMEOUT(eventParams(QStringLiteral("vas_wordmerge_addfile")).size(), 1, 120000);
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_addfile")).first(),
             (Params{{"mode", "import"}, {"num", "3"}, {"format", "docx,doc,zyl"}, {"page_num", "3,2,4"},
                     {"filename", "A doc|B|C"}}));
    QCOMPARE(table->itemCount(), 3);
    const QList<int> counts{3, 2, 4};
    for (int i = 0; i < 3; ++i) {
        VMFifleTableContentItem *row = table->itemAt(i);
        QCOMPARE(row->pageCount(), counts.at(i));
        QCOMPARE(row->rangeFrom(), 1);
        QCOMPARE(row->rangeTo(), counts.at(i));
    }
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
    VMFifleTableContentItem *first = table->itemAt(0);
    QList<QSpinBox *> spins = first->findChildren<QSpinBox *>();
    QCOMPARE(spins.size(), 2);
    spins.at(0)->setValue(2);
    QCOMPARE(first->rangeFrom(), 2);

    // Uncheck two rows: the start button follows; check them again.
    auto *start = client.findChild<VLiteButton *>(QStringLiteral("VMStartMergeButton"));
    QVERIFY(start && start->isEnabled());
    QVERIFY(reached.contains(start));
    table->itemAt(1)->setChecked(false);
    QVERIFY(start->isEnabled());
    table->itemAt(2)->setChecked(false);
    QVERIFY(!start->isEnabled());
    table->itemAt(1)->setChecked(true);
    table->itemAt(2)->setChecked(true);
    QVERIFY(start->isEnabled());

    // Descending by name: C, B, A.
    table->onSortClicked(2);
    QCOMPARE(rowPaths(table), (QStringList{doc("C.zyl"), doc("B.doc"), doc("A doc.docx")}));
    QCOMPARE(eventParams(QStringLiteral("vas_wordmerge_click")), (QList<Params>{{{"type", "reverse"}}}));

    m_app.clearEvents();
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
    m_app.setStartFiles({doc(QStringLiteral("A|nbsp|doc.docx")), doc(QStringLiteral("B.doc")), doc(QStringLiteral("C.zyl"))});
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

#include <liolite/yrtdirs.h>

#include <QDir>
#include <QFileInfo>
#include <QtTest>

class tst_YrtDirs : public QObject
{
    Q_OBJECT

private slots:
    void resources_besideLibraryFolder();
};

void tst_YrtDirs::resources_besideLibraryFolder()
{
    const QString folder = yrt::dirs::resources();
    QVERIFY(QDir::isAbsolutePath(folder));
    QVERIFY(!folder.endsWith(QLatin1Char('/')));
    QVERIFY(!folder.contains(QLatin1String("..")));
    QCOMPARE(QFileInfo(folder).fileName(), QStringLiteral("resources"));
    // The build puts the library in <build>/lib and creates <build>/resources.
    const QDir build(QFileInfo(folder).absolutePath());
    QVERIFY2(QFileInfo::exists(build.filePath(QStringLiteral("lib/libliolite.so"))), qPrintable(build.path()));
    QVERIFY(QFileInfo(folder).isDir());
}

QTEST_MAIN(tst_YrtDirs)
#include "tst_yrtdirs.moc"

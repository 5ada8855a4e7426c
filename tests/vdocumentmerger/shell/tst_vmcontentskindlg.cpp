#include <QPointer>
#include <QtTest>

#include "fakemainwindow.h"
#include "shell/vmcontentskindlg.h"

namespace {

// Counts the restyles the base class is asked for, and still performs them.
class CountingSkinDlg : public VMContentSkinDlg {
public:
    using VMContentSkinDlg::VMContentSkinDlg;
    int restyles = 0;

protected:
    void changeStyle() override
    {
        ++restyles;
        VMContentSkinDlg::changeStyle();
    }
};

} // namespace

class tst_VMContentSkinDlg : public QObject {
    Q_OBJECT

private slots:
    void everyOpenDialogFollowsAndClosedOnesAreLeftAlone();

private:
    InitializedHost m_host;
};

void tst_VMContentSkinDlg::everyOpenDialogFollowsAndClosedOnesAreLeftAlone()
{
    QPointer<CountingSkinDlg> closed = new CountingSkinDlg(nullptr, VLiteContentDlg::IconType(5));
    closed->show();
    delete closed;
    QWidget owner;
    auto *first = new CountingSkinDlg(&owner, VLiteContentDlg::IconType(0));
    auto *second = new CountingSkinDlg(&owner, VLiteContentDlg::IconType(3));
    const int firstBefore = first->restyles;
    const int secondBefore = second->restyles;
    QCOMPARE(m_host.app.notify(QStringLiteral("SkinChanged"), QVariantMap()), 1);
    QCOMPARE(first->restyles, firstBefore + 1);
    QCOMPARE(second->restyles, secondBefore + 1);
}

QTEST_MAIN(tst_VMContentSkinDlg)
#include "tst_vmcontentskindlg.moc"

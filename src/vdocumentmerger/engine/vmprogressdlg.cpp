#include "engine/vmprogressdlg.h"

#include <QLabel>
#include <QVBoxLayout>

#include "engine/progress.h"
#include "shell/usageevents.h"

VMProgressDlg::VMProgressDlg(QWidget *parent, QObject *receiver)
    : VLiteContentDlg(parent, VLiteContentDlg::IconNone)
    , m_receiver(receiver)
{
}

VMProgressDlg *VMProgressDlg::showMergeProgress(QWidget *parent, QObject *receiver, int totalPages)
{
    auto *dialog = new VMProgressDlg(parent, receiver);
    dialog->setTitleHitTest(true);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setTitle(tr("Merging"));
    dialog->setContent(totalPages < 1000 ? tr("Merging, please wait...")
                                         : tr("Merging, the total number of merged pages is large, Please wait..."));
    dialog->initProgressBar();
    dialog->setModal(true);
    dialog->show();
    return dialog;
}

void VMProgressDlg::setProgress(int value)
{
    m_progress->setValue(value);
}

QTime VMProgressDlg::showTime() const
{
    return m_showTime;
}

void VMProgressDlg::done(int r)
{
    QDialog::done(r);
    if ((r == QDialog::Rejected || r == VLiteContentDlg::ResultClosed) && m_receiver) {
        sendPopupEvent(QStringLiteral("processing"), QStringLiteral("click_close"));
        QMetaObject::invokeMethod(m_receiver, "onMergeCancel");
    }
}

void VMProgressDlg::showEvent(QShowEvent *event)
{
    sendPopupEvent(QStringLiteral("processing"), QStringLiteral("show"));
    VLiteContentDlg::showEvent(event);
    m_showTime = QTime::currentTime();
}

void VMProgressDlg::initProgressBar()
{
    auto *content = new QWidget(this);
    // The custom content takes the place of the dialog's own text line: repeat it, under the
    // object name the dialog's theme styles.
    auto *text = new QLabel(this->content(), content);
    text->setObjectName(QStringLiteral("vlite_dlg_content"));
    text->setWordWrap(true);
    m_progress = new Progress(content);
    m_progress->setFixedSize(VLiteStyle::dpiScaledSize(372, 8));
    m_progress->setMaximum(100);
    m_progress->setTextVisible(false);
    m_progress->setThemeClassName(QStringLiteral("VMProgress"));

    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(text);
    layout->addSpacing(16);
    layout->addWidget(m_progress);

    setCustomContentWidget(content, -1);
    setButtonVisible(VLiteContentDlg::BtnConfirm, false);
}

#pragma once

#include <QPointer>
#include <QTime>

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

class Progress;

// Modal dialog shown while a merge runs. Closing it by the user (Esc, close or cancel button)
// calls the receiver's "onMergeCancel" slot; accept() only closes it. It deletes itself once
// closed: keep it through a QPointer.
class VDOCUMENTMERGER_EXPORT VMProgressDlg : public VLiteContentDlg {
    Q_OBJECT
public:
    // Shows the dialog modal and returns it; the parent owns it until it closes. The text
    // warns of a long wait from 1000 pages on.
    static VMProgressDlg *showMergeProgress(QWidget *parent, QObject *receiver, int totalPages);

    // 0 to 100.
    void setProgress(int value);
    // When the dialog was last shown.
    QTime showTime() const;

protected slots:
    void done(int r) override;
    void showEvent(QShowEvent *event) override;

private:
    VMProgressDlg(QWidget *parent, QObject *receiver);
    void initProgressBar();

    Progress *m_progress = nullptr;
    QPointer<QObject> m_receiver;
    QTime m_showTime;
};

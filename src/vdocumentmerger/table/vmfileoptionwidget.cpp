#include "table/vmfileoptionwidget.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QMimeData>
#include <QStackedLayout>
#include <QUrl>

#include "page/vmfilelistpage.h"
#include "page/vmfilelistrules.h"
#include "shell/usageevents.h"
#include "shell/vmcontentskindlg.h"
#include "table/vmfiletablewidget.h"
#include "table/vmimportfilewidget.h"

VMFileOptionWidget::VMFileOptionWidget(QWidget *parent)
    : VLiteWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    setAcceptDrops(true);

    m_layout = new QHBoxLayout(this);
    m_layout->setSpacing(0);
    const int margin = int(VLiteStyle::dpiScaled(1));
    m_layout->setContentsMargins(margin, margin, margin, margin);
    m_stackedLayout = new QStackedLayout();
    m_stackedLayout->setContentsMargins(0, 0, 0, 0);
    m_stackedLayout->setSpacing(0);
    m_layout->addLayout(m_stackedLayout);

    m_importPage = new VMImportFileWidget(this);
    m_fileListPage = new VMFileListPage(this);
    m_stackedLayout->addWidget(m_importPage);
    m_stackedLayout->addWidget(m_fileListPage);

    connect(m_importPage, &VMImportFileWidget::sigAddFile, this, &VMFileOptionWidget::onAddFile);
    connect(m_fileListPage->fileTable(), &VMFileTableWidget::sigItemCountChange, this,
            &VMFileOptionWidget::onItemCountChange);
    connect(m_fileListPage, &VMFileListPage::sigSelectedItemCountChange, this,
            &VMFileOptionWidget::sigSelectedItemCountChange);
}

VMImportFileWidget *VMFileOptionWidget::importPage() const
{
    return m_importPage;
}

VMFileListPage *VMFileOptionWidget::fileListPage() const
{
    return m_fileListPage;
}

void VMFileOptionWidget::onAddFile()
{
    m_fileListPage->onAddFile();
}

void VMFileOptionWidget::onStartMerger()
{
    m_fileListPage->onStartMerger();
}

void VMFileOptionWidget::onItemCountChange(int count)
{
    Q_UNUSED(count)
    const bool filled = m_fileListPage && m_fileListPage->fileTable()
        && m_fileListPage->fileTable()->itemCount() > 0;
    m_stackedLayout->setCurrentIndex(filled ? 1 : 0);
}

void VMFileOptionWidget::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void VMFileOptionWidget::dropEvent(QDropEvent *event)
{
    const QMimeData *mime = event->mimeData();
    if (!mime->hasUrls())
        return;
    event->acceptProposedAction();
    const QList<QUrl> urls = mime->urls();
    QStringList supported;
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (!path.isEmpty() && VMFileListRules::isSupported(path))
            supported.append(path);
    }
    if (!supported.isEmpty() && m_fileListPage) {
        const int maximum = m_fileListPage->maxFileCount();
        if (m_fileListPage->fileTable()->itemCount() + supported.size() > maximum) {
            m_fileListPage->showFileLimitDialog(maximum);
            return;
        }
        m_fileListPage->addFiles(supported, 2);
    }
    for (const QUrl &url : urls) {
        if (!VMFileListRules::isSupported(url.toLocalFile())) {
            showUnsupportedFormatDialog();
            break;
        }
    }
}

void VMFileOptionWidget::showUnsupportedFormatDialog()
{
    VMContentSkinDlg::runNotice(this, VLiteContentDlg::IconNone, QCoreApplication::translate("general", "Tips"),
                                tr("Text merging is supported only doc/. docx/. ZYL format. The format of "
                                   "the current document is not supported"),
                                QStringLiteral("wrong_format"));
}

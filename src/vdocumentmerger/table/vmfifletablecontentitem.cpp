#include "table/vmfifletablecontentitem.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QSpinBox>

#include "host/liolite.h"
#include "shell/usageevents.h"
#include "shell/vmcontentskindlg.h"
#include "shell/vmenv.h"
#include "table/vmcheckbox.h"
#include "table/vmelidedtextlabel.h"
#include "table/vmfilenamesubitem.h"
#include "table/vmitemloadingwidget.h"
#include "table/vmoperatesubitem.h"
#include "table/vmoutputrangesubitem.h"
#include "table/vmpagessubitem.h"
#include "table/vmrangeoperatewidget.h"

VMFifleTableContentItem::VMFifleTableContentItem(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    m_layout = new QHBoxLayout(this);
    m_layout->setSpacing(0);
    m_layout->setContentsMargins(int(VLiteStyle::dpiScaled(19)), 0, int(VLiteStyle::dpiScaled(19)), 0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFixedHeight(int(VLiteStyle::dpiScaled(48)));

    m_fileNameSubItem = new VMFileNameSubItem(this);
    m_operateSubItem = new VMOperateSubItem(this);
    m_pagesSubItem = new VMPagesSubItem(this);
    m_outputRangeSubItem = new VMOutputRangeSubItem(this);

    const int columnSpacing = int(VLiteStyle::dpiScaled(50));
    addWidget(m_fileNameSubItem, 1);
    addSpacing(columnSpacing);
    addWidget(m_pagesSubItem);
    addSpacing(columnSpacing);
    addWidget(m_outputRangeSubItem);
    addSpacing(columnSpacing);
    addWidget(m_operateSubItem);

    connect(m_fileNameSubItem, &VMFileNameSubItem::sigCkbClicked, this, &VMFifleTableContentItem::sigCkbClicked);
    connect(m_fileNameSubItem, &VMFileNameSubItem::sigCkbStateChanged, this,
            &VMFifleTableContentItem::sigCkbStateChanged);
    connect(m_operateSubItem, &VMOperateSubItem::sigOpenDir, this, &VMFifleTableContentItem::onOpenDir);
    connect(m_operateSubItem, &VMOperateSubItem::sigOpenFile, this, &VMFifleTableContentItem::onOpenFile);
    connect(m_operateSubItem, &VMOperateSubItem::sigDrag, this, &VMFifleTableContentItem::sigStartDrag);
    connect(m_operateSubItem, &VMOperateSubItem::sigDelete, this, &VMFifleTableContentItem::sigDelete);
    connect(m_pagesSubItem, &VMPagesSubItem::sigReload, this, &VMFifleTableContentItem::sigReload);

    installEventFilter(this);
}

void VMFifleTableContentItem::addWidget(QWidget *widget, int stretch, Qt::Alignment alignment)
{
    insertWidget(-1, widget, stretch, alignment);
}

void VMFifleTableContentItem::insertWidget(int index, QWidget *widget, int stretch, Qt::Alignment alignment)
{
    m_layout->insertWidget(index, widget, stretch, alignment);
}

void VMFifleTableContentItem::addSpacing(int size)
{
    insertSpacing(-1, size);
}

void VMFifleTableContentItem::insertSpacing(int index, int size)
{
    m_layout->insertSpacing(index, size);
}

void VMFifleTableContentItem::addSpacerItem(QSpacerItem *item)
{
    insertSpacerItem(-1, item);
}

void VMFifleTableContentItem::insertSpacerItem(int index, QSpacerItem *item)
{
    m_layout->insertSpacerItem(index, item);
}

void VMFifleTableContentItem::setFilePath(const QString &path)
{
    m_fileNameSubItem->setFilePath(path);
}

QString VMFifleTableContentItem::filePath() const
{
    return m_fileNameSubItem->filePath();
}

void VMFifleTableContentItem::setChecked(bool checked)
{
    m_fileNameSubItem->checkBox()->setChecked(checked);
}

bool VMFifleTableContentItem::isChecked() const
{
    return m_fileNameSubItem->checkBox()->isChecked();
}

void VMFifleTableContentItem::setPageCount(int count)
{
    m_pagesSubItem->countLabel()->setText(QString::number(count));
}

int VMFifleTableContentItem::pageCount() const
{
    bool ok = false;
    const int count = m_pagesSubItem->countLabel()->text().toInt(&ok, 10);
    return ok ? count : 0;
}

void VMFifleTableContentItem::setPageRange(int min, int max)
{
    VMRangeOperateWidget *range = m_outputRangeSubItem->rangeWidget();
    range->fromSpinBox()->setRange(min, max);
    range->toSpinBox()->setRange(min, max);
}

void VMFifleTableContentItem::setRangeFrom(int page)
{
    m_outputRangeSubItem->rangeWidget()->fromSpinBox()->setValue(page);
}

int VMFifleTableContentItem::rangeFrom() const
{
    return m_outputRangeSubItem->rangeWidget()->fromSpinBox()->value();
}

void VMFifleTableContentItem::setRangeTo(int page)
{
    m_outputRangeSubItem->rangeWidget()->toSpinBox()->setValue(page);
}

int VMFifleTableContentItem::rangeTo() const
{
    return m_outputRangeSubItem->rangeWidget()->toSpinBox()->value();
}

void VMFifleTableContentItem::setRangeInitialized(bool initialized)
{
    m_rangeInitialized = initialized;
}

bool VMFifleTableContentItem::isRangeInitialized() const
{
    return m_rangeInitialized;
}

void VMFifleTableContentItem::applyPageCount(int count)
{
    setPageCount(count);
    setPageRange(1, count);
    if (!isRangeInitialized()) {
        setRangeFrom(1);
        setRangeTo(count);
        setRangeInitialized(true);
    }
    setReadSuccess(true);
}

void VMFifleTableContentItem::setReadSuccess(bool ok)
{
    m_outputRangeSubItem->setCurrentIndex(ok ? 1 : 0);
    stopLoading();
    m_readSuccess = ok;
    m_pagesSubItem->setCurrentIndex(ok ? 0 : 1);
    m_fileNameSubItem->nameLabel()->setEnabled(ok);
}

bool VMFifleTableContentItem::isReadSuccess() const
{
    return m_readSuccess;
}

void VMFifleTableContentItem::startLoading()
{
    VMItemLoadingWidget *spinner = m_outputRangeSubItem->loadingWidget();
    if (spinner->isVisible())
        spinner->start();
}

void VMFifleTableContentItem::stopLoading()
{
    VMItemLoadingWidget *spinner = m_outputRangeSubItem->loadingWidget();
    if (spinner->isVisible())
        spinner->stop();
}

bool VMFifleTableContentItem::isLoading() const
{
    return m_outputRangeSubItem->loadingWidget()->isRunning();
}

VMFileNameSubItem *VMFifleTableContentItem::fileNameSubItem() const
{
    return m_fileNameSubItem;
}

VMPagesSubItem *VMFifleTableContentItem::pagesSubItem() const
{
    return m_pagesSubItem;
}

VMOutputRangeSubItem *VMFifleTableContentItem::outputRangeSubItem() const
{
    return m_outputRangeSubItem;
}

VMOperateSubItem *VMFifleTableContentItem::operateSubItem() const
{
    return m_operateSubItem;
}

void VMFifleTableContentItem::onOpenDir()
{
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("folder")}});
    const QString path = filePath();
    if (path.isEmpty())
        return;
    if (!VMEnv::showInExplorer(path))
        showMissingDocumentNotice();
}

void VMFifleTableContentItem::onOpenFile()
{
    sendClickEvent({{QStringLiteral("type"), QStringLiteral("file")}});
    const QString path = filePath();
    if (path.isEmpty())
        return;
    if (!QFileInfo::exists(path)) {
        showMissingDocumentNotice();
        return;
    }
    VMEnv::openDocument(path);
}

bool VMFifleTableContentItem::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == this && event->type() == QEvent::MouseMove
        && static_cast<QMouseEvent *>(event)->buttons() == Qt::LeftButton)
        emit sigStartDrag();
    return QWidget::eventFilter(watched, event);
}

void VMFifleTableContentItem::showMissingDocumentNotice()
{
    VMContentSkinDlg::runNotice(this, VLiteContentDlg::IconNone, QCoreApplication::translate("general", "Tips"),
                                tr("The document does not exist. It may be removed or renamed"),
                                QStringLiteral("list_openfile_fail"));
}

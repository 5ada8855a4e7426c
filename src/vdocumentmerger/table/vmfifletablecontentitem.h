#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QHBoxLayout;
class QSpacerItem;
class VMFileNameSubItem;
class VMOperateSubItem;
class VMOutputRangeSubItem;
class VMPagesSubItem;

// One row of the file table and the record of one source document: its path, check state,
// page count, read result and page range. Looks: loading (after creation), counted
// (setReadSuccess(true)) and read failed (setReadSuccess(false)). GUI thread only.
//
// Both range spin boxes share the range set by setPageRange() and clamp into it; the first
// page is not ordered against the last. The dynamic property "id" is the table's insertion
// number.
class VDOCUMENTMERGER_EXPORT VMFifleTableContentItem : public QWidget {
    Q_OBJECT
public:
    explicit VMFifleTableContentItem(QWidget *parent = nullptr);

    virtual void addWidget(QWidget *widget, int stretch = 0, Qt::Alignment alignment = Qt::Alignment());
    virtual void insertWidget(int index, QWidget *widget, int stretch = 0, Qt::Alignment alignment = Qt::Alignment());
    virtual void addSpacing(int size);
    virtual void insertSpacing(int index, int size);
    virtual void addSpacerItem(QSpacerItem *item);
    virtual void insertSpacerItem(int index, QSpacerItem *item);

    // Set once, at creation.
    void setFilePath(const QString &path);
    QString filePath() const;
    // Emits sigCkbStateChanged() when the state changes, never sigCkbClicked().
    void setChecked(bool checked);
    bool isChecked() const;
    void setPageCount(int count);
    // 0 while no count is shown.
    int pageCount() const;
    void setPageRange(int min, int max);
    void setRangeFrom(int page);
    int rangeFrom() const;
    void setRangeTo(int page);
    int rangeTo() const;
    void setRangeInitialized(bool initialized);
    bool isRangeInitialized() const;
    void setReadSuccess(bool ok);
    bool isReadSuccess() const;
    // A successful count: shows it, limits both range boxes to 1..count, fills the range from the
    // first count only (later counts keep the user's values, clamped), then the counted look.
    void applyPageCount(int count);
    // Both act only while the spinner is visible.
    void startLoading();
    void stopLoading();
    bool isLoading() const;

    VMFileNameSubItem *fileNameSubItem() const;
    VMPagesSubItem *pagesSubItem() const;
    VMOutputRangeSubItem *outputRangeSubItem() const;
    VMOperateSubItem *operateSubItem() const;

signals:
    void sigCkbClicked(bool);
    void sigCkbStateChanged(int state);
    // A move with only the left button held, on the drag handle or on the row itself.
    void sigStartDrag();
    void sigDelete();
    void sigReload();

public slots:
    // Both send their click event, then show the missing-document notice when nothing
    // exists at the path; an empty path does nothing more.
    void onOpenDir();
    void onOpenFile();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showMissingDocumentNotice();

    QHBoxLayout *m_layout = nullptr;
    VMFileNameSubItem *m_fileNameSubItem = nullptr;
    VMOperateSubItem *m_operateSubItem = nullptr;
    VMPagesSubItem *m_pagesSubItem = nullptr;
    VMOutputRangeSubItem *m_outputRangeSubItem = nullptr;
    bool m_rangeInitialized = false;
    bool m_readSuccess = false;
};

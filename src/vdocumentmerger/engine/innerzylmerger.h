#pragma once

#include "engine/innermerger.h"
#include "engine/innerzylprocessor.h"

// Merges through the word processor: the first source's chosen pages, copied to workPath, become
// the target; every further source is copied, cut to its pages and appended behind a page break;
// the target is saved at outputPath. Sources are never opened themselves, only their copies.
class VDOCUMENTMERGER_ENGINE_EXPORT InnerZylMerger : public InnerMerger, public InnerZylProcessor {
    Q_OBJECT
public:
    InnerZylMerger();
    ~InnerZylMerger() override;

    int merge() override;
    void run() override;

    // Copies source to destination (which must not exist) and cuts the copy down to pages
    // start .. start + count - 1; a range past the end stops at the last page.
    HRESULT extractPages(const QString &source, int start, int count, const QString &destination);
    // Appends pages from .. to of path to target behind a page break.
    HRESULT appendFile(IDispatch *target, const QString &path, int from, int to);

private:
    int mergeInto(const QString &outputPath, const QString &workPath);
};

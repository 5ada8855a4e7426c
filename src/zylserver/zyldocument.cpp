#include "zyldocument.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QUrl>

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XUndoManager.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/text/XDocumentIndexesSupplier.hpp>
#include <com/sun/star/text/XTextSection.hpp>
#include <com/sun/star/text/XTextSectionsSupplier.hpp>
#include <com/sun/star/util/XModifiable.hpp>

#include "zylfilters.h"
#include "zyllog.h"
#include "zyloffice.h"
#include "zylrange.h"
#include "zylsession.h"
#include "zyltextmodel.h"
#include "zyluno.h"

using namespace css;

namespace {
enum Member { ComputeStatistics, ProtectionType, Close, Save, SaveAs2, Undo, GoTo, Range };

const std::vector<ZylDispatch::Member> &members()
{
    static const std::vector<ZylDispatch::Member> table = {
        {"ComputeStatistics", DISPATCH_METHOD, 1, 2},
        {"ProtectionType", DISPATCH_PROPERTYGET, 0, 0},
        {"Close", DISPATCH_METHOD, 0, 3},
        {"Save", DISPATCH_METHOD, 0, 0},
        {"SaveAs2", DISPATCH_METHOD, 1, 17},
        {"Undo", DISPATCH_METHOD, 0, 1},
        {"GoTo", DISPATCH_METHOD, 0, 4},
        {"Range", DISPATCH_METHOD, 0, 2},
    };
    return table;
}

// Statistic and go-to codes the members accept.
const LONG kStatisticPages = 2;
const LONG kGoToPage = 1;
const LONG kGoToAbsolute = 1;
const LONG kDoNotSaveChanges = 0;

bool isOn(const rtl::OUString &value)
{
    return value == "1" || value.equalsIgnoreAsciiCase("true") || value.equalsIgnoreAsciiCase("on");
}

HRESULT optionalInt(const ZylDispatch::Args &args, size_t index, LONG fallback, LONG *out)
{
    if (index >= args.size() || ZylDispatch::isMissing(args[index])) {
        *out = fallback;
        return S_OK;
    }
    return ZylDispatch::toInt(args[index], out);
}
} // namespace

ZylDocument::ZylDocument(std::shared_ptr<ZylSession> session, const uno::Reference<text::XTextDocument> &document,
                         const QString &path, const QString &loadFilter)
    : ZylDispatch(members())
    , m_session(std::move(session))
    , m_document(document)
    , m_path(path)
    , m_loadFilter(loadFilter)
    , m_disk(ZylSession::DiskState::of(path))
{
    // Runs inside the office call that opened the document.
    const std::shared_ptr<ZylTextModel> model = m_session->textModel(document);
    if (model)
        m_diskGeneration = model->generation();
}

ZylDocument::~ZylDocument()
{
    // The reference goes back to the office under its lock, like every other call.
    m_session->office().call("release document", [this] {
        m_document.clear();
        return S_OK;
    });
    m_document.clear();
}

HRESULT ZylDocument::withDocument(const char *what, const std::function<HRESULT(ZylTextModel &)> &work)
{
    return m_session->office().call(what, [&]() -> HRESULT {
        const std::shared_ptr<ZylTextModel> model = m_session->textModel(m_document);
        if (!model) {
            qCInfo(lcZylServer) << what << "on a closed document";
            return E_FAIL;
        }
        return work(*model);
    });
}

HRESULT ZylDocument::invokeMember(int id, const Args &args, VARIANT *result)
{
    switch (id) {
    case ComputeStatistics: {
        LONG statistic = 0;
        HRESULT hr = toInt(args[0], &statistic);
        if (FAILED(hr))
            return hr;
        if (statistic != kStatisticPages)
            return E_INVALIDARG;
        return withDocument("ComputeStatistics", [&](ZylTextModel &model) {
            setResult(result, LONG(model.pageCount()));
            return S_OK;
        });
    }
    case ProtectionType:
        return withDocument("ProtectionType", [&](ZylTextModel &) {
            setResult(result, LONG(protection()));
            return S_OK;
        });
    case Close: {
        LONG saveChanges = kDoNotSaveChanges;
        HRESULT hr = optionalInt(args, 0, kDoNotSaveChanges, &saveChanges);
        if (FAILED(hr))
            return hr;
        return withDocument("Close", [&](ZylTextModel &model) -> HRESULT {
            if (saveChanges != kDoNotSaveChanges) {
                const HRESULT saved = save(model);
                if (FAILED(saved))
                    return saved;
            }
            return m_session->close(uno::Reference<frame::XModel>(m_document, uno::UNO_QUERY),
                                    model.generation() == m_diskGeneration ? m_disk : ZylSession::DiskState());
        });
    }
    case Save:
        return withDocument("Save", [&](ZylTextModel &model) { return save(model); });
    case SaveAs2: {
        QString path;
        HRESULT hr = toText(args[0], &path);
        if (FAILED(hr))
            return hr;
        const bool hasFormat = args.size() > 1 && !isMissing(args[1]);
        LONG format = 0;
        if (hasFormat && FAILED(hr = toInt(args[1], &format)))
            return hr;
        const QString filter = ZylFilters::exportFilter(hasFormat, int(format), path, m_loadFilter);
        if (path.isEmpty() || filter.isEmpty()) {
            qCInfo(lcZylServer) << "no format to save" << path << "as (code" << format << ")";
            return E_INVALIDARG;
        }
        return withDocument("SaveAs2", [&](ZylTextModel &model) { return saveAs(model, path, filter); });
    }
    case Undo: {
        LONG count = 1;
        HRESULT hr = optionalInt(args, 0, 1, &count);
        if (FAILED(hr))
            return hr;
        // The text model learns of what an undo changed from the office, like any change not its own.
        return withDocument("Undo", [&](ZylTextModel &) { return undo(int(count)); });
    }
    case GoTo: {
        LONG what = kGoToPage, which = kGoToAbsolute, page = 1;
        HRESULT hr = optionalInt(args, 0, kGoToPage, &what);
        if (SUCCEEDED(hr))
            hr = optionalInt(args, 1, kGoToAbsolute, &which);
        if (SUCCEEDED(hr))
            hr = optionalInt(args, 2, 1, &page);
        if (FAILED(hr))
            return hr;
        if (what != kGoToPage || which != kGoToAbsolute)
            return E_INVALIDARG;
        return withDocument("GoTo", [&](ZylTextModel &model) -> HRESULT {
            LONG position = 0;
            const HRESULT found = model.pageStart(int(page), &position);
            if (FAILED(found))
                return found;
            setResult(result, new ZylRange(m_session, m_document, position, position));
            return S_OK;
        });
    }
    case Range: {
        LONG start = 0, end = -1;
        HRESULT hr = optionalInt(args, 0, 0, &start);
        if (SUCCEEDED(hr))
            hr = optionalInt(args, 1, -1, &end);
        if (FAILED(hr))
            return hr;
        const bool hasEnd = args.size() > 1 && !isMissing(args[1]);
        if (start < 0 || (hasEnd && end < 0))
            return E_INVALIDARG;
        return withDocument("Range", [&](ZylTextModel &model) -> HRESULT {
            const LONG last = model.endPosition();
            LONG s = std::min(start, last);
            LONG e = hasEnd ? std::min(end, last) : last;
            if (e < s)
                e = s;
            setResult(result, new ZylRange(m_session, m_document, s, e));
            return S_OK;
        });
    }
    }
    return DISP_E_MEMBERNOTFOUND;
}

int ZylDocument::protection()
{
    // The document's own wish, not the storable's state: every document is loaded read-only.
    uno::Reference<lang::XMultiServiceFactory> factory(m_document, uno::UNO_QUERY_THROW);
    uno::Reference<beans::XPropertySet> settings(factory->createInstance(ou("com.sun.star.text.DocumentSettings")),
                                                 uno::UNO_QUERY_THROW);
    bool loadReadonly = false;
    settings->getPropertyValue(ou("LoadReadonly")) >>= loadReadonly;
    if (loadReadonly)
        return AllowOnlyReading;
    bool protectForm = false;
    settings->getPropertyValue(ou("ProtectForm")) >>= protectForm;
    if (protectForm)
        return AllowOnlyFormFields;

    uno::Reference<beans::XPropertySet> model(m_document, uno::UNO_QUERY_THROW);
    // Imported restrictions the office does not enforce itself are kept here.
    uno::Sequence<beans::PropertyValue> grabBag;
    model->getPropertyValue(ou("InteropGrabBag")) >>= grabBag;
    for (const beans::PropertyValue &entry : grabBag) {
        if (entry.Name != "DocumentProtection")
            continue;
        uno::Sequence<beans::PropertyValue> details;
        entry.Value >>= details;
        rtl::OUString edit, enforcement;
        for (const beans::PropertyValue &d : details) {
            if (d.Name == "edit")
                d.Value >>= edit;
            else if (d.Name == "enforcement")
                d.Value >>= enforcement;
        }
        if (!isOn(enforcement))
            continue;
        if (edit == "readOnly")
            return AllowOnlyReading;
        if (edit == "forms")
            return AllowOnlyFormFields;
        if (edit == "comments")
            return AllowOnlyComments;
        if (edit == "trackedChanges")
            return AllowOnlyRevisions;
    }

    uno::Sequence<sal_Int8> redlineKey;
    model->getPropertyValue(ou("RedlineProtectionKey")) >>= redlineKey;
    if (redlineKey.getLength() > 0)
        return AllowOnlyRevisions;

    // Tables of contents, bibliographies and other indexes are sections kept read-only so that
    // only regenerating them changes them; they leave the document itself editable.
    std::vector<rtl::OUString> indexNames;
    uno::Reference<text::XDocumentIndexesSupplier> indexesSupplier(m_document, uno::UNO_QUERY);
    if (indexesSupplier.is()) {
        uno::Reference<container::XIndexAccess> indexes = indexesSupplier->getDocumentIndexes();
        for (sal_Int32 i = 0; indexes.is() && i < indexes->getCount(); ++i) {
            uno::Reference<container::XNamed> named(indexes->getByIndex(i), uno::UNO_QUERY);
            if (named.is())
                indexNames.push_back(named->getName());
        }
    }
    auto isIndex = [&indexNames](const uno::Reference<text::XTextSection> &section) {
        for (uno::Reference<text::XTextSection> s = section; s.is(); s = s->getParentSection()) {
            uno::Reference<container::XNamed> named(s, uno::UNO_QUERY);
            if (named.is() && std::find(indexNames.begin(), indexNames.end(), named->getName()) != indexNames.end())
                return true;
        }
        return false;
    };
    uno::Reference<text::XTextSectionsSupplier> sectionsSupplier(m_document, uno::UNO_QUERY);
    if (sectionsSupplier.is()) {
        uno::Reference<container::XIndexAccess> sections(sectionsSupplier->getTextSections(), uno::UNO_QUERY);
        for (sal_Int32 i = 0; sections.is() && i < sections->getCount(); ++i) {
            uno::Reference<beans::XPropertySet> section(sections->getByIndex(i), uno::UNO_QUERY);
            bool isProtected = false;
            if (section.is())
                section->getPropertyValue(ou("IsProtected")) >>= isProtected;
            if (isProtected && !isIndex(uno::Reference<text::XTextSection>(section, uno::UNO_QUERY)))
                return AllowOnlyFormFields;
        }
    }
    return NoProtection;
}

HRESULT ZylDocument::save(ZylTextModel &model)
{
    // Every document is loaded read-only and written through a file of its own; one that asks
    // to be read-only still is not saved in place.
    if (protection() == AllowOnlyReading)
        return E_ACCESSDENIED;
    const QString filter = ZylFilters::exportFilter(false, 0, m_path, m_loadFilter);
    if (filter.isEmpty())
        return E_INVALIDARG;
    const HRESULT hr = storeAtomically(model, m_path, filter, true);
    if (SUCCEEDED(hr)) {
        uno::Reference<util::XModifiable> modifiable(m_document, uno::UNO_QUERY);
        if (modifiable.is())
            modifiable->setModified(false);
        m_disk = ZylSession::DiskState::of(m_path);
        m_diskGeneration = model.generation();
    }
    return hr;
}

HRESULT ZylDocument::saveAs(ZylTextModel &model, const QString &path, const QString &filter)
{
    const QFileInfo target(path);
    if (target.exists() || target.isSymLink()) {
        qCInfo(lcZylServer) << "will not overwrite" << path;
        return E_ACCESSDENIED;
    }
    return storeAtomically(model, target.absoluteFilePath(), filter, false);
}

namespace {

// 0666 less the umask. Read from /proc, so that no thread ever sees a changed umask.
mode_t newFileMode()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
            if (!line.startsWith("Umask:"))
                continue;
            bool ok = false;
            const uint mask = line.mid(6).trimmed().toUInt(&ok, 8);
            if (ok)
                return mode_t(0666 & ~mask);
        }
    }
    return 0644;
}

} // namespace

HRESULT ZylDocument::storeAtomically(ZylTextModel &model, const QString &target, const QString &filter,
                                     bool mayReplace)
{
    if (filter == QLatin1String("MS Word 97"))
        model.prepareLegacyWordSave();
    else if (filter == QLatin1String("writer8"))
        model.layoutRules().applyTo(m_document);
    const QFileInfo info(target);
    if (!info.absoluteDir().exists())
        return E_INVALIDARG;
    // The document is written beside its target and moved into place only when complete.
    QTemporaryFile temp(info.absolutePath() + QStringLiteral("/.~vzyl-XXXXXX.part"));
    if (!temp.open())
        return E_ACCESSDENIED;
    const QString tempPath = temp.fileName();
    temp.close();

    uno::Reference<frame::XStorable> storable(m_document, uno::UNO_QUERY_THROW);
    uno::Sequence<beans::PropertyValue> args(2);
    args[0] = property("FilterName", uno::Any(toOUString(filter)));
    args[1] = property("Overwrite", uno::Any(true));
    storable->storeToURL(toOUString(QString::fromLatin1(QUrl::fromLocalFile(tempPath).toEncoded())), args);
    if (QFileInfo(tempPath).size() <= 0) {
        qCWarning(lcZylServer) << "the office wrote nothing for" << target;
        return E_FAIL;
    }
    const QByteArray from = QFile::encodeName(tempPath);
    const QByteArray to = QFile::encodeName(target);
    // The temporary file is private; the document gets the mode the file it replaces had, or
    // that of any new file of this user.
    struct stat existing = {};
    const mode_t mode = mayReplace && ::stat(to.constData(), &existing) == 0 ? (existing.st_mode & 07777)
                                                                              : newFileMode();
    if (::chmod(from.constData(), mode) != 0)
        qCWarning(lcZylServer) << "cannot set the mode of" << target << ":" << strerror(errno);
    if (mayReplace) {
        if (::rename(from.constData(), to.constData()) != 0) {
            qCWarning(lcZylServer) << "cannot move the saved file into place:" << strerror(errno);
            return E_ACCESSDENIED;
        }
    } else {
        // A hard link never replaces a file that appeared meanwhile.
        if (::link(from.constData(), to.constData()) != 0) {
            if (errno == EEXIST || QFileInfo::exists(target))
                return E_ACCESSDENIED;
            if (::rename(from.constData(), to.constData()) != 0)
                return E_ACCESSDENIED;
        }
    }
    temp.setAutoRemove(true); // removes the temporary name only; the target keeps the data
    qCInfo(lcZylServer) << "saved" << target << "as" << filter;
    return S_OK;
}

HRESULT ZylDocument::undo(int count)
{
    uno::Reference<document::XUndoManagerSupplier> supplier(m_document, uno::UNO_QUERY_THROW);
    uno::Reference<document::XUndoManager> manager = supplier->getUndoManager();
    for (int i = 0; i < count; ++i) {
        if (!manager->isUndoPossible())
            return E_FAIL;
        manager->undo();
    }
    return S_OK;
}

#include "zylfilters.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace {

// The media type an OpenDocument package names in its first entry, "mimetype", which the format
// stores uncompressed right after the entry's local header; empty for anything else.
QByteArray packageMediaType(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    const QByteArray head = file.read(30 + 8 + 128);
    if (head.size() < 38 || !head.startsWith("PK\x03\x04"))
        return QByteArray();
    const auto *bytes = reinterpret_cast<const uchar *>(head.constData());
    const quint16 method = qFromLittleEndian<quint16>(bytes + 8);
    const quint32 size = qFromLittleEndian<quint32>(bytes + 18);
    const quint16 nameLength = qFromLittleEndian<quint16>(bytes + 26);
    const quint16 extraLength = qFromLittleEndian<quint16>(bytes + 28);
    if (method != 0 || nameLength != 8 || head.mid(30, 8) != "mimetype")
        return QByteArray();
    return head.mid(30 + nameLength + extraLength, int(size));
}

} // namespace

QString ZylFilters::exportFilterForExtension(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("docx"))
        return QStringLiteral("MS Word 2007 XML");
    if (suffix == QLatin1String("doc"))
        return QStringLiteral("MS Word 97");
    if (suffix == QLatin1String("zyl") || suffix == QLatin1String("odt"))
        return QStringLiteral("writer8");
    if (suffix == QLatin1String("rtf"))
        return QStringLiteral("Rich Text Format");
    if (suffix == QLatin1String("pdf"))
        return QStringLiteral("writer_pdf_Export");
    return QString();
}

QString ZylFilters::exportFilter(bool hasFormat, int format, const QString &targetPath, const QString &loadFilter)
{
    if (!hasFormat) {
        // Filters that only import cannot write the document back; fall back to the target's name.
        if (loadFilter.isEmpty() || loadFilter.startsWith(QLatin1String("HTML")) || !isDocumentFilter(loadFilter))
            return exportFilterForExtension(targetPath);
        // Word 6 and 95 files are written back as Word 97-2003, which every word processor reads.
        if (loadFilter == QLatin1String("writer_pdf_import") || loadFilter.startsWith(QLatin1String("OpenDocument Text Flat"))
            || loadFilter == QLatin1String("MS WinWord 6.0") || loadFilter == QLatin1String("MS Word 95"))
            return exportFilterForExtension(targetPath);
        return loadFilter;
    }
    switch (format) {
    case FormatByExtension:
        return exportFilterForExtension(targetPath);
    case FormatDocx:
    case FormatDocumentDefault:
        return QStringLiteral("MS Word 2007 XML");
    case FormatRtf:
        return QStringLiteral("Rich Text Format");
    case FormatPdf:
        return QStringLiteral("writer_pdf_Export");
    default:
        return QString();
    }
}

QString ZylFilters::importFilterFor(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    // Detected by name, HTML would open as a web page without pages.
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm"))
        return QStringLiteral("HTML (StarWriter)");
    // The web and master variants of OpenDocument text would open as documents of their own
    // kind, without pages or without text of their own; read as text they are ordinary ones.
    const QByteArray type = packageMediaType(path);
    if (type == "application/vnd.oasis.opendocument.text-web"
        || type == "application/vnd.oasis.opendocument.text-master")
        return QStringLiteral("writer8");
    return QString();
}

QString ZylFilters::insertFilterFor(const QString &path)
{
    const QString forced = importFilterFor(path);
    if (!forced.isEmpty())
        return forced;
    // A Word package written to the ISO variant of its format is given to a reader that inserts
    // nothing at all; the other reader takes either variant.
    static const QStringList wordSuffixes = {QStringLiteral("docx"), QStringLiteral("docm"), QStringLiteral("dotx"),
                                             QStringLiteral("dotm")};
    QFile file(path);
    if (wordSuffixes.contains(QFileInfo(path).suffix().toLower()) && file.open(QIODevice::ReadOnly) && file.read(4) == "PK\x03\x04")
        return QStringLiteral("MS Word 2007 XML");
    return QString();
}

bool ZylFilters::isOpenDocument(const QString &path)
{
    return packageMediaType(path).startsWith("application/vnd.oasis.opendocument.text");
}

bool ZylFilters::isDocumentFilter(const QString &filterName)
{
    if (filterName.isEmpty())
        return false;
    return !filterName.startsWith(QLatin1String("Text"), Qt::CaseInsensitive);
}

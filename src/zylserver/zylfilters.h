// Which office filter reads or writes which kind of file.
#pragma once

#include <QString>

class ZylFilters {
public:
    // Format codes of "SaveAs2" that the server understands.
    enum SaveFormat {
        FormatByExtension = 0,
        FormatRtf = 6,
        FormatDocx = 12,
        FormatDocumentDefault = 16,
        FormatPdf = 17
    };

    // Export filter for a "SaveAs2" call; empty when the format or extension is not supported.
    // Without a format code (hasFormat false) the filter the document was loaded with is kept.
    static QString exportFilter(bool hasFormat, int format, const QString &targetPath, const QString &loadFilter);
    static QString exportFilterForExtension(const QString &path);

    // Import filter to force for a path, or empty to let the office detect the type.
    static QString importFilterFor(const QString &path);
    // The same for inserting the file into another document.
    static QString insertFilterFor(const QString &path);

    // Whether the file at path is an OpenDocument text package, by its content.
    static bool isOpenDocument(const QString &path);

    // False for filters that read any bytes as plain text: such a "document" is not one.
    static bool isDocumentFilter(const QString &filterName);
};

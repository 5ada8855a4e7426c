// Documents with known pages for tests, written and read back through the office itself.
//
// makeDocument() writes a flat OpenDocument text with one entry per page and lets the office
// convert it to the format of the target's suffix (.docx, .doc, .zyl, .odt, .pdf, .fodt).
// pageTexts() and pdfPageCount() read a document back through the office's own PDF export
// (pdftotext and pdfinfo from poppler-utils). All functions block; they serialise their use of
// the office, which runs with a private profile of its own and ends after every conversion.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

class ZylTestDocuments {
public:
    struct Page {
        enum Kind {
            Text,       // one paragraph with the text
            Landscape,  // the text on a landscape page of its own page style
            Image,      // the text, then an embedded picture
            TableStart, // the page begins with a table whose first cell holds the text
            LongTable,  // the text, then a table of tableRows rows that runs on over the next pages
            RightPage,  // the text on a page that must be a right-hand one: where it would fall on a
                        // left-hand page the office puts a blank page before it
            HeadedTable, // like LongTable, under a heading row ("number", "heading") that the office
                         // repeats at the top of every page the table runs on to
            TallRow     // the text, then a table of one row whose second cell holds tableRows
                        // paragraphs "row line N" and runs on over the next pages
        };
        QString text;
        Kind kind = Text;
        int tableRows = 60;
    };

    // Pages of one kind, one for each text.
    static QVector<Page> pages(const QStringList &texts, Page::Kind kind = Page::Text);
    // Pages of plain text, one entry per page. Returns false and sets error on failure.
    static bool makeDocument(const QString &path, const QStringList &pageTexts, QString *error = nullptr);
    static bool makeDocument(const QString &path, const QVector<Page> &pages, QString *error = nullptr);
    // The flat OpenDocument text that makeDocument() converts.
    static QByteArray flatDocument(const QVector<Page> &pages);
    // A flat OpenDocument text of the given styles and body, with every namespace they may use.
    static QByteArray flatDocument(const QString &content);
    // Lets the office convert a flat OpenDocument text into path (format from its suffix).
    static bool makeFromFlat(const QString &path, const QByteArray &flat, QString *error = nullptr);

    // Text of every page as the office prints it, whitespace simplified, with "[picture]" for each
    // picture on it; empty on failure.
    static QStringList pageTexts(const QString &path, QString *error = nullptr);
    // Pages of the office's PDF export; -1 on failure.
    static int pdfPageCount(const QString &path, QString *error = nullptr);
    // Texts and sizes in points (either may be null) of the pages of the office's PDF export.
    static bool readPages(const QString &path, QStringList *texts, QVector<QSize> *sizes, QString *error = nullptr);
    // Converts source into target (format from target's suffix). Target must not exist.
    static bool convert(const QString &source, const QString &target, QString *error = nullptr);
};

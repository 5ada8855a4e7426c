#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include "engine/mergeitem.h"
#include "vdocumentmerger_export.h"

// The merge page's rules that need no window: path keys and duplicates, cleaning of the host's
// import arguments, output names, progress arithmetic and the parameters of usage events.
class VDOCUMENTMERGER_EXPORT VMFileListRules {
public:
    // What an event reads from a row of the table.
    struct RowFacts {
        QString filePath;
        bool readSuccess = false;
        int pageCount = 0;
    };

    // "doc", "docx", "zyl"; made on first use.
    static const QStringList &supportedSuffixes();
    // Whether the lower-cased suffix of path is supported.
    static bool isSupported(const QString &path);
    // The file dialog's filter, translated when first asked for.
    static const QString &fileDialogFilter();

    // The key a path is listed under: its absolute form, letter case kept, because the file
    // system compares names exactly. Empty for an empty path.
    static QString pathKey(const QString &path);
    // The keys of candidates that name no file in existing and none named earlier in the
    // batch, in order. Two paths name the same file when their absolute or canonical forms are
    // equal.
    static QStringList acceptedKeys(const QStringList &existing, const QStringList &candidates);

    // "|nbsp|" stands for a space; a "?" after the first character starts a query that is cut
    // off. Empty results are dropped.
    static QString cleanImportArgument(const QString &argument);
    static QStringList cleanImportArguments(const QStringList &arguments);

    // The first free "<folder>/<name>.<suffix>", then "<name>(1).<suffix>", ... For the cloud
    // (location 2) "<name>_<yyyyMMddHHmmss>.<suffix>" with no existence test. "//" becomes "/".
    static QString outputPath(const QString &folder, const QString &name, const QString &suffix,
                              int location, const QDateTime &now);

    // Percent of the bar given to starting a merge of itemCount items; 10 for none.
    static int initShare(int itemCount);
    // Bar value after index of itemCount sources reported percent.
    static int progressValue(int index, int percent, int itemCount, int initShare, int finalShare);

    // "vas_wordmerge_addfile" for the rows of a batch added with origin (0 import, 1 click,
    // 2 drop).
    static QHash<QString, QString> addFileParams(int origin, const QList<RowFacts> &rows);
    // "vas_wordmerge_export": rows[i] is the row of items[i]; an empty filePath marks a row
    // that left the table.
    static QHash<QString, QString> exportParams(const QList<MergeItem> &items, const QList<RowFacts> &rows,
                                                int seconds, int location, const QString &outputPath);
};

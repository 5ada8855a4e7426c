#include "page/vmfilelistrules.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

constexpr QLatin1Char kListSeparator(',');
constexpr QLatin1Char kNameSeparator('|');

// The canonical form, or the absolute one for a path that does not exist.
QString fileIdentity(const QString &absolute)
{
    const QString canonical = QFileInfo(absolute).canonicalFilePath();
    return canonical.isEmpty() ? absolute : canonical;
}

} // namespace

const QStringList &VMFileListRules::supportedSuffixes()
{
    static const QStringList suffixes{QStringLiteral("doc"), QStringLiteral("docx"), QStringLiteral("zyl")};
    return suffixes;
}

bool VMFileListRules::isSupported(const QString &path)
{
    return supportedSuffixes().contains(QFileInfo(path).suffix().toLower());
}

const QString &VMFileListRules::fileDialogFilter()
{
    // Qt's own file dialog splits patterns at spaces only; with ";" it would list no file.
    static const QString filter = QCoreApplication::translate("general", "supported formats")
        + QStringLiteral("(*.zyl *.doc *.docx)");
    return filter;
}

QString VMFileListRules::pathKey(const QString &path)
{
    return path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
}

QStringList VMFileListRules::acceptedKeys(const QStringList &existing, const QStringList &candidates)
{
    QSet<QString> known;
    for (const QString &path : existing) {
        const QString key = pathKey(path);
        if (!key.isEmpty()) {
            known.insert(key);
            known.insert(fileIdentity(key));
        }
    }
    QStringList accepted;
    for (const QString &path : candidates) {
        const QString key = pathKey(path);
        if (key.isEmpty())
            continue;
        const QString identity = fileIdentity(key);
        if (known.contains(key) || known.contains(identity))
            continue;
        known.insert(key);
        known.insert(identity);
        accepted.append(key);
    }
    return accepted;
}

QString VMFileListRules::cleanImportArgument(const QString &argument)
{
    QString cleaned = argument;
    cleaned.replace(QStringLiteral("|nbsp|"), QStringLiteral(" "));
    const int query = cleaned.indexOf(QLatin1Char('?'));
    if (query > 0)
        cleaned.truncate(query);
    return cleaned;
}

QStringList VMFileListRules::cleanImportArguments(const QStringList &arguments)
{
    QStringList kept;
    for (const QString &argument : arguments) {
        const QString cleaned = cleanImportArgument(argument);
        if (!cleaned.isEmpty())
            kept.append(cleaned);
    }
    return kept;
}

QString VMFileListRules::outputPath(const QString &folder, const QString &name, const QString &suffix,
                                    int location, const QDateTime &now)
{
    QString path;
    if (location == 2) {
        const QString fileName = QStringLiteral("%1_%2.%3")
                                     .arg(name)
                                     .arg(now.toString(QStringLiteral("yyyyMMddHHmmss")))
                                     .arg(suffix);
        path = QStringLiteral("%1/%2").arg(folder).arg(fileName);
    } else {
        path = QStringLiteral("%1/%2").arg(folder).arg(QStringLiteral("%1.%2").arg(name).arg(suffix));
        for (int n = 1; QFile::exists(path); ++n) {
            const QString fileName = QStringLiteral("%1(%2).%3").arg(name).arg(n).arg(suffix);
            path = QStringLiteral("%1/%2").arg(folder).arg(fileName);
        }
    }
    path.replace(QStringLiteral("//"), QStringLiteral("/"));
    return path;
}

int VMFileListRules::initShare(int itemCount)
{
    return itemCount > 0 ? int(1.0 / (itemCount + 1) * 100.0) : 10;
}

int VMFileListRules::progressValue(int index, int percent, int itemCount, int initShare, int finalShare)
{
    if (itemCount <= 0)
        return initShare;
    return int(double(index) / itemCount * (percent / 100.0) * (100 - finalShare - initShare) + initShare);
}

QHash<QString, QString> VMFileListRules::addFileParams(int origin, const QList<RowFacts> &rows)
{
    static const char *const modes[] = {"import", "click", "drop"};
    QHash<QString, QString> params;
    if (origin >= 0 && origin <= 2)
        params.insert(QStringLiteral("mode"), QString::fromLatin1(modes[origin]));
    QStringList formats;
    QStringList pages;
    QStringList names;
    for (const RowFacts &row : rows) {
        const QFileInfo info(row.filePath);
        formats.append(info.suffix());
        pages.append(row.readSuccess ? QString::number(row.pageCount) : QStringLiteral("-"));
        names.append(info.completeBaseName());
    }
    params.insert(QStringLiteral("num"), QString::number(rows.size()));
    params.insert(QStringLiteral("format"), formats.join(kListSeparator));
    params.insert(QStringLiteral("page_num"), pages.join(kListSeparator));
    params.insert(QStringLiteral("filename"), names.join(kNameSeparator));
    return params;
}

QHash<QString, QString> VMFileListRules::exportParams(const QList<MergeItem> &items,
                                                      const QList<RowFacts> &rows, int seconds, int location,
                                                      const QString &outputPath)
{
    QString totals;
    QString taken;
    QString ranges;
    QString names;
    qint64 totalTaken = 0;
    for (int i = 0; i < items.size() && i < rows.size(); ++i) {
        const RowFacts &row = rows.at(i);
        if (row.filePath.isEmpty())
            continue;
        const MergeItem &item = items.at(i);
        // A separator before every entry but the task's first, even when earlier rows are gone.
        if (i != 0) {
            totals += kListSeparator;
            taken += kListSeparator;
            ranges += kListSeparator;
            names += kNameSeparator;
        }
        const int pages = item.to - item.from + 1;
        totalTaken += pages;
        totals += QString::number(row.pageCount);
        taken += QString::number(pages);
        ranges += QStringLiteral("%1-%2").arg(item.from).arg(item.to);
        names += QFileInfo(item.filePath).completeBaseName();
    }

    static const char *const saveTypes[] = {"first_file", "customize", "cloud"};
    QHash<QString, QString> params;
    params.insert(QStringLiteral("total_num"), QString::number(items.size()));
    params.insert(QStringLiteral("page_total_num"), totals);
    params.insert(QStringLiteral("page_num"), taken);
    params.insert(QStringLiteral("page_range"), ranges);
    params.insert(QStringLiteral("total_page_num"), QString::number(totalTaken));
    params.insert(QStringLiteral("operation_time"), QString::number(seconds));
    if (location >= 0 && location <= 2)
        params.insert(QStringLiteral("save_type"), QString::fromLatin1(saveTypes[location]));
    params.insert(QStringLiteral("format"), QFileInfo(outputPath).suffix());
    params.insert(QStringLiteral("filename"), names);
    return params;
}

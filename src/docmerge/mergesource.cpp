#include "mergesource.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <climits>

const int MergeSource::kLastPage = INT_MAX;

namespace {

bool parsePage(const QString &text, int *page)
{
    bool ok = false;
    const qlonglong value = text.toLongLong(&ok);
    if (!ok || value < 1 || value > INT_MAX)
        return false;
    *page = int(value);
    return true;
}

} // namespace

bool MergeSource::parse(const QString &argument, MergeSource *source, QString *error)
{
    MergeSource parsed;
    parsed.m_argument = argument;
    parsed.m_path = argument;

    static const QRegularExpression rangeShape(QStringLiteral("^(\\d+)(-(\\d*))?$"));
    static const QRegularExpression rangeLike(QStringLiteral("^[0-9 -]+$"));
    const int colon = argument.lastIndexOf(QLatin1Char(':'));
    if (colon >= 0) {
        const QString path = argument.left(colon);
        const QString range = argument.mid(colon + 1);
        const QRegularExpressionMatch match = rangeShape.match(range);
        const bool wholeIsFile = QFileInfo(argument).isFile() && !QFileInfo(path).isFile();
        if (match.hasMatch() && !wholeIsFile) {
            if (path.isEmpty()) {
                *error = QStringLiteral("no file before the page range in \"%1\"").arg(argument);
                return false;
            }
            int from = 0;
            if (!parsePage(match.captured(1), &from)) {
                *error = QStringLiteral("page numbers start at 1 and must be whole numbers: \"%1\"").arg(range);
                return false;
            }
            int to = from;
            if (!match.captured(2).isEmpty()) {
                to = kLastPage;
                if (!match.captured(3).isEmpty() && !parsePage(match.captured(3), &to)) {
                    *error = QStringLiteral("page numbers start at 1 and must be whole numbers: \"%1\"").arg(range);
                    return false;
                }
            }
            parsed.m_path = path;
            parsed.m_from = from;
            parsed.m_to = to;
            parsed.m_hasRange = true;
        } else if (!wholeIsFile && rangeLike.match(range).hasMatch()) {
            // Looks like a range but is not one: better an error than a missing file named "x:3-b".
            *error = QStringLiteral("bad page range \"%1\": use FROM-TO, FROM- or N").arg(range);
            return false;
        }
    }
    if (parsed.m_path.isEmpty()) {
        *error = QStringLiteral("empty file name");
        return false;
    }
    *source = parsed;
    return true;
}

#pragma once

#include <QString>

// One FILE[:RANGE] argument of "docmerge merge".
//
// RANGE is FROM-TO, FROM- (to the end) or N (that page alone); without it the whole document.
// Pages count from 1. A range whose TO lies below FROM is accepted here: the merge refuses it.
class MergeSource {
public:
    // What "to the end" is sent as: the merger cuts a range past the end back to the last page.
    static const int kLastPage;

    // Returns false and sets error when the argument has a range that is not well formed.
    // A file name that itself contains ':' is taken whole when what follows the last ':' is
    // not a range, or when the whole argument names an existing file and the part before
    // the ':' does not.
    static bool parse(const QString &argument, MergeSource *source, QString *error);

    QString path() const { return m_path; }
    int from() const { return m_from; }
    int to() const { return m_to; }
    bool hasRange() const { return m_hasRange; }
    QString argument() const { return m_argument; }

private:
    QString m_argument;
    QString m_path;
    int m_from = 1;
    int m_to = kLastPage;
    bool m_hasRange = false;
};

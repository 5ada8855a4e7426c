#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "mergesource.h"

// The command line of docmerge, checked but not yet acted on: nothing here touches the file
// system beyond telling a file name with ':' from a page range.
class DocMergeOptions {
public:
    enum class Command { None, Count, Merge, Help, Version };

    // arguments without the program name. On a usage error command() is None and error() says why.
    static DocMergeOptions parse(const QStringList &arguments);
    static QString usage();

    Command command() const { return m_command; }
    QString error() const { return m_error; }
    bool json() const { return m_json; }
    // count: the files as given.
    QStringList files() const { return m_files; }
    // merge: the sources in merge order, and the output as given.
    QList<MergeSource> sources() const { return m_sources; }
    QString output() const { return m_output; }
    // "docx", "doc" or "zyl" when --format was given, else empty.
    QString format() const { return m_format; }

private:
    // Options met on the command line, besides those that are stored as they come.
    struct Seen {
        bool help = false;
        bool version = false;
        bool output = false;
        bool format = false;
    };

    // The steps of parse(); each returns false, or *this failed, on a usage error.
    bool readArguments(const QStringList &arguments, QStringList *operands, Seen *seen);
    bool setOutput(const QString &value, Seen *seen);
    bool setFormat(const QString &value, Seen *seen);
    DocMergeOptions &takeCount(const QStringList &files, const Seen &seen);
    DocMergeOptions &takeMerge(const QStringList &operands, const Seen &seen);
    DocMergeOptions &fail(const QString &error);

    Command m_command = Command::None;
    QString m_error;
    bool m_json = false;
    QStringList m_files;
    QList<MergeSource> m_sources;
    QString m_output;
    QString m_format;
};

#include "docmergeoptions.h"

#include <QFileInfo>

namespace {

const QStringList &formats()
{
    static const QStringList known{QStringLiteral("docx"), QStringLiteral("doc"), QStringLiteral("zyl")};
    return known;
}

} // namespace

QString DocMergeOptions::usage()
{
    return QStringLiteral(
        "Usage: docmerge count [--json] FILE...\n"
        "       docmerge merge -o OUT [--format docx|doc|zyl] [--json] FILE[:RANGE]...\n"
        "       docmerge --help | --version\n"
        "\n"
        "Counts the pages of word-processing documents (.docx, .doc, .zyl), or merges page\n"
        "ranges of several documents into one, through the word processor.\n"
        "\n"
        "count   prints \"<pages>\\t<file>\", or \"fail\\t<file>\" when a file cannot be read\n"
        "        (missing, damaged, protected or not a document), as each file is done.\n"
        "merge   takes the pages RANGE of each FILE, in the order given, into the new document\n"
        "        OUT. RANGE is FROM-TO, FROM- (to the end) or N (one page); without a range the\n"
        "        whole document. A range that runs past a document's end stops at its end.\n"
        "        OUT must not exist yet; its extension sets the format.\n"
        "\n"
        "Options:\n"
        "  -o, --output OUT   the merged document\n"
        "  --format FORMAT    docx, doc or zyl; must match the extension of OUT\n"
        "  --json             print the results as one JSON document\n"
        "  -h, --help         show this text\n"
        "  --version          show the version\n"
        "\n"
        "Ctrl-C cancels: nothing is left at OUT.\n"
        "The word processor's own diagnostics: QT_LOGGING_RULES='vzyl.*=true'.\n"
        "Exit status: 0 done; 1 a file could not be counted or the merge failed; 2 usage error;\n"
        "130 or 143 interrupted.\n");
}

DocMergeOptions &DocMergeOptions::fail(const QString &error)
{
    m_command = Command::None;
    m_error = error;
    return *this;
}

namespace {

enum class Match { No, Value, Missing };

// Whether arguments[i] is the option longName (or shortName) and where its value is: after '='
// ("--output=x"), joined to the short name ("-ox") or in the next argument, which i then skips.
Match optionValue(const QStringList &arguments, int &i, const QString &longName, const QString &shortName,
                  QString *value)
{
    const QString &arg = arguments.at(i);
    const QString longPrefix = longName + QLatin1Char('=');
    if (arg.startsWith(longPrefix)) {
        *value = arg.mid(longPrefix.size());
        return Match::Value;
    }
    if (!shortName.isEmpty() && arg.startsWith(shortName) && arg.size() > shortName.size()) {
        *value = arg.mid(shortName.size());
        return Match::Value;
    }
    if (arg != longName && (shortName.isEmpty() || arg != shortName))
        return Match::No;
    if (i + 1 >= arguments.size())
        return Match::Missing;
    *value = arguments.at(++i);
    return Match::Value;
}

} // namespace

DocMergeOptions DocMergeOptions::parse(const QStringList &arguments)
{
    DocMergeOptions options;
    QStringList operands;
    Seen seen;
    if (!options.readArguments(arguments, &operands, &seen))
        return options;
    if (seen.help) {
        options.m_command = Command::Help;
        return options;
    }
    if (seen.version) {
        options.m_command = Command::Version;
        return options;
    }
    if (operands.isEmpty())
        return options.fail(QStringLiteral("no command given"));

    const QString command = operands.takeFirst();
    if (command == QLatin1String("count"))
        return options.takeCount(operands, seen);
    if (command == QLatin1String("merge"))
        return options.takeMerge(operands, seen);
    return options.fail(QStringLiteral("unknown command \"%1\"").arg(command));
}

bool DocMergeOptions::readArguments(const QStringList &arguments, QStringList *operands, Seen *seen)
{
    bool optionsEnded = false;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        if (optionsEnded || arg == QLatin1String("-") || !arg.startsWith(QLatin1Char('-'))) {
            *operands << arg;
            continue;
        }
        QString value;
        Match match = Match::No;
        if (arg == QLatin1String("--")) {
            optionsEnded = true;
        } else if (arg == QLatin1String("-h") || arg == QLatin1String("--help")) {
            seen->help = true;
        } else if (arg == QLatin1String("--version")) {
            seen->version = true;
        } else if (arg == QLatin1String("--json")) {
            m_json = true;
        } else if ((match = optionValue(arguments, i, QStringLiteral("--output"), QStringLiteral("-o"), &value)) != Match::No) {
            if (match == Match::Missing)
                fail(QStringLiteral("%1 needs a file name").arg(arg));
            if (match == Match::Missing || !setOutput(value, seen))
                return false;
        } else if ((match = optionValue(arguments, i, QStringLiteral("--format"), QString(), &value)) != Match::No) {
            if (match == Match::Missing)
                fail(QStringLiteral("--format needs one of docx, doc, zyl"));
            if (match == Match::Missing || !setFormat(value, seen))
                return false;
        } else {
            fail(QStringLiteral("unknown option %1").arg(arg));
            return false;
        }
    }
    return true;
}

bool DocMergeOptions::setOutput(const QString &value, Seen *seen)
{
    if (seen->output)
        fail(QStringLiteral("the output is given twice"));
    else if (value.isEmpty())
        fail(QStringLiteral("the output file name is empty"));
    else
        m_output = value;
    seen->output = true;
    return m_error.isEmpty();
}

bool DocMergeOptions::setFormat(const QString &value, Seen *seen)
{
    if (seen->format)
        fail(QStringLiteral("the format is given twice"));
    else if (!formats().contains(value.toLower()))
        fail(QStringLiteral("unknown format \"%1\": use docx, doc or zyl").arg(value));
    else
        m_format = value.toLower();
    seen->format = true;
    return m_error.isEmpty();
}

DocMergeOptions &DocMergeOptions::takeCount(const QStringList &files, const Seen &seen)
{
    if (seen.output || seen.format)
        return fail(QStringLiteral("count takes no output or format"));
    if (files.isEmpty())
        return fail(QStringLiteral("count needs at least one file"));
    m_files = files;
    m_command = Command::Count;
    return *this;
}

DocMergeOptions &DocMergeOptions::takeMerge(const QStringList &operands, const Seen &seen)
{
    if (!seen.output)
        return fail(QStringLiteral("merge needs an output: -o OUT"));
    const QString suffix = QFileInfo(m_output).suffix();
    if (!formats().contains(suffix.toLower()))
        return fail(QStringLiteral("the output must end in .docx, .doc or .zyl: %1").arg(m_output));
    if (seen.format && suffix.toLower() != m_format)
        return fail(QStringLiteral("--format %1 does not match the output's extension .%2").arg(m_format, suffix));
    if (operands.size() < 2)
        return fail(QStringLiteral("merge needs at least two files"));
    for (const QString &operand : operands) {
        MergeSource source;
        QString error;
        if (!MergeSource::parse(operand, &source, &error))
            return fail(error);
        m_sources << source;
    }
    m_command = Command::Merge;
    return *this;
}

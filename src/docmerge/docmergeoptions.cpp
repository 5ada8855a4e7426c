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

DocMergeOptions DocMergeOptions::parse(const QStringList &arguments)
{
    DocMergeOptions options;
    QStringList operands;
    bool help = false;
    bool version = false;
    bool outputSeen = false;
    bool formatSeen = false;
    bool optionsEnded = false;

    for (int i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        if (optionsEnded || arg == QLatin1String("-") || !arg.startsWith(QLatin1Char('-'))) {
            operands << arg;
            continue;
        }
        if (arg == QLatin1String("--")) {
            optionsEnded = true;
        } else if (arg == QLatin1String("-h") || arg == QLatin1String("--help")) {
            help = true;
        } else if (arg == QLatin1String("--version")) {
            version = true;
        } else if (arg == QLatin1String("--json")) {
            options.m_json = true;
        } else if (arg == QLatin1String("-o") || arg == QLatin1String("--output")
                   || arg.startsWith(QLatin1String("--output=")) || (arg.startsWith(QLatin1String("-o")) && arg.size() > 2)) {
            QString value;
            if (arg.startsWith(QLatin1String("--output=")))
                value = arg.mid(9);
            else if (arg.startsWith(QLatin1String("-o")) && arg.size() > 2)
                value = arg.mid(2);
            else if (i + 1 < arguments.size())
                value = arguments.at(++i);
            else
                return options.fail(QStringLiteral("%1 needs a file name").arg(arg));
            if (outputSeen)
                return options.fail(QStringLiteral("the output is given twice"));
            if (value.isEmpty())
                return options.fail(QStringLiteral("the output file name is empty"));
            outputSeen = true;
            options.m_output = value;
        } else if (arg == QLatin1String("--format") || arg.startsWith(QLatin1String("--format="))) {
            QString value;
            if (arg.startsWith(QLatin1String("--format=")))
                value = arg.mid(9);
            else if (i + 1 < arguments.size())
                value = arguments.at(++i);
            else
                return options.fail(QStringLiteral("--format needs one of docx, doc, zyl"));
            if (formatSeen)
                return options.fail(QStringLiteral("the format is given twice"));
            formatSeen = true;
            options.m_format = value.toLower();
            if (!formats().contains(options.m_format))
                return options.fail(QStringLiteral("unknown format \"%1\": use docx, doc or zyl").arg(value));
        } else {
            return options.fail(QStringLiteral("unknown option %1").arg(arg));
        }
    }

    if (help) {
        options.m_command = Command::Help;
        return options;
    }
    if (version) {
        options.m_command = Command::Version;
        return options;
    }
    if (operands.isEmpty())
        return options.fail(QStringLiteral("no command given"));

    const QString command = operands.takeFirst();
    if (command == QLatin1String("count")) {
        if (outputSeen || formatSeen)
            return options.fail(QStringLiteral("count takes no output or format"));
        if (operands.isEmpty())
            return options.fail(QStringLiteral("count needs at least one file"));
        options.m_files = operands;
        options.m_command = Command::Count;
        return options;
    }
    if (command != QLatin1String("merge"))
        return options.fail(QStringLiteral("unknown command \"%1\"").arg(command));

    if (!outputSeen)
        return options.fail(QStringLiteral("merge needs an output: -o OUT"));
    const QString suffix = QFileInfo(options.m_output).suffix();
    if (!formats().contains(suffix.toLower()))
        return options.fail(QStringLiteral("the output must end in .docx, .doc or .zyl: %1").arg(options.m_output));
    if (formatSeen && suffix.toLower() != options.m_format)
        return options.fail(QStringLiteral("--format %1 does not match the output's extension .%2")
                                .arg(options.m_format, suffix));
    if (operands.size() < 2)
        return options.fail(QStringLiteral("merge needs at least two files"));
    for (const QString &operand : qAsConst(operands)) {
        MergeSource source;
        QString error;
        if (!MergeSource::parse(operand, &source, &error))
            return options.fail(error);
        options.m_sources << source;
    }
    options.m_command = Command::Merge;
    return options;
}

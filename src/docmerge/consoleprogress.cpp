#include "consoleprogress.h"

#include <unistd.h>

#include <algorithm>

namespace {

const int kBarWidth = 30;

} // namespace

ConsoleProgress::ConsoleProgress(FILE *stream)
    : m_stream(stream)
    , m_enabled(stream && isatty(fileno(stream)))
{
}

ConsoleProgress::~ConsoleProgress()
{
    clear();
}

QString ConsoleProgress::line(int percent, const QString &label, int width)
{
    percent = std::clamp(percent, 0, 100);
    const int filled = percent * width / 100;
    return QStringLiteral("[%1%2] %3% %4")
        .arg(QString(filled, QLatin1Char('#')))
        .arg(QString(width - filled, QLatin1Char('-')))
        .arg(percent, 3)
        .arg(label);
}

void ConsoleProgress::show(int percent, const QString &label)
{
    if (!m_enabled)
        return;
    // "\033[K" wipes what a longer earlier line left behind.
    std::fprintf(m_stream, "\r%s\033[K", qPrintable(line(percent, label, kBarWidth)));
    std::fflush(m_stream);
    m_drawn = true;
}

void ConsoleProgress::clear()
{
    if (!m_enabled || !m_drawn)
        return;
    std::fprintf(m_stream, "\r\033[K");
    std::fflush(m_stream);
    m_drawn = false;
}

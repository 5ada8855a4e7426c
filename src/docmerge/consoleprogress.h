#pragma once

#include <QString>

#include <cstdio>

// A one-line progress bar redrawn in place on a terminal; silent when the stream is not one.
class ConsoleProgress {
public:
    explicit ConsoleProgress(FILE *stream);
    ~ConsoleProgress();

    bool isEnabled() const { return m_enabled; }
    // percent 0 to 100.
    void show(int percent, const QString &label);
    // Clears the line so that what follows starts on an empty one.
    void clear();

    // The line as drawn, without the leading carriage return.
    static QString line(int percent, const QString &label, int width);

private:
    FILE *m_stream;
    bool m_enabled;
    bool m_drawn = false;
};

// The office processes that a program of ours started, found by the pipe name the server gives
// each office it starts.
#pragma once

#include <QList>

class OfficeProcesses {
public:
    // Process ids of the offices that the process starter started and that still run.
    static QList<qint64> startedBy(qint64 starter);
};

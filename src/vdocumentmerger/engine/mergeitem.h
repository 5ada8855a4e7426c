#pragma once

#include <QString>

// One source of a merge: pages from to to (inclusive, counted from 1) of filePath.
struct MergeItem {
    int from = 1;
    int to = 1;
    QString filePath;
};

#pragma once

#include <QList>
#include <QString>

#include "engine/mergeitem.h"

// What a merge is asked to do. outputPath and workPath must not exist yet; convertFormat is
// true when outputPath's suffix differs from the first source's.
struct MergeTask {
    QList<MergeItem> items;
    QString outputPath;
    QString workPath;
    bool convertFormat = false;
};

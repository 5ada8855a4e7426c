#pragma once

#include <QHash>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QWaitCondition>

#include <atomic>

#include <vcomrt/com.h>

// What the test double shares between its objects and the tests' controls.
struct FakeZylState {
    static FakeZylState &instance();

    // Counts the call and applies the scripts for it: may hold the thread, returns the status
    // the call is to fail with, or S_OK.
    HRESULT enter(const QString &member);
    void record(const QString &entry);

    QMutex mutex;
    QWaitCondition changed;
    QStringList journal;
    QHash<QString, int> callCounts;
    QHash<QString, QHash<int, HRESULT>> failures;
    QHash<QString, int> protection;
    QStringList textAnswers;
    bool breakAddsTwoPages = false;
    QString blockMember;
    int blockOccurrence = 0;
    bool blocked = false;
    bool released = false;
    std::atomic<int> applicationsCreated{0};
    std::atomic<int> liveObjects{0};
    std::atomic<int> openDocuments{0};
};

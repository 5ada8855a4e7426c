#pragma once

#include <QString>
#include <QStringList>

#include <vcomrt/com.h>

#define FAKEZYL_EXPORT __attribute__((visibility("default")))

// Test double of the word processor's automation server, loaded by the runtime under the ProgID
// "VZyl.Application" from a test-only registry folder. Tests link the same library to script it
// and to read what it received.
//
// Its documents are UTF-8 text files whose pages are separated by form feeds. Character
// positions are offsets into that text; a page begins right after the break that ends the page
// before it. "InsertFile" brings the file's text plus its final paragraph mark ("\n").
//
// Programs run by a test are scripted through the environment: FAKEZYL_HOLD="<member>:<n>:<file>"
// holds the n-th call of member, writes "<file>.held", and goes on once <file> exists.
class FAKEZYL_EXPORT FakeZylServer {
public:
    // Forgets the journal and every script; call it before each test.
    static void reset();

    // One entry per member invoked, in order: "get Application.Documents()",
    // "call Document.GoTo(i4:1, i4:1, i4:3)", arguments in natural order, each written as
    // "i4:<n>", "bstr:<text>" or "empty".
    static QStringList journal();
    // Entries that start with the given "<Object>.<Member>", e.g. "Document.SaveAs2".
    static QStringList journal(const QString &objectAndMember);
    static int liveObjects();
    static int openDocuments();
    static int applicationsCreated();

    // The occurrence-th call (1-based, counted since reset) of member fails with hr;
    // occurrence 0 fails every call. "CreateInstance" is the creation of the application.
    static void failCall(const QString &member, int occurrence, HRESULT hr);
    // Documents opened from a file of this name report this protection type (default -1).
    static void setProtection(const QString &fileName, int type);
    // Calls of member that answer an integer answer it as text instead.
    static void answerWithText(const QString &member);
    // A page break inserted at the end starts two pages instead of one.
    static void setBreakAddsTwoPages(bool on);

    // The occurrence-th call of member ("CreateInstance" for the creation) holds its thread
    // until release(); the call then goes on as usual.
    static void blockAt(const QString &member, int occurrence);
    static bool waitUntilBlocked(int timeoutMs);
    static void release();

    static bool writeDocument(const QString &path, const QStringList &pages);
    static QStringList readDocument(const QString &path);
};

#include "fakezylserver.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QMutexLocker>
#include <QThread>

#include "fakezylobject.h"
#include "fakezylstate.h"

namespace {

// {3C0D6B2E-71A4-4E59-9B8F-5D2A61C7E904}, the CLSID the test registry names.
const CLSID kClsid = {0x3C0D6B2E, 0x71A4, 0x4E59, {0x9B, 0x8F, 0x5D, 0x2A, 0x61, 0xC7, 0xE9, 0x04}};

class Factory : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppv) override
    {
        if (!ppv)
            return E_POINTER;
        if (riid == IID_IUnknown || riid == IID_IClassFactory) {
            *ppv = static_cast<IClassFactory *>(this);
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    // Lives as long as the library.
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown *outer, REFIID riid, void **ppv) override
    {
        if (!ppv)
            return E_POINTER;
        *ppv = nullptr;
        if (outer)
            return CLASS_E_NOAGGREGATION;
        FakeZylState &state = FakeZylState::instance();
        const HRESULT scripted = state.enter(QStringLiteral("CreateInstance"));
        if (FAILED(scripted))
            return scripted;
        ++state.applicationsCreated;
        FakeZylObject *application = FakeZylObject::createApplication();
        const HRESULT hr = application->QueryInterface(riid, ppv);
        application->Release();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

} // namespace

FakeZylState &FakeZylState::instance()
{
    static FakeZylState state;
    return state;
}

// FAKEZYL_HOLD="<member>:<occurrence>:<file>" holds that call in a program the test cannot
// script directly: the double writes "<file>.held" and goes on once <file> exists.
static void holdFromEnvironment(const QString &member, int occurrence)
{
    const QStringList hold = qEnvironmentVariable("FAKEZYL_HOLD").split(QLatin1Char(':'));
    if (hold.size() != 3 || hold.at(0) != member || hold.at(1).toInt() != occurrence)
        return;
    QFile held(hold.at(2) + QStringLiteral(".held"));
    if (held.open(QIODevice::WriteOnly))
        held.close();
    const QDeadlineTimer deadline(60000);
    while (!QFile::exists(hold.at(2)) && !deadline.hasExpired())
        QThread::msleep(10);
}

HRESULT FakeZylState::enter(const QString &member)
{
    QMutexLocker locker(&mutex);
    const int occurrence = ++callCounts[member];
    locker.unlock();
    holdFromEnvironment(member, occurrence);
    locker.relock();
    if (member == blockMember && occurrence == blockOccurrence) {
        blocked = true;
        changed.wakeAll();
        while (!released)
            changed.wait(&mutex);
    }
    const QHash<int, HRESULT> scripted = failures.value(member);
    if (scripted.contains(occurrence))
        return scripted.value(occurrence);
    if (scripted.contains(0))
        return scripted.value(0);
    return S_OK;
}

void FakeZylState::record(const QString &entry)
{
    QMutexLocker locker(&mutex);
    journal << entry;
}

// Runs change on the shared state under its lock.
template <class Change>
static void edit(Change change)
{
    FakeZylState &state = FakeZylState::instance();
    QMutexLocker locker(&state.mutex);
    change(state);
}

void FakeZylServer::reset()
{
    FakeZylState &state = FakeZylState::instance();
    QMutexLocker locker(&state.mutex);
    state.journal.clear();
    state.callCounts.clear();
    state.failures.clear();
    state.protection.clear();
    state.textAnswers.clear();
    state.breakAddsTwoPages = false;
    state.blockMember.clear();
    state.blockOccurrence = 0;
    state.blocked = false;
    // Whoever still waits goes on.
    state.released = true;
    state.changed.wakeAll();
    state.applicationsCreated = 0;
}

QStringList FakeZylServer::journal()
{
    FakeZylState &state = FakeZylState::instance();
    QMutexLocker locker(&state.mutex);
    return state.journal;
}

QStringList FakeZylServer::journal(const QString &objectAndMember)
{
    QStringList out;
    const QStringList all = journal();
    for (const QString &entry : all) {
        const QString call = entry.mid(entry.indexOf(QLatin1Char(' ')) + 1);
        if (call.startsWith(objectAndMember + QLatin1Char('(')))
            out << entry;
    }
    return out;
}

int FakeZylServer::liveObjects()
{
    return FakeZylState::instance().liveObjects.load();
}

int FakeZylServer::openDocuments()
{
    return FakeZylState::instance().openDocuments.load();
}

int FakeZylServer::applicationsCreated()
{
    return FakeZylState::instance().applicationsCreated.load();
}

void FakeZylServer::failCall(const QString &member, int occurrence, HRESULT hr)
{
    edit([&](FakeZylState &state) { state.failures[member].insert(occurrence, hr); });
}

void FakeZylServer::answerWithText(const QString &member)
{
    edit([&](FakeZylState &state) { state.textAnswers << member; });
}

void FakeZylServer::setProtection(const QString &fileName, int type)
{
    edit([&](FakeZylState &state) { state.protection.insert(fileName, type); });
}

void FakeZylServer::setBreakAddsTwoPages(bool on)
{
    edit([&](FakeZylState &state) { state.breakAddsTwoPages = on; });
}

void FakeZylServer::blockAt(const QString &member, int occurrence)
{
    FakeZylState &state = FakeZylState::instance();
    QMutexLocker locker(&state.mutex);
    state.blockMember = member;
    state.blockOccurrence = occurrence;
    state.blocked = false;
    state.released = false;
}

bool FakeZylServer::waitUntilBlocked(int timeoutMs)
{
    FakeZylState &state = FakeZylState::instance();
    QMutexLocker locker(&state.mutex);
    QDeadlineTimer deadline(timeoutMs);
    while (!state.blocked) {
        if (!state.changed.wait(&state.mutex, deadline))
            return state.blocked;
    }
    return true;
}

void FakeZylServer::release()
{
    FakeZylState &state = FakeZylState::instance();
    QMutexLocker locker(&state.mutex);
    state.released = true;
    state.changed.wakeAll();
}

bool FakeZylServer::writeDocument(const QString &path, const QStringList &pages)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(pages.join(QLatin1Char('\f')).toUtf8()) >= 0;
}

QStringList FakeZylServer::readDocument(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringList();
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\f'));
}

extern "C" FAKEZYL_EXPORT HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID *ppv)
{
    if (!ppv)
        return E_POINTER;
    *ppv = nullptr;
    if (rclsid != kClsid)
        return CLASS_E_CLASSNOTAVAILABLE;
    static Factory factory;
    return factory.QueryInterface(riid, ppv);
}

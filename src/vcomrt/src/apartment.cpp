#include "apartment.h"

#include <atomic>

namespace vcomrt {

namespace {

struct ThreadState {
    int count;
    DWORD model;
};

thread_local ThreadState t_state = {0, 0};
std::atomic<int> s_multithreadedMembers{0};

} // namespace

HRESULT Apartment::enter(DWORD coInit)
{
    const DWORD model = coInit & COINIT_APARTMENTTHREADED;
    if (t_state.count > 0) {
        if (t_state.model != model)
            return RPC_E_CHANGED_MODE;
        ++t_state.count;
        return S_FALSE;
    }
    t_state.count = 1;
    t_state.model = model;
    if (model == COINIT_MULTITHREADED)
        s_multithreadedMembers.fetch_add(1);
    return S_OK;
}

void Apartment::leave()
{
    if (t_state.count == 0)
        return;
    if (--t_state.count == 0 && t_state.model == COINIT_MULTITHREADED)
        s_multithreadedMembers.fetch_sub(1);
}

bool Apartment::canActivate()
{
    return t_state.count > 0 || s_multithreadedMembers.load() > 0;
}

} // namespace vcomrt

extern "C" {

HRESULT CoInitializeEx(LPVOID pvReserved, DWORD dwCoInit)
{
    if (pvReserved)
        return E_INVALIDARG;
    return vcomrt::Apartment::enter(dwCoInit);
}

HRESULT CoInitialize(LPVOID pvReserved)
{
    return CoInitializeEx(pvReserved, COINIT_APARTMENTTHREADED);
}

void CoUninitialize()
{
    vcomrt::Apartment::leave();
}

} // extern "C"

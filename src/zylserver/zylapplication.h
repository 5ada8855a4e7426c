// The "VZyl.Application" object: one per CoCreateInstance, with its own set of documents.
#pragma once

#include <memory>

#include "zyldispatch.h"

class ZylSession;

class ZylApplication : public ZylDispatch {
public:
    // Starts or joins the office; returns null when there is none to be had.
    static ZylApplication *create();

protected:
    HRESULT invokeMember(int id, const Args &args, VARIANT *result) override;

private:
    explicit ZylApplication(std::shared_ptr<ZylSession> session);
    ~ZylApplication() override;

    std::shared_ptr<ZylSession> m_session;
};

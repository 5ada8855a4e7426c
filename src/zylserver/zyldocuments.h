// The documents collection of one application object.
#pragma once

#include <memory>

#include "zyldispatch.h"

class ZylSession;

class ZylDocuments : public ZylDispatch {
public:
    explicit ZylDocuments(std::shared_ptr<ZylSession> session);

protected:
    HRESULT invokeMember(int id, const Args &args, VARIANT *result) override;

private:
    ~ZylDocuments() override;
    HRESULT open(const QString &path, VARIANT *result);

    std::shared_ptr<ZylSession> m_session;
};

// Answers every question the office asks while loading with "no": passwords, broken packages,
// locked files. Nothing may wait for a user who is not there.
#pragma once

#include <com/sun/star/task/XInteractionHandler.hpp>
#include <cppuhelper/implbase1.hxx>

class ZylInteractionHandler : public cppu::WeakImplHelper1<css::task::XInteractionHandler> {
public:
    ZylInteractionHandler() = default;

    void SAL_CALL handle(const css::uno::Reference<css::task::XInteractionRequest> &request) override;
};

// A stretch of a document between two positions (see ZylTextModel for what they count).
#pragma once

#include <functional>
#include <memory>

#include <com/sun/star/text/XTextDocument.hpp>

#include "zyldispatch.h"

class ZylSession;
class ZylTextModel;

class ZylRange : public ZylDispatch {
public:
    ZylRange(std::shared_ptr<ZylSession> session, const css::uno::Reference<css::text::XTextDocument> &document,
             LONG start, LONG end);

    // Break kinds that "InsertBreak" accepts.
    enum BreakKind { SectionBreakNextPage = 2, PageBreak = 7 };
    enum CollapseDirection { CollapseEnd = 0, CollapseStart = 1 };

protected:
    HRESULT invokeMember(int id, const Args &args, VARIANT *result) override;

private:
    ~ZylRange() override;
    HRESULT withDocument(const char *what, const std::function<HRESULT(ZylTextModel &)> &work);

    std::shared_ptr<ZylSession> m_session;
    css::uno::Reference<css::text::XTextDocument> m_document;
    LONG m_start;
    LONG m_end;
};

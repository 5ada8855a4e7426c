// Cross-references whose target goes with a cut would print an error where they showed text. The
// text each one shows is noted before the cut; afterwards, those whose target is gone become that
// text, and the others stay fields.
#pragma once

#include <vector>

#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/text/XTextField.hpp>

class ZylReferences {
public:
    explicit ZylReferences(const css::uno::Reference<css::text::XTextDocument> &document);
    void keepOrphanedTexts() const;

private:
    bool targetExists(const css::uno::Reference<css::text::XTextField> &field) const;

    struct Noted {
        css::uno::Reference<css::text::XTextField> field;
        rtl::OUString text;
    };
    css::uno::Reference<css::text::XTextDocument> m_document;
    std::vector<Noted> m_noted;
};

// Cross-references whose target goes with a cut would print an error where they showed text. The
// text each one shows is noted before the cut; afterwards, those whose target is gone become that
// text, and the others stay fields.
#pragma once

#include <set>
#include <utility>
#include <vector>

#include <com/sun/star/text/XTextDocument.hpp>
#include <com/sun/star/text/XTextField.hpp>

class ZylReferences {
public:
    explicit ZylReferences(const css::uno::Reference<css::text::XTextDocument> &document);
    void keepOrphanedTexts() const;

private:
    // What a reference can point at, read once for all references: a document may hold thousands.
    struct Targets {
        std::set<rtl::OUString> bookmarks;
        std::set<rtl::OUString> marks;
        std::set<sal_Int16> footnotes;
        std::set<sal_Int16> endnotes;
        std::set<std::pair<rtl::OUString, sal_Int16>> sequences; // numbering name and number
    };
    struct Noted {
        css::uno::Reference<css::text::XTextField> field;
        sal_Int16 source = 0;
        sal_Int16 number = 0;
        rtl::OUString name;
        rtl::OUString text;
    };
    Targets targets() const;
    static bool exists(const Noted &reference, const Targets &targets);

    css::uno::Reference<css::text::XTextDocument> m_document;
    std::vector<Noted> m_noted;
};

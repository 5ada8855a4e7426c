#include <liolite/vlitelineeditor.h>

#include <liolite/vlitestyle.h>

#include "vlitethemeapplier.h"

#include <QHBoxLayout>
#include <QLineEdit>

VLiteLineEditor::VLiteLineEditor(QWidget* parent, bool clearButton)
    : VLiteAbstractEditor(parent)
    , m_edit(new QLineEdit(this))
{
    m_edit->setObjectName(QStringLiteral("vlite_inner_edit"));
    m_edit->setFrame(false);
    m_edit->setClearButtonEnabled(clearButton);
    auto* layout = new QHBoxLayout(this);
    const int border = qMax(1, qRound(VLiteStyle::dpi()));
    layout->setContentsMargins(border, border, border, border);
    layout->setSpacing(0);
    layout->addWidget(m_edit);
    watchFocusOf(m_edit);
    connect(m_edit, &QLineEdit::textChanged, this, &VLiteLineEditor::textChanged);
    VLiteThemeApplier::applyDefault(this, QStringLiteral("VLiteLineEditor"));
}

void VLiteLineEditor::setText(const QString& text)
{
    m_edit->setText(text);
}

QString VLiteLineEditor::text() const
{
    return m_edit->text();
}

void VLiteLineEditor::setPlaceholderText(const QString& text)
{
    m_edit->setPlaceholderText(text);
}

QLineEdit* VLiteLineEditor::innerEdit() const
{
    return m_edit;
}

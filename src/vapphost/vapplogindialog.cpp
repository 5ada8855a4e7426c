#include "vapplogindialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

VAppLoginDialog::VAppLoginDialog(const QString &suggestedName, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Sign in"));
    setObjectName(QStringLiteral("VAppLoginDialog"));

    auto *intro = new QLabel(tr("Sign in to your account to merge documents and use the cloud drive."),
                             this);
    intro->setWordWrap(true);

    m_nameEdit = new QLineEdit(suggestedName, this);
    m_nameEdit->setObjectName(QStringLiteral("userNameEdit"));
    m_nameEdit->setPlaceholderText(tr("user name"));
    m_nameEdit->setMinimumWidth(240);
    m_nameEdit->selectAll();

    auto *form = new QFormLayout;
    form->addRow(tr("User name:"), m_nameEdit);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_buttons->button(QDialogButtonBox::Ok)->setText(tr("Sign in"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 14);
    layout->setSpacing(12);
    layout->addWidget(intro);
    layout->addLayout(form);
    layout->addWidget(m_buttons);

    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_nameEdit, &QLineEdit::textChanged, this, &VAppLoginDialog::updateButtons);
    updateButtons();
}

QString VAppLoginDialog::userName() const
{
    return m_nameEdit->text().trimmed();
}

void VAppLoginDialog::updateButtons()
{
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(!userName().isEmpty());
}

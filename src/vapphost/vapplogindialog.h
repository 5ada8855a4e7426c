#pragma once

#include <QDialog>

#include "vapphost_export.h"

class QDialogButtonBox;
class QLabel;
class QLineEdit;

// Asks for the user name to sign in with. The sign-in button stays disabled while the
// name is blank.
class VAPPHOST_EXPORT VAppLoginDialog : public QDialog {
    Q_OBJECT
public:
    explicit VAppLoginDialog(const QString &suggestedName, QWidget *parent = nullptr);

    // The entered name without surrounding spaces.
    QString userName() const;

    QLineEdit *nameEdit() const { return m_nameEdit; }
    QDialogButtonBox *buttonBox() const { return m_buttons; }

private:
    void updateButtons();

    QLineEdit *m_nameEdit = nullptr;
    QDialogButtonBox *m_buttons = nullptr;
};

#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VLiteComboBox;
class VLiteLineEditor;
class VMOpenLoationWidget;

// Output name, format and location of the merged document. Keeps nothing of its own: every
// choice goes straight into VMEnv, where the merge run reads it.
class VDOCUMENTMERGER_EXPORT VMOutputOptionWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMOutputOptionWidget(QWidget *parent);

private slots:
    void onNameTextChanged(const QString &text);
    void onSuffixIndexChanged(const QString &text);
    void onLocationIndexChanged(int index);

private:
    VLiteLineEditor *m_nameEditor = nullptr;
    VLiteComboBox *m_suffixCombo = nullptr;
    VLiteComboBox *m_locationCombo = nullptr;
    VMOpenLoationWidget *m_locationStack = nullptr;
};

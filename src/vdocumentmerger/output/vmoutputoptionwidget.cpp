#include "output/vmoutputoptionwidget.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QSpacerItem>
#include <QVBoxLayout>

#include "host/liolite.h"
#include "output/vmopenloationwidget.h"
#include "shell/vmenv.h"

namespace {

int scaled(int length)
{
    return int(VLiteStyle::dpiScaled(length));
}

VLiteLabel *rowLabel(const QString &text, QWidget *parent)
{
    auto *label = new VLiteLabel(text, parent);
    label->setFixedHeight(scaled(22));
    label->applyThemeClass(QStringLiteral("VStyleLabel"));
    return label;
}

// 48 pixels wide, which holds the labels in the languages the layout was drawn for; a longer
// text widens both labels alike instead of being cut off, so the two rows stay aligned.
void fitLabelWidths(VLiteLabel *first, VLiteLabel *second)
{
    int width = scaled(48);
    for (VLiteLabel *label : {first, second}) {
        label->ensurePolished();
        width = qMax(width, label->fontMetrics().horizontalAdvance(label->text()));
    }
    first->setFixedWidth(width);
    second->setFixedWidth(width);
}

QHBoxLayout *rowLayout()
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    return row;
}

} // namespace

VMOutputOptionWidget::VMOutputOptionWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    QHBoxLayout *nameRow = rowLayout();
    VLiteLabel *nameLabel = rowLabel(tr("Output Name"), this);
    nameRow->addWidget(nameLabel);
    nameRow->addSpacing(scaled(10));
    m_nameEditor = new VLiteLineEditor(this);
    m_nameEditor->setObjectName(QStringLiteral("VMOutputNameEditor"));
    m_nameEditor->setFixedSize(VLiteStyle::dpiScaledSize(214, 30));
    m_nameEditor->innerEdit()->setTextMargins(scaled(6), 0, 0, 0);
    m_nameEditor->applyThemeClass(QStringLiteral("VLiteLineEditor"));
    m_nameEditor->setText(tr("Text merge"));
    // The frame and the line edit inside it are both reachable, and both name the field.
    m_nameEditor->setAccessibleName(nameLabel->text());
    m_nameEditor->innerEdit()->setAccessibleName(nameLabel->text());
    nameLabel->setBuddy(m_nameEditor->innerEdit());
    nameRow->addWidget(m_nameEditor);
    nameRow->addSpacing(scaled(12));
    m_suffixCombo = new VLiteComboBox(this);
    m_suffixCombo->setObjectName(QStringLiteral("VMOutputSuffixCombo"));
    m_suffixCombo->setFixedSize(VLiteStyle::dpiScaledSize(80, 34));
    m_suffixCombo->setDisplayCheckState(true);
    for (const char *suffix : {".docx", ".doc", ".zyl"})
        m_suffixCombo->addItem(QString::fromLatin1(suffix));
    // A combo box's accessible name is its current entry on this desktop's accessibility bus;
    // with no label of its own the format box says what it is in its description.
    m_suffixCombo->setAccessibleName(tr("Output Format"));
    m_suffixCombo->setAccessibleDescription(m_suffixCombo->accessibleName());
    nameRow->addWidget(m_suffixCombo);
    nameRow->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
    layout->addLayout(nameRow);

    layout->addSpacing(scaled(10));

    QHBoxLayout *dirRow = rowLayout();
    VLiteLabel *dirLabel = rowLabel(tr("Output Directory"), this);
    dirRow->addWidget(dirLabel);
    dirRow->addSpacing(scaled(8));
    m_locationCombo = new VLiteComboBox(this);
    m_locationCombo->setObjectName(QStringLiteral("VMOutputLocationCombo"));
    m_locationCombo->setFixedSize(VLiteStyle::dpiScaledSize(308, 34));
    m_locationCombo->setDisplayCheckState(true);
    m_locationCombo->addItem(tr("Same location as original file"));
    m_locationCombo->addItem(tr("Custom directories"));
    m_locationCombo->addItem(yrt::product::getZYLDriveDisplayName());
    m_locationCombo->setAccessibleName(dirLabel->text());
    dirLabel->setBuddy(m_locationCombo);
    dirRow->addWidget(m_locationCombo);
    dirRow->addSpacing(scaled(10));
    m_locationStack = new VMOpenLoationWidget(this);
    dirRow->addWidget(m_locationStack);
    layout->addLayout(dirRow);
    fitLabelWidths(nameLabel, dirLabel);

    VMEnv *env = VMEnv::instance();
    env->setOutputName(m_nameEditor->text());
    env->setOutputSuffix(QStringLiteral("docx"));

    connect(m_nameEditor, &VLiteLineEditor::textChanged, this, &VMOutputOptionWidget::onNameTextChanged);
    // The page switches before the index is stored.
    connect(m_locationCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), m_locationStack,
            &QStackedWidget::setCurrentIndex);
    connect(m_locationCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &VMOutputOptionWidget::onLocationIndexChanged);
    connect(m_suffixCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { onSuffixIndexChanged(m_suffixCombo->itemText(index)); });
}

void VMOutputOptionWidget::onNameTextChanged(const QString &text)
{
    VMEnv::instance()->setOutputName(text);
}

void VMOutputOptionWidget::onSuffixIndexChanged(const QString &text)
{
    VMEnv::instance()->setOutputSuffix(QString(text).remove(QLatin1Char('.')));
}

void VMOutputOptionWidget::onLocationIndexChanged(int index)
{
    VMEnv::instance()->setLocation(index);
}
